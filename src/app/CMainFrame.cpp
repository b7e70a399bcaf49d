#include "CMainFrame.h"

#include "framework/CDocTemplate.h"
#include "framework/CDocument.h"
#include "CMorvaneApp.h"
#include "settings/CRegistryStore.h"
#include "CommandIcons.h"
#include "framework/CommandIds.h"
#include "KeyboardIndicators.h"
#include "editor/CGotoDialog.h"
#include "editor/CMFCScintilla.h"
#include "editor/CScrivelDoc.h"
#include "editor/CScrivelFrame.h"
#include "editor/CScrivelView.h"
#include "search/CHistoryComboBox.h"
#include "syntax/ViewAsMenu.h"

#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QFontDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QMessageBox>
#include <QProgressBar>
#include <QStatusBar>
#include <QStyle>
#include <QTabBar>
#include <QTimer>
#include <QToolBar>
#include <QUrl>

#include <utility>

namespace {
const QString kBarState = QStringLiteral("Control Bar State");

// The display toggles: the setting each flips. Match Bracket only changes the setting;
// the views read it as they highlight.
struct ViewToggle
{
    int id;
    int ViewSettings::*member;
};
constexpr ViewToggle kViewToggles[] = {
    {Cmd::ViewWordWrap, &ViewSettings::WordWrap},
    {Cmd::ViewWhitespace, &ViewSettings::Whitespace},
    {Cmd::ViewLineEndings, &ViewSettings::LineEndings},
    {Cmd::ViewCaretLine, &ViewSettings::CaretLine},
    {Cmd::ViewLineNumbers, &ViewSettings::LineNumbers},
    {Cmd::ViewCodeFolding, &ViewSettings::CodeFolding},
    {Cmd::ViewBlockSelect, &ViewSettings::BlockSelect},
    {Cmd::ViewMatchBracket, &ViewSettings::MatchBracket},
};

// Tab positions by alignment index: left, top, right, bottom.
constexpr QTabWidget::TabPosition kTabPositions[] = {QTabWidget::West, QTabWidget::North,
                                                    QTabWidget::East, QTabWidget::South};
constexpr int kTabCommands[] = {Cmd::TabsLeft, Cmd::TabsTop, Cmd::TabsRight, Cmd::TabsBottom};

// Two paths name the same file when their canonical forms are equal.
QString CanonicalPath(const QString& path)
{
    const QFileInfo info(path);
    const QString canonical = info.canonicalFilePath();
    return canonical.isEmpty() ? QDir::cleanPath(info.absoluteFilePath()) : canonical;
}
} // namespace

CMainFrame::CMainFrame(CMorvaneApp* app)
    : m_app(app)
{
    setObjectName(QStringLiteral("MainFrame"));
}

CMainFrame::~CMainFrame()
{
    if (m_indicators)
        qApp->removeEventFilter(m_indicators);
    // The children go first, while this frame can still take their last signals.
    disconnect(m_statusConnection);
    disconnect(m_titleConnection);
    if (m_mdiArea) {
        m_mdiArea->disconnect(this);
        delete takeCentralWidget();
    }
}

bool CMainFrame::Create()
{
    m_settings.LoadViewSettings();
    m_parsers.Load();

    m_mdiArea = new QMdiArea(this);
    m_mdiArea->setObjectName(QStringLiteral("MdiArea"));
    setCentralWidget(m_mdiArea);
    connect(m_mdiArea, &QMdiArea::subWindowActivated, this, &CMainFrame::OnSubWindowActivated);

    CreateActions();
    CreateMenus();
    CreateToolBar();
    CreateStatusBar();

    m_settings.LoadOtherSettings();

    // Document tabs at the top; the saved flag is taken later, without installing again.
    m_tabAlignment = 1;
    InstallTabs();
    m_tabContextMenu = new QMenu(this);
    m_tabContextMenu->setObjectName(QStringLiteral("TabContextMenu"));
    for (const int id : {int(Cmd::FileSave), int(Cmd::FileClose), int(Cmd::CloseAllButSelected),
                         int(Cmd::CopyFilePath), int(Cmd::OpenContainingFolder)})
        m_tabContextMenu->addAction(Action(id));
    if (m_app)
        connect(m_app, &CMorvaneApp::recentFilesChanged, this, &CMainFrame::RebuildRecentFilesMenu);
    // Paste follows the clipboard, which other programs change too.
    connect(QApplication::clipboard(), &QClipboard::dataChanged, this,
            &CMainFrame::RequestCommandUpdate);
    RebuildRecentFilesMenu();
    UpdateTitle();
    resize(1000, 700);
    return true;
}

void CMainFrame::ShowMainWindow()
{
    CRegistryStore store;
    const QByteArray geometry = QByteArray::fromBase64(
        store.GetProfileString(kBarState, QStringLiteral("Geometry")).toLatin1());
    const QByteArray state = QByteArray::fromBase64(
        store.GetProfileString(kBarState, QStringLiteral("State")).toLatin1());
    if (!geometry.isEmpty())
        restoreGeometry(geometry);
    if (!state.isEmpty())
        restoreState(state);
    m_settings.MDITabInActive = store.GetProfileInt(QStringLiteral("Settings"),
                                                    QStringLiteral("MDITabInActive"), 0);
    show();
    UpdateCommandUI();
}

QAction* CMainFrame::AddCommand(int id, const QString& text, const QKeySequence& shortcut,
                                std::function<void()> handler, std::function<void(CCmdUI&)> update)
{
    QAction* action = m_actions.value(id);
    if (!action) {
        action = new QAction(text, this);
        action->setData(id);
        m_actions.insert(id, action);
        connect(action, &QAction::triggered, this, [this, id] { OnCommand(id); });
    }
    if (!shortcut.isEmpty())
        action->setShortcut(shortcut);
    if (handler)
        m_handlers.insert(id, std::move(handler));
    if (update)
        m_updaters.insert(id, std::move(update));
    return action;
}

