#include "CEditorCommands.h"

#include "CGotoDialog.h"
#include "CMFCScintilla.h"
#include "CScrivelDoc.h"
#include "CScrivelFrame.h"
#include "CScrivelView.h"
#include "framework/CommandIds.h"
#include "framework/OpenOptions.h"
#include "settings/MainFrameSettings.h"
#include "shell/CCommandRegistry.h"
#include "shell/CMenuPlaces.h"
#include "shell/CShellEvents.h"
#include "shell/IShell.h"

#include <QAction>
#include <QCoreApplication>
#include <QFont>
#include <QFontDialog>
#include <QFontInfo>
#include <QMainWindow>
#include <QMenu>

namespace {

using namespace Cmd;

// The display toggles: the setting each flips. Match Bracket only changes the setting;
// the views read it as they highlight.
struct ViewToggle
{
    int id;
    int ViewSettings::*member;
    const char* text;
};
constexpr ViewToggle kViewToggles[] = {
    {ViewWordWrap, &ViewSettings::WordWrap, QT_TRANSLATE_NOOP("CEditorCommands", "&Word Wrap")},
    {ViewWhitespace, &ViewSettings::Whitespace, QT_TRANSLATE_NOOP("CEditorCommands", "W&hitespace")},
    {ViewLineEndings, &ViewSettings::LineEndings, QT_TRANSLATE_NOOP("CEditorCommands", "Line &Endings")},
    {ViewCaretLine, &ViewSettings::CaretLine, QT_TRANSLATE_NOOP("CEditorCommands", "&Caret Line")},
    {ViewLineNumbers, &ViewSettings::LineNumbers, QT_TRANSLATE_NOOP("CEditorCommands", "Line &Numbers")},
    {ViewCodeFolding, &ViewSettings::CodeFolding, QT_TRANSLATE_NOOP("CEditorCommands", "Code Foldin&g")},
    {ViewBlockSelect, &ViewSettings::BlockSelect, QT_TRANSLATE_NOOP("CEditorCommands", "&Block Select")},
    {ViewMatchBracket, &ViewSettings::MatchBracket, QT_TRANSLATE_NOOP("CEditorCommands", "&Match Bracket")},
};

// Editing commands belong to the text view, which answers them through its frame; with
// no text view active they are greyed. Tab and Shift+Tab are shown but left to the
// control, so that typing a tab never goes through a menu.
struct EditCommand
{
    int id;
    const char* text;
    const char* shortcut;      // portable text, or empty
    const char* menu;
    const char* group;
    const char* icon = nullptr;
    const char* shownKey = nullptr; // key shown in the menu, left to the control
    QKeySequence::StandardKey standardKey = QKeySequence::UnknownKey;
};

#define TR(text) QT_TRANSLATE_NOOP("CEditorCommands", text)
// clang-format off
const EditCommand kEditCommands[] = {
    {EditUndo, TR("Undo"), "", MenuId::Edit, MenuGroup::EditUndo, "edit-undo", nullptr, QKeySequence::Undo},
    {EditRedo, TR("Redo"), "Ctrl+Y", MenuId::Edit, MenuGroup::EditUndo, "edit-redo"},
    {EditCut, TR("Cut"), "", MenuId::Edit, MenuGroup::EditClipboard, "edit-cut", nullptr, QKeySequence::Cut},
    {EditCopy, TR("Copy"), "", MenuId::Edit, MenuGroup::EditClipboard, "edit-copy", nullptr, QKeySequence::Copy},
    {EditPaste, TR("Paste"), "", MenuId::Edit, MenuGroup::EditClipboard, "edit-paste", nullptr, QKeySequence::Paste},
    {EditClear, TR("Delete"), "", MenuId::Edit, MenuGroup::EditClipboard, nullptr, "Del"},
    {EditCutAppend, TR("Cut Append"), "", MenuId::Edit, MenuGroup::EditClipboard},
    {EditCopyAppend, TR("Copy Append"), "", MenuId::Edit, MenuGroup::EditClipboard},
    {EditSelectAll, TR("Select All"), "", MenuId::Edit, MenuGroup::EditSelect, nullptr, nullptr, QKeySequence::SelectAll},
    {EditSelectWord, TR("Select Word"), "", MenuId::Edit, MenuGroup::EditSelect},
    {EditSelectLine, TR("Select Line"), "", MenuId::Edit, MenuGroup::EditSelect},
    {EditInsertDate, TR("Date"), "", MenuId::EditInsert, MenuGroup::Default},
    {EditInsertTime, TR("Time"), "", MenuId::EditInsert, MenuGroup::Default},
    {EditInsertFileName, TR("File Name"), "", MenuId::EditInsert, MenuGroup::Default},
    {EditCutLine, TR("Cut Line"), "Ctrl+L", MenuId::EditLines, MenuGroup::LinesEdit},
    {EditCopyLine, TR("Copy Line"), "Ctrl+Shift+T", MenuId::EditLines, MenuGroup::LinesEdit},
    {EditDeleteLine, TR("Delete Line"), "Ctrl+Shift+L", MenuId::EditLines, MenuGroup::LinesEdit},
    {EditDeleteWord, TR("Delete Word"), "", MenuId::EditLines, MenuGroup::LinesEdit},
    {EditDeleteToEol, TR("Delete to End of Line"), "", MenuId::EditLines, MenuGroup::LinesEdit},
    {EditSwapLines, TR("Swap Lines"), "Ctrl+T", MenuId::EditLines, MenuGroup::LinesMove},
    {EditUpperCase, TR("Upper Case"), "Ctrl+Shift+U", MenuId::EditFormat, MenuGroup::FormatCase},
    {EditLowerCase, TR("Lower Case"), "Ctrl+U", MenuId::EditFormat, MenuGroup::FormatCase},
    {EditIndentRight, TR("Indent Right"), "", MenuId::EditFormat, MenuGroup::FormatIndent, "format-indent-more", "Tab"},
    {EditIndentLeft, TR("Indent Left"), "", MenuId::EditFormat, MenuGroup::FormatIndent, "format-indent-less", "Shift+Tab"},
    {EditComment, TR("Comment"), "Ctrl+Q", MenuId::EditFormat, MenuGroup::FormatComment},
    {EditUncomment, TR("UnComment"), "Ctrl+Shift+Q", MenuId::EditFormat, MenuGroup::FormatComment},
    {EditTabsToSpaces, TR("Tabs to Spaces"), "", MenuId::EditFormat, MenuGroup::FormatSpaces},
    {EditSpacesToTabs, TR("Spaces to Tabs"), "", MenuId::EditFormat, MenuGroup::FormatSpaces},
    {EditTrimTrailing, TR("Trim Trailing Spaces"), "", MenuId::EditFormat, MenuGroup::FormatSpaces},
    {BookmarkToggle, TR("Toggle Bookmark"), "Ctrl+F2", MenuId::Search, MenuGroup::SearchBookmarks, "bookmark-new"},
    {BookmarkNext, TR("Next Bookmark"), "F2", MenuId::Search, MenuGroup::SearchBookmarks, "go-next"},
    {BookmarkPrevious, TR("Previous Bookmark"), "Shift+F2", MenuId::Search, MenuGroup::SearchBookmarks, "go-previous"},
    {BookmarkClear, TR("Clear Bookmarks"), "", MenuId::Search, MenuGroup::SearchBookmarks, "edit-clear"},
};
// clang-format on

// The context menu: the shared actions; "Delete" is added on its own.
struct ContextEntry
{
    int id;
    const char* group;
    const char* menu = MenuId::EditorContext;
};
const ContextEntry kContextEntries[] = {
    {EditUndo, MenuGroup::ContextUndo},
    {EditRedo, MenuGroup::ContextUndo},
    {EditCut, MenuGroup::ContextClipboard},
    {EditCopy, MenuGroup::ContextClipboard},
    {EditPaste, MenuGroup::ContextClipboard},
    {EditCutAppend, MenuGroup::ContextAppend},
    {EditCopyAppend, MenuGroup::ContextAppend},
    {EditUpperCase, MenuGroup::ContextCase},
    {EditLowerCase, MenuGroup::ContextCase},
    {EditSelectAll, MenuGroup::ContextSelect},
    {CreateTemplateFromSelection, MenuGroup::ContextTemplate},
};

struct ToolBarEntry
{
    int id;
    const char* group;
};
const ToolBarEntry kToolBarEntries[] = {
    {EditCut, ToolBarGroup::Clipboard},       {EditCopy, ToolBarGroup::Clipboard},
    {EditPaste, ToolBarGroup::Clipboard},     {EditUndo, ToolBarGroup::Undo},
    {EditRedo, ToolBarGroup::Undo},           {EditGoto, ToolBarGroup::Goto},
    {BookmarkToggle, ToolBarGroup::Goto},     {BookmarkNext, ToolBarGroup::Goto},
    {BookmarkPrevious, ToolBarGroup::Goto},   {NavigateBack, ToolBarGroup::Navigate},
    {NavigateForward, ToolBarGroup::Navigate}, {ViewWordWrap, ToolBarGroup::View},
    {ViewWhitespace, ToolBarGroup::View},     {ViewLineEndings, ToolBarGroup::View},
    {ViewLineNumbers, ToolBarGroup::View},    {ViewFont, ToolBarGroup::View},
};

QString Translate(const char* text)
{
    return QCoreApplication::translate("CEditorCommands", text);
}

} // namespace

