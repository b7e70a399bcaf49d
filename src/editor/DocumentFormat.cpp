#include "DocumentFormat.h"

#include "CMFCScintilla.h"
#include "CScrivelDoc.h"
#include "CScrivelFrame.h"
#include "CScrivelView.h"
#include "syntax/CSyntaxParserList.h"
#include "syntax/ViewAsMenu.h"
#include "TextEncoding.h"
#include "framework/CChildFrame.h"
#include "framework/CommandIds.h"
#include "shell/CCommandRegistry.h"
#include "shell/CMenuPlaces.h"
#include "shell/CShellEvents.h"
#include "shell/IShell.h"

#include <QCoreApplication>
#include <QEvent>
#include <QLabel>
#include <QLocale>
#include <QMenu>
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

// The panes of the active text document: encoding, line ends and language, each a click
// away from changing it, and the size of the selection. Refreshed when the active
// document, its format or the selection changes.
class FormatPanes : public QObject
{
public:
    FormatPanes(IShell& shell)
        : QObject(shell.Window())
        , m_shell(shell)
        , m_selection(new QLabel)
        , m_encoding(new QLabel)
        , m_lineEnding(new QLabel)
        , m_language(new QLabel)
    {
        m_selection->setObjectName(QStringLiteral("SelectionPane"));
        m_encoding->setObjectName(QStringLiteral("EncodingPane"));
        m_lineEnding->setObjectName(QStringLiteral("LineEndingPane"));
        m_language->setObjectName(QStringLiteral("LanguagePane"));
        m_encoding->setToolTip(Tr("Encoding: click to reopen the file in another one"));
        m_lineEnding->setToolTip(Tr("Line ends: click to convert them"));
        m_language->setToolTip(Tr("Colouring: click to view the text as another language"));
        m_shell.AddStatusWidget(m_selection);
        for (QLabel* pane : {m_encoding.data(), m_lineEnding.data(), m_language.data()}) {
            pane->setCursor(Qt::PointingHandCursor);
            pane->installEventFilter(this);
            m_shell.AddStatusWidget(pane);
        }
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
        for (QLabel* pane : {m_selection.data(), m_encoding.data(), m_lineEnding.data(), m_language.data()})
            pane->setVisible(document != nullptr);
        // Follow the selection of the active control only.
        CMFCScintilla* editor = document ? document->GetEditor() : nullptr;
        if (auto* frame = qobject_cast<CScrivelFrame*>(m_shell.ActiveChild()); frame && frame->GetView())
            editor = frame->GetView()->GetEditor();
        if (editor != m_editor) {
            QObject::disconnect(m_selectionConnection);
            m_editor = editor;
            if (editor)
                m_selectionConnection = connect(editor, &QsciScintillaBase::SCN_UPDATEUI, this, [this](int) {
                    RefreshSelection();
                    RefreshLanguage();
                });
        }
        RefreshSelection();
        RefreshLanguage();
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() != QEvent::MouseButtonRelease)
            return false;
        auto* pane = qobject_cast<QLabel*>(watched);
        CScrivelDoc* document = ActiveText(m_shell);
        if (!pane || !document)
            return false;
        QMenu menu;
        if (pane == m_encoding)
            FillEncodingMenu(menu, document);
        else if (pane == m_lineEnding)
            FillCommandMenu(menu, {Cmd::ConvertToWindows, Cmd::ConvertToUnix, Cmd::ConvertToMacintosh});
        else if (pane == m_language)
            FillLanguageMenu(menu);
        menu.exec(pane->mapToGlobal(QPoint(0, 0)) - QPoint(0, menu.sizeHint().height()));
        Refresh();
        return true;
    }