void CMainFrame::OnCommand(int id)
{
    if (CChildFrame* child = ActiveChild(); child && child->OnCmdMsg(id)) {
        RequestCommandUpdate();
        return;
    }
    if (const auto handler = m_handlers.value(id))
        handler();
    RequestCommandUpdate();
}

void CMainFrame::UpdateCommandUI()
{
    m_updatePending = false;
    CChildFrame* child = ActiveChild();
    for (auto it = m_actions.cbegin(); it != m_actions.cend(); ++it) {
        CCmdUI ui;
        if (child)
            child->OnUpdateCmdUI(it.key(), ui);
        if (!ui.handled) {
            if (const auto update = m_updaters.value(it.key())) {
                update(ui);
            } else if (!m_handlers.contains(it.key())) {
                // A command nobody handles now is greyed.
                ui.enabled = false;
            }
        }
        QAction* action = it.value();
        action->setEnabled(ui.enabled);
        if (action->isCheckable())
            action->setChecked(ui.checked);
    }
}

void CMainFrame::RequestCommandUpdate()
{
    if (m_updatePending)
        return;
    m_updatePending = true;
    QTimer::singleShot(0, this, &CMainFrame::UpdateCommandUI);
}

CDocument* CMainFrame::ActiveDocument() const
{
    CChildFrame* child = ActiveChild();
    return child ? child->GetDocument() : nullptr;
}

void CMainFrame::CreateActions()
{
    using namespace Cmd;
    auto hasDocument = [this](CCmdUI& ui) { ui.enabled = ActiveDocument() != nullptr; };

    AddCommand(FileNew, tr("&File"), QKeySequence::New, [this] { m_app->OnFileNew(); })
        ->setToolTip(tr("New File"));
    AddCommand(FileNewFromTemplate, tr("F&rom Template"), QKeySequence(), {});
    AddCommand(FileOpen, tr("&Open..."), QKeySequence::Open, [this] { m_app->OnFileOpen(); });
    AddCommand(FileOpenAsHex, tr("Open as &Hex..."), QKeySequence(tr("Ctrl+Shift+O")),
               [this] { m_app->OnFileOpenAsHex(); });
    AddCommand(FileClose, tr("&Close"), QKeySequence(tr("Ctrl+W")),
               [this] { if (CChildFrame* child = ActiveChild()) child->close(); }, hasDocument);
    AddCommand(FileSave, tr("&Save"), QKeySequence::Save,
               [this] { if (CDocument* d = ActiveDocument()) d->DoFileSave(); }, hasDocument);
    AddCommand(FileSaveAs, tr("Save &As..."), QKeySequence(),
               [this] { if (CDocument* d = ActiveDocument()) d->DoSave(QString()); }, hasDocument);
    AddCommand(FileSaveAll, tr("Save A&ll"), QKeySequence(tr("Ctrl+Shift+S")),
               [this] { m_app->OnFileSaveAll(); });
    AddCommand(FilePrint, tr("&Print..."), QKeySequence::Print, {});
    AddCommand(FilePrintPreview, tr("Print Pre&view"), QKeySequence(), {});
    AddCommand(FilePrintDirect, tr("Print &Direct"), QKeySequence(), {});
    // Ctrl+Q comments lines here, so leaving takes the window's own key.
    AddCommand(AppExit, tr("E&xit"), QKeySequence(QStringLiteral("Alt+F4")), [this] { close(); });
    AddCommand(AppAbout, tr("&About Morvane..."), QKeySequence(), [this] { m_app->OnAppAbout(); });
    AddCommand(CheckForUpdates, tr("Check for &Updates..."), QKeySequence(),
               [this] { OnCheckForUpdates(); });

    CreateEditActions();
    CreateViewActions();
    CreateWindowActions();

    for (auto it = m_actions.cbegin(); it != m_actions.cend(); ++it) {
        const QIcon icon = CommandIcons::ForCommand(it.key(), style());
        if (!icon.isNull())
            it.value()->setIcon(icon);
    }
}