CEditorCommands::CEditorCommands(IShell& shell, const CSyntaxParserList& parsers)
    : QObject(shell.Window())
    , m_shell(shell)
    , m_parsers(parsers)
{
    RegisterCommands();
    // Every text view that appears is handed this host before its file is read.
    connect(&shell.Events(), &CShellEvents::frameCreated, this, &CEditorCommands::AttachFrame);
    // Queued: the text document that asked is taken down before the hex view opens.
    connect(&shell.Events(), &CShellEvents::documentCreated, this, [this](CDocument* document) {
        if (auto* text = qobject_cast<CScrivelDoc*>(document))
            connect(text, &CScrivelDoc::hexViewRequested, this, [this](const QString& path) {
                OpenOptions options = OpenOptions::defaults();
                options.mode = OpenOptions::Hex;
                m_shell.OpenPath(path, options);
            }, Qt::QueuedConnection);
    });
    for (CChildFrame* frame : shell.ChildFrames())
        AttachFrame(frame);
}

CEditorCommands::~CEditorCommands() = default;

CEditorCommands* CEditorCommands::Of(IShell& shell)
{
    QMainWindow* window = shell.Window();
    return window ? window->findChild<CEditorCommands*>(QString(), Qt::FindDirectChildrenOnly)
                  : nullptr;
}

