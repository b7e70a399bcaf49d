#include "EditingInstall.h"

#include "AutoClose.h"
#include "LineOperations.h"
#include "MultiCaret.h"
#include "OccurrenceHighlighter.h"
#include "TypingHelp.h"
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
const QString kBraceIndent = QStringLiteral("AutoIndentBrace");
const QString kAutoComplete = QStringLiteral("AutoComplete");
const QString kHighlight = QStringLiteral("HighlightOccurrences");
const QString kMaxCarets = QStringLiteral("MaxCarets");

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
        CRegistryStore store;
        m_autoClose = store.GetProfileInt(kSection, kAutoClose, 1) != 0;
        m_braceIndent = store.GetProfileInt(kSection, kBraceIndent, 1) != 0;
        // Off until asked for: a list that opens by itself takes Enter away from typing.
        m_autoComplete = store.GetProfileInt(kSection, kAutoComplete, 0) != 0;
        m_highlight = store.GetProfileInt(kSection, kHighlight, 1) != 0;
        m_maxCarets = std::max(1, store.GetProfileInt(kSection, kMaxCarets, int(MultiCaret::MaxCarets)));
        connect(&shell.Events(), &CShellEvents::saveSettings, this, [this] {
            CRegistryStore out;
            out.WriteProfileInt(kSection, kAutoClose, m_autoClose ? 1 : 0);
            out.WriteProfileInt(kSection, kBraceIndent, m_braceIndent ? 1 : 0);
            out.WriteProfileInt(kSection, kAutoComplete, m_autoComplete ? 1 : 0);
            out.WriteProfileInt(kSection, kHighlight, m_highlight ? 1 : 0);
            out.WriteProfileInt(kSection, kMaxCarets, int(m_maxCarets));
        });
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

    // Every text control of every open frame, the words of which completion offers.
    QList<QsciScintillaBase*> AllControls() const
    {
        QList<QsciScintillaBase*> controls;
        for (CChildFrame* frame : m_shell.ChildFrames())
            controls += frame->findChildren<QsciScintillaBase*>();
        return controls;
    }

    void CompleteWord()
    {
        if (QsciScintillaBase* control = Control())
            WordCompletion::Show(*control, AllControls());
    }

    void SelectAllOccurrences()
    {
        QsciScintillaBase* control = Control();
        if (!control)
            return;
        const MultiCaret::AllResult result = MultiCaret::SelectAllOccurrences(*control, m_maxCarets);
        if (result.selected < result.found)
            m_shell.ShowStatusMessage(Tr("Selected the first %1 of %2 occurrences; Replace reaches them all")
                                          .arg(result.selected).arg(result.found), 10000);
        else if (result.found > 1)
            m_shell.ShowStatusMessage(Tr("%1 occurrences selected").arg(result.found), 4000);
    }

    void SetHighlight(bool on)
    {
        m_highlight = on;
        for (QsciScintillaBase* control : AllControls()) {
            if (auto* highlighter = control->findChild<COccurrenceHighlighter*>())
                highlighter->SetEnabled(on);
        }
    }

    bool& BraceIndentOn() { return m_braceIndent; }
    bool& AutoCompleteOn() { return m_autoComplete; }
    bool HighlightOn() const { return m_highlight; }
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
            MultiCaret::Enable(*control);
            control->viewport()->installEventFilter(&m_mouse);
            auto* highlighter = new COccurrenceHighlighter(*control);
            highlighter->SetEnabled(m_highlight);
            // After the view's own handling of the character (which copies the indent).
            connect(control, &QsciScintillaBase::SCN_CHARADDED, this, [this, control](int ch) {
                const int eol = int(control->SendScintilla(QsciScintillaBase::SCI_GETEOLMODE));
                const bool lineEnd = ch == (eol == QsciScintillaBase::SC_EOL_CR ? '\r' : '\n');
                if (lineEnd && m_braceIndent)
                    BraceIndent::AfterNewLine(*control);
                else if (m_autoComplete && WordCompletion::ShouldOpenAutomatically(*control))
                    WordCompletion::Show(*control, AllControls());
            });
        }
    }

    IShell& m_shell;
    bool m_autoClose = true;
    bool m_braceIndent = true;
    bool m_autoComplete = false;
    bool m_highlight = true;
    long m_maxCarets = MultiCaret::MaxCarets;
    CAutoCloseFilter m_filter;
    CCaretMouseFilter m_mouse;
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

    // Several carets. Ctrl+D belongs to Duplicate, so the next occurrence takes Ctrl+Alt+D.
    auto addSelect = [&](int id, const char* text, const char* key, std::function<void()> run) {
        commands.Register({.id = id, .text = Tr(text), .category = category,
                           .shortcut = QKeySequence(QString::fromLatin1(key)), .run = std::move(run),
                           .update = [editing](CCmdUI& ui) { ui.enabled = editing->Control() != nullptr; }});
        menus.AddCommand(MenuId::Edit, MenuGroup::EditSelect, id);
        menus.AddCommand(MenuId::EditorContext, MenuGroup::ContextSelect, id);
    };
    addSelect(Cmd::EditSelectNextOccurrence, "Select &Next Occurrence", "Ctrl+Alt+D", [editing] {
        if (QsciScintillaBase* control = editing->Control())
            MultiCaret::SelectNextOccurrence(*control);
    });
    addSelect(Cmd::EditSelectAllOccurrences, "Select &All Occurrences", "Ctrl+Alt+Shift+D",
              [editing] { editing->SelectAllOccurrences(); });

    commands.Register({.id = Cmd::EditCompleteWord, .text = Tr("Complete &Word"), .category = category,
                       .shortcut = QKeySequence(QStringLiteral("Ctrl+Space")),
                       .run = [editing] { editing->CompleteWord(); }, .update = editable});
    menus.AddCommand(MenuId::Edit, MenuGroup::EditOther, Cmd::EditCompleteWord);

    auto addToggle = [&](int id, const char* text, const char* menu, const char* group, bool& (CModernEditing::*flag)()) {
        commands.Register({.id = id, .text = Tr(text), .category = category, .checkable = true,
                           .run = [editing, flag] { (editing->*flag)() = !(editing->*flag)(); },
                           .update = [editing, flag](CCmdUI& ui) {
                               ui.enabled = true;
                               ui.checked = (editing->*flag)();
                           }});
        menus.AddCommand(menu, group, id);
    };
    addToggle(Cmd::EditAutoIndentBrace, "&Indent After Opening Brace", MenuId::EditFormat, MenuGroup::FormatSpaces,
              &CModernEditing::BraceIndentOn);
    addToggle(Cmd::EditAutoComplete, "Complete Words &Automatically", MenuId::EditFormat, MenuGroup::FormatSpaces,
              &CModernEditing::AutoCompleteOn);
    commands.Register({.id = Cmd::ViewHighlightOccurrences, .text = Tr("Highlight Occurrences"),
                       .category = Tr("View"), .checkable = true,
                       .run = [editing] { editing->SetHighlight(!editing->HighlightOn()); },
                       .update = [editing](CCmdUI& ui) {
                           ui.enabled = true;
                           ui.checked = editing->HighlightOn();
                       }});
    menus.AddCommand(MenuId::View, MenuGroup::ViewToggles, Cmd::ViewHighlightOccurrences);
}