void CMainFrame::CreateEditActions()
{
    using namespace Cmd;
    // Editing commands belong to the text view, which answers them through its frame;
    // with no text view active they are greyed. Tab and Shift+Tab are shown but left to
    // the control, so that typing a tab never goes through a menu.
    struct Entry
    {
        int id;
        const char* text;
        QKeySequence shortcut;
        const char* shownKey = nullptr; // key shown in the menu, left to the control
    };
    const Entry entries[] = {
        {EditUndo, QT_TR_NOOP("Undo"), QKeySequence::Undo},
        {EditRedo, QT_TR_NOOP("Redo"), QKeySequence(QStringLiteral("Ctrl+Y"))},
        {EditCut, QT_TR_NOOP("Cut"), QKeySequence::Cut},
        {EditCopy, QT_TR_NOOP("Copy"), QKeySequence::Copy},
        {EditPaste, QT_TR_NOOP("Paste"), QKeySequence::Paste},
        {EditClear, QT_TR_NOOP("Delete"), QKeySequence(), "Del"},
        {EditCutAppend, QT_TR_NOOP("Cut Append"), QKeySequence()},
        {EditCopyAppend, QT_TR_NOOP("Copy Append"), QKeySequence()},
        {EditSelectAll, QT_TR_NOOP("Select All"), QKeySequence::SelectAll},
        {EditSelectWord, QT_TR_NOOP("Select Word"), QKeySequence()},
        {EditSelectLine, QT_TR_NOOP("Select Line"), QKeySequence()},
        {EditInsertDate, QT_TR_NOOP("Date"), QKeySequence()},
        {EditInsertTime, QT_TR_NOOP("Time"), QKeySequence()},
        {EditInsertFileName, QT_TR_NOOP("File Name"), QKeySequence()},
        {EditUpperCase, QT_TR_NOOP("Upper Case"), QKeySequence(QStringLiteral("Ctrl+Shift+U"))},
        {EditLowerCase, QT_TR_NOOP("Lower Case"), QKeySequence(QStringLiteral("Ctrl+U"))},
        {EditIndentRight, QT_TR_NOOP("Indent Right"), QKeySequence(), "Tab"},
        {EditIndentLeft, QT_TR_NOOP("Indent Left"), QKeySequence(), "Shift+Tab"},
        {EditComment, QT_TR_NOOP("Comment"), QKeySequence(QStringLiteral("Ctrl+Q"))},
        {EditUncomment, QT_TR_NOOP("UnComment"), QKeySequence(QStringLiteral("Ctrl+Shift+Q"))},
        {EditSwapLines, QT_TR_NOOP("Swap Lines"), QKeySequence(QStringLiteral("Ctrl+T"))},
        {EditCutLine, QT_TR_NOOP("Cut Line"), QKeySequence(QStringLiteral("Ctrl+L"))},
        {EditCopyLine, QT_TR_NOOP("Copy Line"), QKeySequence(QStringLiteral("Ctrl+Shift+T"))},
        {EditDeleteWord, QT_TR_NOOP("Delete Word"), QKeySequence()},
        {EditDeleteToEol, QT_TR_NOOP("Delete to End of Line"), QKeySequence()},
        {EditDeleteLine, QT_TR_NOOP("Delete Line"), QKeySequence(QStringLiteral("Ctrl+Shift+L"))},
        {EditTabsToSpaces, QT_TR_NOOP("Tabs to Spaces"), QKeySequence()},
        {EditSpacesToTabs, QT_TR_NOOP("Spaces to Tabs"), QKeySequence()},
        {EditTrimTrailing, QT_TR_NOOP("Trim Trailing Spaces"), QKeySequence()},
        {CreateTemplateFromSelection, QT_TR_NOOP("Create template from Selection"), QKeySequence()},
        {EditFind, QT_TR_NOOP("Find..."), QKeySequence::Find},
        {EditReplace, QT_TR_NOOP("Replace..."), QKeySequence(QStringLiteral("Ctrl+H"))},
        {EditFindNext, QT_TR_NOOP("Find Next"), QKeySequence(QStringLiteral("F3"))},
        {EditFindPrevious, QT_TR_NOOP("Find Previous"), QKeySequence(QStringLiteral("Shift+F3"))},
        {FindInFiles, QT_TR_NOOP("Find in Files..."), QKeySequence(QStringLiteral("Ctrl+Shift+F"))},
        {EditGoto, QT_TR_NOOP("Goto..."), QKeySequence(QStringLiteral("Ctrl+G"))},
        {BookmarkToggle, QT_TR_NOOP("Toggle Bookmark"), QKeySequence(QStringLiteral("Ctrl+F2"))},
        {BookmarkNext, QT_TR_NOOP("Next Bookmark"), QKeySequence(QStringLiteral("F2"))},
        {BookmarkPrevious, QT_TR_NOOP("Previous Bookmark"), QKeySequence(QStringLiteral("Shift+F2"))},
        {BookmarkClear, QT_TR_NOOP("Clear Bookmarks"), QKeySequence()},
        {CopyFilePath, QT_TR_NOOP("Copy Filepath"), QKeySequence()},
        {OpenContainingFolder, QT_TR_NOOP("Open Containing Folder"), QKeySequence()},
    };
    for (const Entry& entry : entries) {
        QString text = tr(entry.text);
        if (entry.shownKey)
            text += QLatin1Char('\t') + QKeySequence(QString::fromLatin1(entry.shownKey))
                                            .toString(QKeySequence::NativeText);
        AddCommand(entry.id, text, entry.shortcut, {});
    }

    // Searching with nothing to search in says so; a text or hex frame answers first.
    for (const int id : {int(EditFind), int(EditReplace), int(EditFindNext), int(EditFindPrevious)})
        AddCommand(id, QString(), QKeySequence(), [this] { OnNothingToFind(); });

    auto textFrameActive = [this](CCmdUI& ui) { ui.enabled = ActiveTextFrame() != nullptr; };
    AddCommand(EditGoto, QString(), QKeySequence(), [this] { OnGoto(); }, textFrameActive);

    // The document's path, for every kind of document (the tab menu offers these too).
    auto hasPath = [this](CCmdUI& ui) {
        const CDocument* document = ActiveDocument();
        ui.enabled = document && !document->GetPathName().isEmpty();
    };
    AddCommand(CopyFilePath, QString(), QKeySequence(), [this] { OnCopyFilePath(); }, hasPath);
    AddCommand(OpenContainingFolder, QString(), QKeySequence(), [this] { OnOpenContainingFolder(); },
               hasPath);
}

void CMainFrame::CreateViewActions()
{
    using namespace Cmd;
    const struct
    {
        int id;
        const char* text;
    } toggles[] = {
        {ViewWordWrap, QT_TR_NOOP("&Word Wrap")},
        {ViewWhitespace, QT_TR_NOOP("White&space")},
        {ViewLineEndings, QT_TR_NOOP("Line &Endings")},
        {ViewCaretLine, QT_TR_NOOP("&Caret Line")},
        {ViewLineNumbers, QT_TR_NOOP("Line &Numbers")},
        {ViewCodeFolding, QT_TR_NOOP("Code &Folding")},
        {ViewBlockSelect, QT_TR_NOOP("&Block Select")},
        {ViewMatchBracket, QT_TR_NOOP("&Match Bracket")},
    };
    for (const auto& toggle : toggles) {
        const int id = toggle.id;
        int ViewSettings::*member = nullptr;
        for (const ViewToggle& t : kViewToggles) {
            if (t.id == id)
                member = t.member;
        }
        QAction* action = AddCommand(
            id, tr(toggle.text), QKeySequence(), [this, id] { ToggleViewSetting(id); },
            [this, member](CCmdUI& ui) { ui.checked = m_settings.view.*member != 0; });
        action->setCheckable(true);
    }
    AddCommand(ViewFont, tr("&Font..."), QKeySequence(), [this] { OnViewFont(); });

    AddCommand(NavigateBack, tr("&Back"), QKeySequence(QStringLiteral("Alt+Left")),
               [this] { OnNavigate(false); },
               [this](CCmdUI& ui) { ui.enabled = m_app && m_app->GetNavigation().CanGoBack(); });
    AddCommand(NavigateForward, tr("&Forward"), QKeySequence(QStringLiteral("Alt+Right")),
               [this] { OnNavigate(true); },
               [this](CCmdUI& ui) { ui.enabled = m_app && m_app->GetNavigation().CanGoForward(); });
}