private:
    void RefreshSelection()
    {
        if (!m_editor) {
            m_selection->clear();
            return;
        }
        qint64 characters = 0;
        qint64 lines = 0;
        const long count = m_editor->SendScintilla(QsciScintillaBase::SCI_GETSELECTIONS);
        for (long i = 0; i < count; ++i) {
            const long start = m_editor->SendScintilla(QsciScintillaBase::SCI_GETSELECTIONNSTART, static_cast<unsigned long>(i));
            const long end = m_editor->SendScintilla(QsciScintillaBase::SCI_GETSELECTIONNEND, static_cast<unsigned long>(i));
            if (end <= start)
                continue;
            characters += DocumentFormat::CountCharacters(m_editor, start, end);
            lines += m_editor->SendScintilla(QsciScintillaBase::SCI_LINEFROMPOSITION, static_cast<unsigned long>(end))
                     - m_editor->SendScintilla(QsciScintillaBase::SCI_LINEFROMPOSITION, static_cast<unsigned long>(start)) + 1;
        }
        m_selection->setText(characters ? DocumentFormat::SelectionText(characters, lines) : QString());
    }

    void RefreshLanguage()
    {
        auto* frame = qobject_cast<CScrivelFrame*>(m_shell.ActiveChild());
        const CSyntaxParserList* list = frame ? frame->ParserList() : nullptr;
        const int index = frame ? frame->GetParserIndex() : -1;
        m_language->setText(list && index >= 0 && index < list->GetCount() ? list->GetParser(index).menuName
                                                                            : Tr("Plain text"));
    }

    void FillEncodingMenu(QMenu& menu, CScrivelDoc* document)
    {
        menu.addSection(Tr("Reopen with Encoding"));
        const bool reopenable = !document->GetPathName().isEmpty();
        for (const int code : {int(TextEncoding::Utf8), int(TextEncoding::Ansi), int(TextEncoding::Utf16LE),
                               int(TextEncoding::Utf16BE), int(TextEncoding::Utf32LE), int(TextEncoding::Utf32BE)}) {
            QAction* action = menu.addAction(TextEncoding::DisplayName(code));
            action->setCheckable(true);
            action->setChecked(document->Encoding == code);
            action->setEnabled(reopenable);
            QPointer<CScrivelDoc> target(document);
            connect(action, &QAction::triggered, this, [target, code] {
                if (target)
                    target->ReopenWithEncoding(code);
            });
        }
        menu.addSeparator();
        FillCommandMenu(menu, {Cmd::FileSaveAs});
    }

    void FillLanguageMenu(QMenu& menu)
    {
        auto* frame = qobject_cast<CScrivelFrame*>(m_shell.ActiveChild());
        const CSyntaxParserList* list = frame ? frame->ParserList() : nullptr;
        if (!list)
            return;
        const QList<QAction*> actions = ViewAsMenu::Fill(&menu, *list);
        ViewAsMenu::UpdateChecks(actions, list->GetCount(), frame->GetParserIndex());
        for (QAction* action : actions)
            connect(action, &QAction::triggered, this, [this, action] {
                m_shell.Commands().Execute(action->data().toInt());
            });
    }

    void FillCommandMenu(QMenu& menu, std::initializer_list<int> ids)
    {
        for (const int id : ids)
            if (QAction* action = m_shell.Commands().Action(id))
                menu.addAction(action);
    }

    IShell& m_shell;
    QPointer<QLabel> m_selection;
    QPointer<QLabel> m_encoding;
    QPointer<QLabel> m_lineEnding;
    QPointer<QLabel> m_language;
    QPointer<CMFCScintilla> m_editor;
    QMetaObject::Connection m_selectionConnection;
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

qint64 CountCharacters(CMFCScintilla* editor, long start, long end)
{
    // Counting characters walks the text; a huge selection is told in bytes instead, so
    // that moving the caret never waits on it.
    if (end - start > MaxCountedSelection)
        return end - start;
    return editor->SendScintilla(QsciScintillaBase::SCI_COUNTCHARACTERS, static_cast<unsigned long>(start), end);
}

QString SelectionText(qint64 characters, qint64 lines)
{
    const QLocale locale;
    return Tr("Sel: %1 | %2").arg(locale.toString(characters), locale.toString(lines));
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