const ViewSettings& CEditorCommands::View() const
{
    return m_shell.Settings().view;
}

const MainFrameSettings& CEditorCommands::FrameSettings() const
{
    return m_shell.Settings();
}

void CEditorCommands::RegisterCommands()
{
    CCommandRegistry& commands = m_shell.Commands();
    CMenuPlaces& menus = m_shell.Menus();
    const QString edit = tr("Edit");
    for (const EditCommand& entry : kEditCommands) {
        CommandInfo cmd;
        cmd.id = entry.id;
        cmd.text = Translate(entry.text);
        if (entry.shownKey)
            cmd.text += QLatin1Char('\t') + QKeySequence(QString::fromLatin1(entry.shownKey))
                                                 .toString(QKeySequence::NativeText);
        cmd.category = entry.id >= BookmarkToggle && entry.id <= BookmarkClear ? tr("Search") : edit;
        cmd.shortcut = entry.standardKey != QKeySequence::UnknownKey
                            ? QKeySequence(entry.standardKey)
                            : QKeySequence(QString::fromLatin1(entry.shortcut));
        if (entry.icon)
            cmd.iconName = QString::fromLatin1(entry.icon);
        commands.Register(cmd);
        menus.AddCommand(QString::fromLatin1(entry.menu), QString::fromLatin1(entry.group), entry.id);
    }

    // Templates are made elsewhere; the view already says when there is a selection.
    commands.Register({.id = CreateTemplateFromSelection,
                       .text = tr("Create template from Selection"),
                       .category = edit,
                       .placeholder = true});
    menus.AddCommand(MenuId::Edit, MenuGroup::EditOther, CreateTemplateFromSelection);

    auto textFrameActive = [this](CCmdUI& ui) { ui.enabled = ActiveTextFrame() != nullptr; };
    commands.Register({.id = EditGoto,
                       .text = tr("Goto..."),
                       .category = tr("Search"),
                       .shortcut = QKeySequence(QStringLiteral("Ctrl+G")),
                       .iconName = QStringLiteral("go-jump"),
                       .run = [this] { Goto(); },
                       .update = textFrameActive});
    menus.AddCommand(MenuId::Search, MenuGroup::SearchGoto, EditGoto);

    commands.Register({.id = NavigateBack,
                       .text = tr("&Back"),
                       .category = tr("Search"),
                       .shortcut = QKeySequence(QStringLiteral("Alt+Left")),
                       .iconName = QStringLiteral("go-previous"),
                       .run = [this] { Navigate(false); },
                       .update = [this](CCmdUI& ui) { ui.enabled = m_navigation.CanGoBack(); }});
    commands.Register({.id = NavigateForward,
                       .text = tr("&Forward"),
                       .category = tr("Search"),
                       .shortcut = QKeySequence(QStringLiteral("Alt+Right")),
                       .iconName = QStringLiteral("go-next"),
                       .run = [this] { Navigate(true); },
                       .update = [this](CCmdUI& ui) { ui.enabled = m_navigation.CanGoForward(); }});
    menus.AddCommand(MenuId::Search, MenuGroup::SearchNavigate, NavigateBack);
    menus.AddCommand(MenuId::Search, MenuGroup::SearchNavigate, NavigateForward);

    const QString view = tr("View");
    const QHash<int, QString> toggleIcons = {{ViewWordWrap, QStringLiteral("format-justify-fill")},
                                             {ViewWhitespace, QStringLiteral("format-text-blank")},
                                             {ViewLineEndings, QStringLiteral("format-text-eol")},
                                             {ViewLineNumbers, QStringLiteral("format-list-ordered")}};
    for (const ViewToggle& toggle : kViewToggles) {
        const int id = toggle.id;
        int ViewSettings::*member = toggle.member;
        commands.Register({.id = id,
                           .text = Translate(toggle.text),
                           .category = view,
                           .iconName = toggleIcons.value(id),
                           .checkable = true,
                           .run = [this, id] { ToggleViewSetting(id); },
                           .update = [this, member](CCmdUI& ui) { ui.checked = View().*member != 0; }});
        menus.AddCommand(MenuId::View, MenuGroup::ViewToggles, id);
    }
    commands.Register({.id = ViewFont,
                       .text = tr("&Font..."),
                       .category = view,
                       .iconName = QStringLiteral("preferences-desktop-font"),
                       .run = [this] { OnViewFont(); }});
    menus.AddCommand(MenuId::View, MenuGroup::ViewFont, ViewFont);

    for (const ContextEntry& entry : kContextEntries) {
        if (entry.id == CreateTemplateFromSelection) {
            // Listed as "Delete" beside Paste, as it always has been, and by its own name
            // at the end.
            m_contextDelete = new QAction(tr("Delete"), this);
            m_contextDelete->setData(int(CreateTemplateFromSelection));
            connect(m_contextDelete, &QAction::triggered, this,
                    [this] { m_shell.Commands().Execute(CreateTemplateFromSelection); });
            menus.AddAction(MenuId::EditorContext, MenuGroup::ContextClipboard, m_contextDelete);
        }
        menus.AddCommand(MenuId::EditorContext, QString::fromLatin1(entry.group), entry.id);
    }
    // The Insert submenu of the context menu shows the same three commands.
    auto* insert = new QMenu(tr("Insert"), m_shell.Window());
    for (const int id : {int(EditInsertDate), int(EditInsertTime), int(EditInsertFileName)})
        insert->addAction(commands.Action(id));
    menus.AddAction(MenuId::EditorContext, MenuGroup::ContextInsert, insert->menuAction());

    for (const ToolBarEntry& entry : kToolBarEntries)
        menus.AddToolBarCommand(ToolBarId::Standard, QString::fromLatin1(entry.group), entry.id);
}