void CMainFrame::CreateWindowActions()
{
    using namespace Cmd;
    AddCommand(WindowNew, tr("&New Window"), QKeySequence(), [this] { OnNewWindow(); },
               [this](CCmdUI& ui) { ui.enabled = ActiveTextFrame() != nullptr; });
    AddCommand(CloseAllButSelected, tr("Close &All But Selected"), QKeySequence(),
               [this] { OnCloseAllButSelected(); },
               [this](CCmdUI& ui) { ui.enabled = ChildFrames().size() > 1; });

    // Checked while the flag is clear, which is also how the program starts.
    AddCommand(TabsToggle, tr("&Hide Tabs"), QKeySequence(), [this] { ToggleTabs(); },
               [this](CCmdUI& ui) { ui.checked = m_settings.MDITabInActive == 0; })
        ->setCheckable(true);
    const char* alignTexts[] = {QT_TR_NOOP("Tabs on the &Left"), QT_TR_NOOP("Tabs on the &Top"),
                                QT_TR_NOOP("Tabs on the &Right"), QT_TR_NOOP("Tabs on the &Bottom")};
    for (int index = 0; index < 4; ++index) {
        AddCommand(kTabCommands[index], tr(alignTexts[index]), QKeySequence(),
                   [this, index] { SetTabAlignment(index); },
                   [this, index](CCmdUI& ui) { ui.checked = m_tabAlignment == index; })
            ->setCheckable(true);
    }
}

void CMainFrame::CreateMenus()
{
    using namespace Cmd;
    auto add = [this](QMenu* menu, std::initializer_list<int> ids) {
        for (const int id : ids) {
            if (id == 0)
                menu->addSeparator();
            else
                menu->addAction(Action(id));
        }
    };
    auto refreshOnShow = [this](QMenu* menu) {
        connect(menu, &QMenu::aboutToShow, this, &CMainFrame::UpdateCommandUI);
    };

    m_fileMenu = menuBar()->addMenu(tr("&File"));
    m_fileMenu->setObjectName(QStringLiteral("FileMenu"));
    QMenu* newMenu = m_fileMenu->addMenu(tr("&New"));
    add(newMenu, {FileNew, FileNewFromTemplate});
    add(m_fileMenu, {FileOpen, FileOpenAsHex, FileClose, 0, FileSave, FileSaveAs, FileSaveAll, 0,
                     FilePrint, FilePrintPreview, FilePrintDirect, 0});
    m_recentMenu = m_fileMenu->addMenu(tr("Recent &Files"));
    m_fileMenu->addSeparator();
    m_fileMenu->addAction(Action(AppExit));
    refreshOnShow(m_fileMenu);
    refreshOnShow(newMenu);

    QMenu* edit = menuBar()->addMenu(tr("&Edit"));
    edit->setObjectName(QStringLiteral("EditMenu"));
    add(edit, {EditUndo, EditRedo, 0, EditCut, EditCopy, EditPaste, EditClear, EditCutAppend,
               EditCopyAppend, 0, EditSelectAll, EditSelectWord, EditSelectLine, 0});
    QMenu* insert = edit->addMenu(tr("&Insert"));
    add(insert, {EditInsertDate, EditInsertTime, EditInsertFileName});
    QMenu* lines = edit->addMenu(tr("&Lines"));
    add(lines, {EditCutLine, EditCopyLine, EditDeleteLine, EditDeleteWord, EditDeleteToEol, 0,
                EditSwapLines});
    QMenu* format = edit->addMenu(tr("F&ormat"));
    add(format, {EditUpperCase, EditLowerCase, 0, EditIndentRight, EditIndentLeft, 0, EditComment,
                 EditUncomment, 0, EditTabsToSpaces, EditSpacesToTabs, EditTrimTrailing});
    add(edit, {0, CreateTemplateFromSelection, CopyFilePath, OpenContainingFolder});
    for (QMenu* menu : {edit, insert, lines, format})
        refreshOnShow(menu);

    QMenu* search = menuBar()->addMenu(tr("&Search"));
    search->setObjectName(QStringLiteral("SearchMenu"));
    add(search, {EditFind, EditReplace, EditFindNext, EditFindPrevious, FindInFiles, 0, EditGoto, 0,
                 BookmarkToggle, BookmarkNext, BookmarkPrevious, BookmarkClear, 0, NavigateBack,
                 NavigateForward});
    refreshOnShow(search);

    QMenu* view = menuBar()->addMenu(tr("&View"));
    view->setObjectName(QStringLiteral("ViewMenu"));
    m_viewAsMenu = view->addMenu(tr("View &As"));
    m_viewAsMenu->setObjectName(QStringLiteral("ViewAsMenu"));
    ViewAsMenu::Fill(m_viewAsMenu, m_parsers.MenuNames(), [this](int id, const QString& text) {
        return AddCommand(id, text, QKeySequence(), {});
    });
    add(view, {0, ViewWordWrap, ViewWhitespace, ViewLineEndings, ViewCaretLine, ViewLineNumbers,
               ViewCodeFolding, ViewBlockSelect, ViewMatchBracket, 0, ViewFont, 0});
    refreshOnShow(view);
    refreshOnShow(m_viewAsMenu);
    m_viewMenu = view;

    QMenu* window = menuBar()->addMenu(tr("&Window"));
    window->setObjectName(QStringLiteral("WindowMenu"));
    add(window, {WindowNew, CloseAllButSelected, 0, TabsToggle, TabsLeft, TabsTop, TabsRight,
                 TabsBottom});
    refreshOnShow(window);
    m_windowMenu = window;
    connect(window, &QMenu::aboutToShow, this, &CMainFrame::RebuildWindowList);

    QMenu* help = menuBar()->addMenu(tr("&Help"));
    help->setObjectName(QStringLiteral("HelpMenu"));
    add(help, {CheckForUpdates, 0, AppAbout});
}

