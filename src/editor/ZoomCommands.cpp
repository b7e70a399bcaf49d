#include "ZoomCommands.h"

#include "CMFCScintilla.h"
#include "CScrivelDoc.h"
#include "CScrivelFrame.h"
#include "CScrivelView.h"
#include "framework/CommandIds.h"
#include "settings/CRegistryStore.h"
#include "shell/CCommandRegistry.h"
#include "shell/CMenuPlaces.h"
#include "shell/CShellEvents.h"
#include "shell/IShell.h"

#include <QAction>
#include <QCoreApplication>
#include <QMainWindow>
#include <QSet>
#include <algorithm>

namespace {

const QString kSection = QStringLiteral("Zoom");
const QString kLevel = QStringLiteral("Level");
// The control's own limits, in points added to every font size.
constexpr int MinZoom = -10;
constexpr int MaxZoom = 20;

QString Tr(const char* text)
{
    return QCoreApplication::translate("Zoom", text);
}

class ZoomLevel : public QObject
{
public:
    explicit ZoomLevel(IShell& shell)
        : QObject(shell.Window())
        , m_shell(shell)
        , m_level(std::clamp(CRegistryStore().GetProfileInt(kSection, kLevel, 0), MinZoom, MaxZoom))
    {
        connect(&shell.Events(), &CShellEvents::frameCreated, this, [this](CChildFrame* frame) { Adopt(frame); });
        connect(&shell.Events(), &CShellEvents::saveSettings, this,
                [this] { CRegistryStore().WriteProfileInt(kSection, kLevel, m_level); });
        for (CChildFrame* frame : shell.ChildFrames())
            Adopt(frame);
    }

    int Level() const { return m_level; }

    void Set(int level)
    {
        m_level = std::clamp(level, MinZoom, MaxZoom);
        for (CChildFrame* frame : m_shell.ChildFrames()) {
            if (CMFCScintilla* editor = EditorOf(frame); editor && Zoom(*editor) != m_level)
                editor->SendScintilla(QsciScintillaBase::SCI_SETZOOM, static_cast<unsigned long>(m_level));
        }
    }

private:
    static CMFCScintilla* EditorOf(CChildFrame* frame)
    {
        auto* text = qobject_cast<CScrivelFrame*>(frame);
        return text && text->GetView() ? text->GetView()->GetEditor() : nullptr;
    }
    static int Zoom(const CMFCScintilla& editor)
    {
        return int(editor.SendScintilla(QsciScintillaBase::SCI_GETZOOM));
    }

    void Adopt(CChildFrame* frame)
    {
        CMFCScintilla* editor = EditorOf(frame);
        if (!editor)
            return;
        editor->SendScintilla(QsciScintillaBase::SCI_SETZOOM, static_cast<unsigned long>(m_level));
        if (m_adopted.contains(editor))
            return;
        m_adopted.insert(editor);
        connect(editor, &QObject::destroyed, this, [this, editor] { m_adopted.remove(editor); });
        // A view zoomed by itself (Ctrl with the wheel) takes every other view along.
        connect(editor, &QsciScintillaBase::SCN_ZOOM, this, [this, editor] {
            if (Zoom(*editor) != m_level)
                Set(Zoom(*editor));
        });
    }

    IShell& m_shell;
    int m_level;
    QSet<const QObject*> m_adopted;
};

} // namespace

void InstallZoom(IShell& shell)
{
    auto* zoom = new ZoomLevel(shell);
    struct Command
    {
        int id;
        const char* text;
        QKeySequence shortcut;
        const char* icon;
        int step; // 0: back to no zoom
    };
    const Command commands[] = {
        {Cmd::ViewZoomIn, QT_TRANSLATE_NOOP("Zoom", "Zoom &In"), QKeySequence(QStringLiteral("Ctrl++")), "zoom-in", 1},
        {Cmd::ViewZoomOut, QT_TRANSLATE_NOOP("Zoom", "Zoom &Out"), QKeySequence(QStringLiteral("Ctrl+-")), "zoom-out", -1},
        {Cmd::ViewZoomReset, QT_TRANSLATE_NOOP("Zoom", "Reset &Zoom"), QKeySequence(QStringLiteral("Ctrl+0")), "zoom-original", 0},
    };
    for (const Command& command : commands) {
        CommandInfo cmd;
        cmd.id = command.id;
        cmd.text = Tr(command.text);
        cmd.category = Tr("View");
        cmd.shortcut = command.shortcut;
        cmd.iconName = QString::fromLatin1(command.icon);
        const int step = command.step;
        cmd.run = [zoom, step] { zoom->Set(step == 0 ? 0 : zoom->Level() + step); };
        cmd.update = [](CCmdUI& ui) { ui.handled = true; };
        QAction* action = shell.Commands().Register(cmd);
        // Ctrl++ needs Shift on most keyboards: Ctrl+= zooms in too.
        if (action && command.id == Cmd::ViewZoomIn)
            action->setShortcuts({command.shortcut, QKeySequence(QStringLiteral("Ctrl+="))});
        shell.Menus().AddCommand(QString::fromLatin1(MenuId::View), QString::fromLatin1(MenuGroup::ViewZoom),
                                 command.id);
    }
}
