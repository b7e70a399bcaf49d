#include "EditingInstall.h"

#include "AutoClose.h"
#include "LineOperations.h"
#include "framework/CommandIds.h"
#include "settings/CRegistryStore.h"
#include "shell/CCommandRegistry.h"
#include "shell/CMenuPlaces.h"
#include "shell/CShellEvents.h"
#include "shell/IShell.h"

#include <Qsci/qsciscintillabase.h>

#include <QApplication>
#include <QCoreApplication>
#include <QMainWindow>

#include <algorithm>

namespace {

const QString kSection = QStringLiteral("EditSettings");
const QString kAutoClose = QStringLiteral("AutoClose");

QString Tr(const char* text)
{
    return QCoreApplication::translate("ModernEditing", text);
}

// Lives as long as the main window: the setting, and the filter every text view shares.
class CModernEditing : public QObject
{
public:
    explicit CModernEditing(IShell& shell)
        : QObject(shell.Window()), m_shell(shell), m_filter(&m_autoClose, this)
    {
        m_autoClose = CRegistryStore().GetProfileInt(kSection, kAutoClose, 1) != 0;
        connect(&shell.Events(), &CShellEvents::saveSettings, this,
                [this] { CRegistryStore().WriteProfileInt(kSection, kAutoClose, m_autoClose ? 1 : 0); });
        connect(&shell.Events(), &CShellEvents::frameCreated, this, &CModernEditing::Watch);
        connect(&shell.Events(), &CShellEvents::activeChildChanged, this, &CModernEditing::Watch);
    }

    // The text control the commands act on: the focused one in the active frame, else its first.
    QsciScintillaBase* Control() const
    {
        CChildFrame* frame = m_shell.ActiveChild();
        if (!frame)
            return nullptr;
        auto* focused = qobject_cast<QsciScintillaBase*>(QApplication::focusWidget());
        if (focused && frame->isAncestorOf(focused))
            return focused;
        return frame->findChild<QsciScintillaBase*>();
    }

    bool& AutoCloseOn() { return m_autoClose; }

private:
    // Views are built inside their frames after the frame is announced, so look again when
    // a frame becomes active.
    void Watch(CChildFrame* frame)
    {
        if (!frame)
            return;
        for (QsciScintillaBase* control : frame->findChildren<QsciScintillaBase*>()) {
            if (control->property("morvaneAutoClose").toBool())
                continue;
            control->setProperty("morvaneAutoClose", true);
            control->installEventFilter(&m_filter);
        }
    }

    IShell& m_shell;
    bool m_autoClose = true;
    CAutoCloseFilter m_filter;
};

} // namespace

void InstallModernEditing(IShell& shell)
{
    auto* editing = new CModernEditing(shell);
    CCommandRegistry& commands = shell.Commands();
    CMenuPlaces& menus = shell.Menus();
    const QString category = Tr("Edit");
    auto editable = [editing](CCmdUI& ui) {
        QsciScintillaBase* control = editing->Control();
        ui.enabled = control && !control->SendScintilla(QsciScintillaBase::SCI_GETREADONLY);
    };
    auto add = [&](int id, const char* text, const char* key, const char* group, std::function<void(QsciScintillaBase&)> op) {
        commands.Register({.id = id, .text = Tr(text), .category = category,
                           .shortcut = key ? QKeySequence(QString::fromLatin1(key)) : QKeySequence(),
                           .run = [editing, op] {
                               if (QsciScintillaBase* control = editing->Control())
                                   op(*control);
                           },
                           .update = editable});
        menus.AddCommand(MenuId::EditLines, group, id);
    };
    using namespace LineOperations;
    add(Cmd::EditMoveLinesUp, "Move Line &Up", "Alt+Up", MenuGroup::LinesMove,
        [](QsciScintillaBase& c) { MoveLines(c, -1); });
    add(Cmd::EditMoveLinesDown, "Move Line &Down", "Alt+Down", MenuGroup::LinesMove,
        [](QsciScintillaBase& c) { MoveLines(c, 1); });
    add(Cmd::EditDuplicate, "Du&plicate Line or Selection", "Ctrl+D", MenuGroup::LinesEdit,
        [](QsciScintillaBase& c) { Duplicate(c); });
    add(Cmd::EditJoinLines, "&Join Lines", "Ctrl+J", MenuGroup::LinesEdit,
        [](QsciScintillaBase& c) { JoinLines(c); });
    add(Cmd::EditSortAscending, "Sort &Ascending", nullptr, "LinesSort",
        [](QsciScintillaBase& c) { SortLines(c, SortOrder::Ascending); });
    add(Cmd::EditSortDescending, "Sort D&escending", nullptr, "LinesSort",
        [](QsciScintillaBase& c) { SortLines(c, SortOrder::Descending); });
    add(Cmd::EditSortCaseInsensitive, "Sort Ignoring &Case", nullptr, "LinesSort",
        [](QsciScintillaBase& c) { SortLines(c, SortOrder::CaseInsensitive); });
    add(Cmd::EditSortUnique, "Sort Uni&que", nullptr, "LinesSort",
        [](QsciScintillaBase& c) { SortLines(c, SortOrder::Unique); });

    auto lexerMarkers = [](QsciScintillaBase& c) {
        QByteArray lexer(64, '\0');
        const long size = c.SendScintilla(QsciScintillaBase::SCI_GETLEXERLANGUAGE, 0UL, lexer.data());
        lexer.truncate(int(std::clamp(size, 0L, 63L)));
        return BlockCommentMarkers(lexer);
    };
    commands.Register({.id = Cmd::EditToggleBlockComment, .text = Tr("Toggle &Block Comment"),
                       .category = category, .shortcut = QKeySequence(QStringLiteral("Ctrl+Shift+A")),
                       .run = [editing, lexerMarkers] {
                           if (QsciScintillaBase* control = editing->Control()) {
                               const auto markers = lexerMarkers(*control);
                               ToggleBlockComment(*control, markers.first, markers.second);
                           }
                       },
                       .update = [editing, lexerMarkers](CCmdUI& ui) {
                           QsciScintillaBase* control = editing->Control();
                           ui.enabled = control && !control->SendScintilla(QsciScintillaBase::SCI_GETREADONLY)
                                        && !lexerMarkers(*control).first.isEmpty();
                       }});
    menus.AddCommand(MenuId::EditFormat, MenuGroup::FormatComment, Cmd::EditToggleBlockComment);

    commands.Register({.id = Cmd::EditAutoClose, .text = Tr("Auto-&Close Brackets and Quotes"),
                       .category = category, .checkable = true,
                       .run = [editing] { editing->AutoCloseOn() = !editing->AutoCloseOn(); },
                       .update = [editing](CCmdUI& ui) {
                           ui.enabled = true;
                           ui.checked = editing->AutoCloseOn();
                       }});
    menus.AddCommand(MenuId::EditFormat, MenuGroup::FormatSpaces, Cmd::EditAutoClose);
}