void CMainFrame::CreateToolBar()
{
    using namespace Cmd;
    m_toolBar = addToolBar(tr("Standard Buttons"));
    m_toolBar->setObjectName(QStringLiteral("StandardToolBar"));
    // The size is read once: a change takes effect at the next start.
    const int size = m_settings.view.LargeTBIcons ? 24 : 16;
    m_toolBar->setIconSize(QSize(size, size));
    for (const int id : {int(FileNew), int(FileOpen), int(FileSave), int(FileSaveAll), 0,
                         int(EditCut), int(EditCopy), int(EditPaste), 0, int(EditUndo),
                         int(EditRedo), 0, int(FilePrint), 0}) {
        if (id == 0)
            m_toolBar->addSeparator();
        else
            m_toolBar->addAction(Action(id));
    }

    m_findBox = new CHistoryComboBox(m_toolBar);
    m_findBox->setObjectName(QStringLiteral("FindBox"));
    m_findBox->setEditable(true);
    m_findBox->setInsertPolicy(QComboBox::NoInsert);
    m_findBox->setHistorySection(QStringLiteral("FindBox"));
    m_findBox->setFixedWidth(175);
    m_findBox->setMaxVisibleItems(8); // a list about 150 pixels high
    m_findBox->setToolTip(tr("Find"));
    m_findBox->loadHistory();
    m_findBox->lineEdit()->setPlaceholderText(tr("Find"));
    connect(m_findBox->lineEdit(), &QLineEdit::returnPressed, this, [this] {
        m_findBox->addToHistory(m_findBox->currentText());
        OnCommand(Cmd::EditFindNext);
    });
    m_toolBar->addWidget(m_findBox);

    for (const int id : {int(EditFindNext), int(EditFindPrevious), int(EditFind), int(EditReplace),
                         int(FindInFiles), 0, int(EditGoto), int(BookmarkToggle), int(BookmarkNext),
                         int(BookmarkPrevious), 0, int(NavigateBack), int(NavigateForward), 0,
                         int(ViewWordWrap), int(ViewWhitespace), int(ViewLineEndings),
                         int(ViewLineNumbers), int(ViewFont)}) {
        if (id == 0)
            m_toolBar->addSeparator();
        else
            m_toolBar->addAction(Action(id));
    }

    if (m_viewMenu) {
        m_viewMenu->addAction(m_toolBar->toggleViewAction());
        QAction* statusToggle = m_viewMenu->addAction(tr("&Status Bar"));
        statusToggle->setCheckable(true);
        statusToggle->setChecked(true);
        connect(statusToggle, &QAction::toggled, statusBar(), &QWidget::setVisible);
    }
}

void CMainFrame::CreateStatusBar()
{
    auto pane = [this](const QString& name, const QString& text) {
        auto* label = new QLabel(text, this);
        label->setObjectName(name);
        label->setAlignment(Qt::AlignCenter);
        // Wide enough for the longest text, so the bar doesn't jump.
        label->setMinimumWidth(label->fontMetrics().horizontalAdvance(text) + 8);
        return label;
    };
    m_positionLabel = new QLabel(this);
    m_positionLabel->setObjectName(QStringLiteral("PositionPane"));
    m_overtypeLabel = pane(QStringLiteral("OvertypePane"), tr("OVR"));
    m_capsLabel = pane(QStringLiteral("CapsPane"), tr("CAP"));
    m_numLabel = pane(QStringLiteral("NumPane"), tr("NUM"));
    m_scrollLabel = pane(QStringLiteral("ScrollPane"), tr("SCRL"));
    m_progress = new QProgressBar(this);
    m_progress->setObjectName(QStringLiteral("ProgressPane"));
    m_progress->setFixedWidth(150);
    m_progress->setTextVisible(false);
    m_progress->setRange(0, 1000);
    m_progress->setVisible(false);
    statusBar()->addPermanentWidget(m_positionLabel);
    for (QLabel* label : {m_overtypeLabel, m_capsLabel, m_numLabel, m_scrollLabel})
        statusBar()->addPermanentWidget(label);
    statusBar()->addPermanentWidget(m_progress);

    m_indicators = new KeyboardIndicators(this);
    qApp->installEventFilter(m_indicators);
    connect(m_indicators, &KeyboardIndicators::changed, this, &CMainFrame::UpdateIndicators);
    // The control flips its mode as it takes the key, after the filter has seen it.
    connect(m_indicators, &KeyboardIndicators::insertPressed, this,
            [this] { QTimer::singleShot(0, this, &CMainFrame::UpdateIndicators); });
    UpdateIndicators();
}

void CMainFrame::UpdateIndicators()
{
    const CScrivelFrame* frame = ActiveTextFrame();
    const bool overtype = frame && frame->GetView()->GetEditor()->SendScintilla(
                                       QsciScintillaBase::SCI_GETOVERTYPE) != 0;
    m_overtypeLabel->setText(overtype ? tr("OVR") : tr("INS"));
    m_overtypeLabel->setEnabled(frame != nullptr);
    // A lock that is off shows its pane greyed, as it always has.
    m_capsLabel->setEnabled(m_indicators->CapsLock());
    m_numLabel->setEnabled(m_indicators->NumLock());
    m_scrollLabel->setEnabled(m_indicators->ScrollLock());
}

QString CMainFrame::FindText() const
{
    return m_findBox ? m_findBox->currentText() : QString();
}

