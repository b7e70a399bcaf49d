#include "DocumentFormat.h"

#include "CMFCScintilla.h"
#include "CScrivelDoc.h"
#include "TextEncoding.h"
#include "framework/CChildFrame.h"
#include "framework/CommandIds.h"
#include "shell/CCommandRegistry.h"
#include "shell/CMenuPlaces.h"
#include "shell/CShellEvents.h"
#include "shell/IShell.h"

#include <QCoreApplication>
#include <QLabel>
#include <QMainWindow>
#include <QPointer>

namespace {

QString Tr(const char* text)
{
    return QCoreApplication::translate("DocumentFormat", text);
}

CScrivelDoc* ActiveText(IShell& shell)
{
    return qobject_cast<CScrivelDoc*>(shell.ActiveDocument());
}

// The two panes, refreshed when the active document or its format changes.
class FormatPanes : public QObject
{
public:
    FormatPanes(IShell& shell)
        : QObject(shell.Window())
        , m_shell(shell)
        , m_encoding(new QLabel)
        , m_lineEnding(new QLabel)
    {
        m_encoding->setObjectName(QStringLiteral("EncodingPane"));
        m_lineEnding->setObjectName(QStringLiteral("LineEndingPane"));
        m_shell.AddStatusWidget(m_encoding);
        m_shell.AddStatusWidget(m_lineEnding);
        connect(&m_shell.Events(), &CShellEvents::activeChildChanged, this, [this] { Refresh(); });
        connect(&m_shell.Events(), &CShellEvents::documentCreated, this, [this](CDocument* document) {
            if (auto* text = qobject_cast<CScrivelDoc*>(document))
                connect(text, &CScrivelDoc::formatChanged, this, [this] { Refresh(); });
        });
        Refresh();
    }

    void Refresh()
    {
        const CScrivelDoc* document = ActiveText(m_shell);
        m_encoding->setText(document ? DocumentFormat::EncodingText(*document) : QString());
        m_lineEnding->setText(document ? DocumentFormat::LineEndingText(document->LineEnding) : QString());
        m_encoding->setVisible(document != nullptr);
        m_lineEnding->setVisible(document != nullptr);
    }

private:
    IShell& m_shell;
    QPointer<QLabel> m_encoding;
    QPointer<QLabel> m_lineEnding;
};

} // namespace

namespace DocumentFormat {

QString EncodingText(const CScrivelDoc& document)
{
    // A document never saved holds UTF-8, and is saved so.
    const int code = document.Encoding == TextEncoding::Auto ? TextEncoding::Utf8 : document.Encoding;
    QString text = TextEncoding::DisplayName(code);
    if (code == TextEncoding::Utf8 && document.WriteMark)
        text += Tr(" with mark");
    return text;
}

QString LineEndingText(int lineEnding)
{
    switch (lineEnding) {
    case CMFCScintilla::SC_EOL_CRLF: return QStringLiteral("CRLF");
    case CMFCScintilla::SC_EOL_CR: return QStringLiteral("CR");
    default: return QStringLiteral("LF");
    }
}

} // namespace DocumentFormat

void InstallDocumentFormat(IShell& shell)
{
    struct Mode
    {
        int id;
        const char* text;
        int eol;
    };
    static constexpr Mode modes[] = {
        {Cmd::ConvertToWindows, QT_TRANSLATE_NOOP("DocumentFormat", "&Windows (CRLF)"), CMFCScintilla::SC_EOL_CRLF},
        {Cmd::ConvertToUnix, QT_TRANSLATE_NOOP("DocumentFormat", "&Unix (LF)"), CMFCScintilla::SC_EOL_LF},
        {Cmd::ConvertToMacintosh, QT_TRANSLATE_NOOP("DocumentFormat", "&Macintosh (CR)"), CMFCScintilla::SC_EOL_CR},
    };
    const QString menuId = QStringLiteral("Edit.LineEndings");
    shell.Menus().DeclareMenu(menuId, Tr("Con&vert Line Endings"), {QString::fromLatin1(MenuGroup::Default)},
                              QString::fromLatin1(MenuId::Edit), QString::fromLatin1(MenuGroup::EditSubMenus));
    for (const Mode& mode : modes) {
        CommandInfo cmd;
        cmd.id = mode.id;
        cmd.text = Tr(mode.text);
        cmd.category = Tr("Edit");
        cmd.checkable = true;
        const int eol = mode.eol;
        cmd.run = [&shell, eol] {
            if (CScrivelDoc* document = ActiveText(shell); document && !document->ReadOnly)
                document->ConvertLineEndings(eol);
        };
        cmd.update = [&shell, eol](CCmdUI& ui) {
            const CScrivelDoc* document = ActiveText(shell);
            ui.handled = true;
            ui.enabled = document && !document->ReadOnly;
            ui.checked = document && document->LineEnding == eol;
        };
        shell.Commands().Register(cmd);
        shell.Menus().AddCommand(menuId, QString::fromLatin1(MenuGroup::Default), mode.id);
    }
    new FormatPanes(shell);
}