void CEditorCommands::AttachFrame(CChildFrame* child)
{
    auto* frame = qobject_cast<CScrivelFrame*>(child);
    if (!frame)
        return;
    if (!frame->ParserList())
        frame->SetParserList(&m_parsers);
    if (CScrivelView* view = frame->GetView())
        view->SetHost(this);
}

QList<CScrivelView*> CEditorCommands::TextViews() const
{
    QList<CScrivelView*> views;
    for (CChildFrame* child : m_shell.ChildFrames()) {
        if (auto* frame = qobject_cast<CScrivelFrame*>(child); frame && frame->GetView())
            views << frame->GetView();
    }
    return views;
}

CScrivelFrame* CEditorCommands::ActiveTextFrame() const
{
    return qobject_cast<CScrivelFrame*>(m_shell.ActiveChild());
}

void CEditorCommands::ToggleViewSetting(int id)
{
    ViewSettings& v = m_shell.Settings().view;
    for (const ViewToggle& toggle : kViewToggles) {
        if (toggle.id == id)
            v.*toggle.member = v.*toggle.member ? 0 : 1;
    }
    if (id == ViewMatchBracket)
        return;

    const auto views = TextViews();
    for (CScrivelView* view : views) {
        CMFCScintilla* editor = view->GetEditor();
        switch (id) {
        case ViewWordWrap:
            editor->SetWordWrap(v.WordWrap != 0);
            break;
        case ViewWhitespace:
            editor->SetViewWS(v.Whitespace == 1 ? QsciScintillaBase::SCWS_VISIBLEALWAYS
                                                : QsciScintillaBase::SCWS_INVISIBLE);
            break;
        case ViewLineEndings:
            editor->SetViewEOL(v.LineEndings != 0);
            break;
        case ViewCaretLine:
            editor->SetCaretLine(v.CaretLine != 0, v.CaretLineColour, v.CaretLineTransparency);
            break;
        case ViewLineNumbers:
            editor->SetLineNumberMargin(v.LineNumbers != 0);
            break;
        case ViewBlockSelect:
            editor->SetBlockSelect(v.BlockSelect != 0);
            break;
        case ViewCodeFolding:
            // Off also unfolds what the margin folded, which only the view knows.
            view->SetFolding(v.CodeFolding != 0);
            break;
        default:
            break;
        }
    }
}