void CMainFrame::RebuildWindowList()
{
    // The open documents below the window commands, the active one checked.
    qDeleteAll(std::exchange(m_windowListActions, {}));
    const auto frames = ChildFrames();
    if (frames.isEmpty())
        return;
    m_windowListActions << m_windowMenu->addSeparator();
    CChildFrame* active = ActiveChild();
    int number = 1;
    for (CChildFrame* frame : frames) {
        QString title = frame->windowTitle();
        title.replace(QLatin1Char('&'), QStringLiteral("&&"));
        QAction* action = m_windowMenu->addAction(
            number <= 9 ? QStringLiteral("&%1 %2").arg(number).arg(title) : title);
        action->setCheckable(true);
        action->setChecked(frame == active);
        QPointer<CChildFrame> target(frame);
        connect(action, &QAction::triggered, this, [this, target] {
            if (!target)
                return;
            if (target->isMinimized())
                target->showNormal();
            m_mdiArea->setActiveSubWindow(target);
        });
        m_windowListActions << action;
        ++number;
    }
}

void CMainFrame::RebuildRecentFilesMenu()
{
    if (!m_recentMenu || !m_app)
        return;
    m_recentMenu->clear();
    const QStringList files = m_app->GetRecentFiles().Files();
    int index = 1;
    for (const QString& file : files) {
        QAction* action = m_recentMenu->addAction(
            QStringLiteral("&%1 %2").arg(index).arg(QDir::toNativeSeparators(file)));
        connect(action, &QAction::triggered, this, [this, file] {
            if (!m_app->OpenDocumentFile(file) && !QFileInfo::exists(file)) {
                m_app->GetRecentFiles().Remove(file);
                RebuildRecentFilesMenu();
            }
        });
        ++index;
    }
    m_recentMenu->setEnabled(!files.isEmpty());
}

CChildFrame* CMainFrame::ActiveChild() const
{
    if (!m_mdiArea)
        return nullptr;
    QMdiSubWindow* window = m_mdiArea->activeSubWindow();
    if (!window) {
        const auto windows = m_mdiArea->subWindowList(QMdiArea::ActivationHistoryOrder);
        if (!windows.isEmpty())
            window = windows.last();
    }
    return qobject_cast<CChildFrame*>(window);
}

QList<CChildFrame*> CMainFrame::ChildFrames() const
{
    QList<CChildFrame*> frames;
    if (!m_mdiArea)
        return frames;
    const auto windows = m_mdiArea->subWindowList();
    for (QMdiSubWindow* window : windows) {
        if (auto* child = qobject_cast<CChildFrame*>(window))
            frames << child;
    }
    return frames;
}

bool CMainFrame::ActivateOpenDocument(const QString& path)
{
    if (path.isEmpty())
        return false;
    const QString wanted = CanonicalPath(path);
    const auto frames = ChildFrames();
    for (CChildFrame* child : frames) {
        CDocument* document = child->GetDocument();
        if (!document || document->GetPathName().isEmpty())
            continue;
        if (CanonicalPath(document->GetPathName()) == wanted) {
            if (child->isMinimized())
                child->showNormal();
            m_mdiArea->setActiveSubWindow(child);
            return true;
        }
    }
    return false;
}

void CMainFrame::ApplyParserForExtension(CScrivelDoc* document, const QString& extension)
{
    // The first definition that lists the extension wins; none leaves the colouring alone.
    const int index = m_parsers.FindByExtension(extension);
    if (index < 0)
        return;
    const auto frames = document->GetFrames();
    for (CChildFrame* frame : frames) {
        if (auto* text = qobject_cast<CScrivelFrame*>(frame))
            text->SelectParser(index);
    }
}

void CMainFrame::OnFrameCreated(CChildFrame* frame)
{
    if (auto* text = qobject_cast<CScrivelFrame*>(frame))
        text->SetParserList(&m_parsers);
    if (auto* text = qobject_cast<CScrivelFrame*>(frame); text && text->GetView() && m_app) {
        // Positions of a view that is gone are never offered again.
        const void* view = text->GetView();
        const void* editor = text->GetView()->GetEditor();
        connect(text->GetView(), &QObject::destroyed, this, [this, view, editor] {
            m_app->GetNavigation().RemoveView(view);
            m_app->GetNavigation().RemoveView(editor);
        });
    }
    // Every document fills the area, with or without tabs, even when it arrives while
    // the window is still hidden at start-up.
    frame->showMaximized();
    connect(frame, &QWidget::windowTitleChanged, this, &CMainFrame::UpdateTitle);
    connect(frame, &QObject::destroyed, this, &CMainFrame::UpdateTitle, Qt::QueuedConnection);
    UpdateTitle();
    RequestCommandUpdate();
}

void CMainFrame::OnSubWindowActivated(QMdiSubWindow* window)
{
    disconnect(m_statusConnection);
    disconnect(m_titleConnection);
    auto* child = qobject_cast<CChildFrame*>(window);
    if (child) {
        // The caret or the selection moved: the position pane and the commands follow.
        m_statusConnection = connect(child, &CChildFrame::statusTextChanged, this,
                                     [this](const QString& text) {
                                         m_positionLabel->setText(text);
                                         RequestCommandUpdate();
                                     });
        m_positionLabel->setText(child->StatusText());
    } else {
        m_positionLabel->clear();
    }
    UpdateIndicators();
    UpdateTitle();
    RequestCommandUpdate();
}

void CMainFrame::UpdateTitle()
{
    CChildFrame* child = ActiveChild();
    if (child && !child->windowTitle().isEmpty())
        setWindowTitle(child->windowTitle() + QStringLiteral(" - Morvane"));
    else
        setWindowTitle(QStringLiteral("Morvane"));
}

QString CMainFrame::PositionText() const
{
    return m_positionLabel ? m_positionLabel->text() : QString();
}

void CMainFrame::StartProgress(qint64 range)
{
    m_progressRange = range > 0 ? range : 1;
    m_progress->setValue(0);
    m_progress->setVisible(true);
}

void CMainFrame::SetProgress(qint64 done)
{
    const int value = int(done * 1000 / m_progressRange);
    if (value != m_progress->value())
        m_progress->setValue(std::min(value, 1000));
}

void CMainFrame::StopProgress()
{
    m_progress->setVisible(false);
    m_progress->reset();
}

QList<CScrivelView*> CMainFrame::TextViews() const
{
    QList<CScrivelView*> views;
    const auto frames = ChildFrames();
    for (CChildFrame* child : frames) {
        if (auto* frame = qobject_cast<CScrivelFrame*>(child); frame && frame->GetView())
            views << frame->GetView();
    }
    return views;
}

CScrivelFrame* CMainFrame::ActiveTextFrame() const
{
    return qobject_cast<CScrivelFrame*>(ActiveChild());
}

void CMainFrame::ToggleViewSetting(int id)
{
    ViewSettings& v = m_settings.view;
    for (const ViewToggle& toggle : kViewToggles) {
        if (toggle.id == id)
            v.*toggle.member = v.*toggle.member ? 0 : 1;
    }
    if (id == Cmd::ViewMatchBracket)
        return;

    const auto views = TextViews();
    for (CScrivelView* view : views) {
        CMFCScintilla* editor = view->GetEditor();
        switch (id) {
        case Cmd::ViewWordWrap:
            editor->SetWordWrap(v.WordWrap != 0);
            break;
        case Cmd::ViewWhitespace:
            editor->SetViewWS(v.Whitespace == 1 ? QsciScintillaBase::SCWS_VISIBLEALWAYS
                                                : QsciScintillaBase::SCWS_INVISIBLE);
            break;
        case Cmd::ViewLineEndings:
            editor->SetViewEOL(v.LineEndings != 0);
            break;
        case Cmd::ViewCaretLine:
            editor->SetCaretLine(v.CaretLine != 0, v.CaretLineColour, v.CaretLineTransparency);
            break;
        case Cmd::ViewLineNumbers:
            editor->SetLineNumberMargin(v.LineNumbers != 0);
            break;
        case Cmd::ViewBlockSelect:
            editor->SetBlockSelect(v.BlockSelect != 0);
            break;
        case Cmd::ViewCodeFolding:
            // Off also unfolds what the margin folded, which only the view knows.
            view->SetFolding(v.CodeFolding != 0);
            break;
        default:
            break;
        }
    }
}

void CMainFrame::OnViewFont()
{
    QFont current(m_settings.view.FontStyle, m_settings.view.FontSize);
    current.setBold(m_settings.view.FontBold != 0);
    current.setItalic(m_settings.view.FontItalic != 0);
    QFontDialog dialog(current, this);
    dialog.setObjectName(QStringLiteral("FontDialog"));
    dialog.setOption(QFontDialog::DontUseNativeDialog, true);
    if (dialog.exec() == QDialog::Accepted)
        ApplyFont(dialog.selectedFont());
}

void CMainFrame::ApplyFont(const QFont& font)
{
    ViewSettings& v = m_settings.view;
    v.FontStyle = font.family().left(ViewSettings::MaxFontStyleLength);
    v.FontBold = font.weight() >= QFont::Bold ? 1 : 0;
    v.FontItalic = font.italic() ? 1 : 0;
    const int points = font.pointSize() > 0 ? font.pointSize() : qRound(font.pointSizeF());
    if (points > 0)
        v.FontSize = points;

    const auto views = TextViews();
    // The view fits its line-number margin to the new font.
    for (CScrivelView* view : views)
        view->SetFont(v.FontStyle, v.FontSize, v.FontBold != 0, v.FontItalic != 0);
}

void CMainFrame::OnNavigate(bool forward)
{
    if (!m_app)
        return;
    NavigationHistory& history = m_app->GetNavigation();
    NavigationHistory::Entry entry;
    if (!(forward ? history.Forward(entry) : history.Back(entry)))
        return;
    const auto frames = ChildFrames();
    for (CChildFrame* child : frames) {
        auto* frame = qobject_cast<CScrivelFrame*>(child);
        if (!frame || !frame->GetView())
            continue;
        CScrivelView* view = frame->GetView();
        CMFCScintilla* editor = view->GetEditor();
        if (entry.view != view && entry.view != editor)
            continue;
        if (frame->isMinimized())
            frame->showNormal();
        m_mdiArea->setActiveSubWindow(frame);
        editor->GotoPos(entry.position);
        editor->ScrollCaret();
        editor->setFocus();
        return;
    }
}

void CMainFrame::OnCloseAllButSelected()
{
    CChildFrame* active = ActiveChild();
    const auto frames = ChildFrames();
    for (CChildFrame* child : frames) {
        // Queued, like a posted close: each frame asks about its own changes in turn.
        if (child != active)
            QMetaObject::invokeMethod(child, &QWidget::close, Qt::QueuedConnection);
    }
}

void CMainFrame::OnCheckForUpdates()
{
    const QString page = CRegistryStore(CRegistryStore::LocalMachine)
                             .GetProfileString(QStringLiteral("Settings"),
                                               QStringLiteral("CheckForUpdates"));
    if (page.trimmed().isEmpty()) {
        QMessageBox::information(this, tr("Morvane"), tr("There is no update page configured."));
        return;
    }
    const QUrl url = QUrl::fromUserInput(page.trimmed());
    if (!url.isValid() || !QDesktopServices::openUrl(url))
        QMessageBox::warning(this, tr("Morvane"), tr("Cannot open the update page \"%1\".").arg(page));
}