void CEditorCommands::OnViewFont()
{
    const ViewSettings& v = View();
    QFont current(v.FontStyle, v.FontSize);
    current.setBold(v.FontBold != 0);
    current.setItalic(v.FontItalic != 0);
    // The dialog lists installed families only: a name the system stands another font in
    // for (Courier New, on most systems here) would select the list's first entry.
    const QString drawn = QFontInfo(current).family();
    if (!drawn.isEmpty())
        current.setFamily(drawn);
    QFontDialog dialog(current, m_shell.Window());
    dialog.setObjectName(QStringLiteral("FontDialog"));
    dialog.setOption(QFontDialog::DontUseNativeDialog, true);
    if (dialog.exec() == QDialog::Accepted)
        ApplyFont(dialog.selectedFont());
}

void CEditorCommands::ApplyFont(const QFont& font)
{
    ViewSettings& v = m_shell.Settings().view;
    v.FontStyle = font.family().left(ViewSettings::MaxFontStyleLength);
    v.FontBold = font.weight() >= QFont::Bold ? 1 : 0;
    v.FontItalic = font.italic() ? 1 : 0;
    const int points = font.pointSize() > 0 ? font.pointSize() : qRound(font.pointSizeF());
    if (points > 0)
        v.FontSize = points;
    // The view fits its line-number margin to the new font.
    for (CScrivelView* view : TextViews())
        view->SetFont(v.FontStyle, v.FontSize, v.FontBold != 0, v.FontItalic != 0);
}

void CEditorCommands::Navigate(bool forward)
{
    NavigationHistory::Entry entry;
    if (!(forward ? m_navigation.Forward(entry) : m_navigation.Back(entry)))
        return;
    for (CChildFrame* child : m_shell.ChildFrames()) {
        auto* frame = qobject_cast<CScrivelFrame*>(child);
        if (!frame || !frame->GetView() || entry.view != frame->GetView())
            continue;
        m_shell.ActivateChild(frame);
        CMFCScintilla* editor = frame->GetView()->GetEditor();
        editor->GotoPos(entry.position);
        editor->ScrollCaret();
        editor->setFocus();
        return;
    }
}

void CEditorCommands::Goto()
{
    CScrivelFrame* frame = ActiveTextFrame();
    if (!frame || !frame->GetView())
        return;
    CMFCScintilla* editor = frame->GetView()->GetEditor();
    CGotoDialog dialog(m_shell.Window(), editor->GetLineCount());
    if (dialog.exec() != QDialog::Accepted)
        return;
    // A jump the navigation history records, like any other command jump.
    editor->JumpToLine(dialog.TargetLine());
    editor->setFocus();
}

QMenu* CEditorCommands::CreateContextMenu()
{
    m_shell.Commands().UpdateAll();
    m_contextDelete->setEnabled(m_shell.Commands().State(CreateTemplateFromSelection).enabled);
    QMenu* place = m_shell.Menus().Menu(MenuId::EditorContext);
    auto* menu = new QMenu(m_shell.Window());
    if (place)
        menu->addActions(place->actions());
    return menu;
}

CEditorCommands* InstallEditor(IShell& shell, const CSyntaxParserList& parsers)
{
    if (CEditorCommands* existing = CEditorCommands::Of(shell))
        return existing;
    return new CEditorCommands(shell, parsers);
}