void CMainFrame::OnNewWindow()
{
    CScrivelFrame* active = ActiveTextFrame();
    CDocument* document = active ? active->GetDocument() : nullptr;
    CDocTemplate* docTemplate = document ? document->GetDocTemplate() : nullptr;
    if (!docTemplate)
        return;
    // A second view on the same text: it shares the control's document, undo and marks.
    CChildFrame* frame = docTemplate->CreateNewFrame(document);
    if (!frame)
        return;
    if (frame->parent() == nullptr)
        m_mdiArea->addSubWindow(frame);
    frame->show();
    m_mdiArea->setActiveSubWindow(frame);
}

void CMainFrame::OnGoto()
{
    CScrivelFrame* frame = ActiveTextFrame();
    if (!frame || !frame->GetView())
        return;
    CMFCScintilla* editor = frame->GetView()->GetEditor();
    CGotoDialog dialog(this, editor->GetLineCount());
    if (dialog.exec() != QDialog::Accepted)
        return;
    // A jump the navigation history records, like any other command jump.
    editor->JumpToLine(dialog.TargetLine());
    editor->setFocus();
}

void CMainFrame::OnNothingToFind()
{
    // A text view searches once the search is wired to it; anything else has no text.
    if (ActiveTextFrame())
        return;
    QMessageBox::warning(this, tr("Morvane"), tr("Find has nothing to do"));
}

void CMainFrame::OnCopyFilePath()
{
    if (const CDocument* document = ActiveDocument(); document && !document->GetPathName().isEmpty())
        QApplication::clipboard()->setText(QDir::toNativeSeparators(document->GetPathName()));
}

void CMainFrame::OnOpenContainingFolder()
{
    const CDocument* document = ActiveDocument();
    if (!document || document->GetPathName().isEmpty())
        return;
    const QString folder = QFileInfo(document->GetPathName()).absolutePath();
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(folder)))
        QMessageBox::warning(this, tr("Morvane"),
                             tr("Cannot open the folder \"%1\".").arg(QDir::toNativeSeparators(folder)));
}

bool CMainFrame::TabsInstalled() const
{
    return m_mdiArea && m_mdiArea->viewMode() == QMdiArea::TabbedView;
}

void CMainFrame::InstallTabs()
{
    m_mdiArea->setViewMode(QMdiArea::TabbedView);
    m_mdiArea->setDocumentMode(true);
    m_mdiArea->setTabsClosable(true);
    m_mdiArea->setTabsMovable(true);
    m_mdiArea->setTabPosition(kTabPositions[m_tabAlignment]);
    m_tabBar = m_mdiArea->findChild<QTabBar*>(QString(), Qt::FindDirectChildrenOnly);
    if (m_tabBar) {
        m_tabBar->setObjectName(QStringLiteral("DocumentTabs"));
        m_tabBar->setContextMenuPolicy(Qt::CustomContextMenu);
        connect(m_tabBar, &QWidget::customContextMenuRequested, this,
                &CMainFrame::ShowTabContextMenu, Qt::UniqueConnection);
    }
}

void CMainFrame::UninstallTabs()
{
    m_mdiArea->setViewMode(QMdiArea::SubWindowView);
    m_tabBar = nullptr;
    // Without tabs the documents still fill the area: the active one is maximised, and
    // the area maximises each one it activates after it.
    if (QMdiSubWindow* active = m_mdiArea->activeSubWindow())
        active->showMaximized();
}

void CMainFrame::ToggleTabs()
{
    m_settings.MDITabInActive = m_settings.MDITabInActive ? 0 : 1;
    if (m_settings.MDITabInActive) {
        InstallTabs();
        if (QMdiSubWindow* active = m_mdiArea->activeSubWindow())
            active->showMaximized();
    } else {
        UninstallTabs();
    }
    RequestCommandUpdate();
}

void CMainFrame::SetTabAlignment(int index)
{
    if (index < 0 || index > 3 || index == m_tabAlignment)
        return;
    m_tabAlignment = index;
    UninstallTabs();
    m_settings.MDITabInActive = 0;
    ToggleTabs();
}

void CMainFrame::ShowTabContextMenu(const QPoint& position)
{
    if (!m_tabBar)
        return;
    const int index = m_tabBar->tabAt(position);
    const auto windows = m_mdiArea->subWindowList(QMdiArea::CreationOrder);
    if (index < 0 || index >= windows.size())
        return;
    // The menu acts on the tab under the mouse.
    m_mdiArea->setActiveSubWindow(windows.at(index));
    UpdateCommandUI();
    m_tabContextMenu->popup(m_tabBar->mapToGlobal(position));
}

void CMainFrame::AddModelessWindow(QWidget* window)
{
    if (window && !m_modeless.contains(window))
        m_modeless << window;
}

void CMainFrame::DestroyModelessWindows()
{
    const auto windows = std::exchange(m_modeless, {});
    for (const QPointer<QWidget>& window : windows)
        delete window.data();
}

void CMainFrame::closeEvent(QCloseEvent* event)
{
    // The modeless windows go first, then the settings are written, all before anyone
    // is asked about unsaved work: a Cancel there leaves the windows gone.
    DestroyModelessWindows();
    Q_EMIT closing();
    m_settings.Save();
    CRegistryStore store;
    store.DeleteValue(QStringLiteral("FindReplace"), QStringLiteral("LastSelectedValue"));
    store.WriteProfileString(kBarState, QStringLiteral("State"),
                             QString::fromLatin1(saveState().toBase64()));
    store.WriteProfileString(kBarState, QStringLiteral("Geometry"),
                             QString::fromLatin1(saveGeometry().toBase64()));

    const auto frames = ChildFrames();
    QList<CDocument*> asked;
    for (CChildFrame* child : frames) {
        CDocument* document = child->GetDocument();
        if (!document || asked.contains(document))
            continue;
        asked << document;
        if (!document->SaveModified()) {
            event->ignore();
            return;
        }
    }
    // Everything has been saved or let go: close without asking again.
    for (CDocument* document : std::as_const(asked))
        document->SetModifiedFlag(false);
    m_mdiArea->closeAllSubWindows();
    if (m_app)
        m_app->ExitInstance();
    event->accept();
}
