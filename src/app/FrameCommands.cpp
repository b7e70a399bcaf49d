// The main frame's own commands: files, the recent files, windows and tabs, the
// document's path, and help. Every other command belongs to a subsystem.
#include "CMainFrame.h"

#include "CMorvaneApp.h"
#include "framework/CommandIds.h"
#include "settings/CRegistryStore.h"
#include "shell/CCommandRegistry.h"
#include "shell/CMenuPlaces.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QMdiArea>
#include <QMenu>
#include <QMessageBox>
#include <QStatusBar>
#include <QToolBar>
#include <QUrl>

#include <utility>

namespace {
constexpr int kTabCommands[] = {Cmd::TabsLeft, Cmd::TabsTop, Cmd::TabsRight, Cmd::TabsBottom};
} // namespace

void CMainFrame::RegisterFrameCommands()
{
    using namespace Cmd;
    CCommandRegistry& commands = *m_commands;
    CMenuPlaces& menus = *m_menus;
    auto hasDocument = [this](CCmdUI& ui) { ui.enabled = ActiveDocument() != nullptr; };
    auto hasPath = [this](CCmdUI& ui) {
        const CDocument* document = ActiveDocument();
        ui.enabled = document && !document->GetPathName().isEmpty();
    };
    const QString file = tr("File");

    // Where commands of several subsystems share a group, the order is kept here.
    menus.SetGroupOrder(MenuId::File, MenuGroup::FileOpen, {FileOpen, FileOpenAsHex, FileClose});
    menus.SetGroupOrder(MenuId::Edit, MenuGroup::EditOther,
                        {CreateTemplateFromSelection, CopyFilePath, OpenContainingFolder});

    commands.Register({.id = FileNew, .text = tr("&File"), .category = file,
                       .shortcut = QKeySequence(QKeySequence::New), .iconName = QStringLiteral("document-new"),
                       .toolTip = tr("New File"), .run = [this] { NewDocument(); }});
    commands.Register({.id = FileOpen, .text = tr("&Open..."), .category = file,
                       .shortcut = QKeySequence(QKeySequence::Open), .iconName = QStringLiteral("document-open"),
                       .run = [this] { m_app->OnFileOpen(); }});
    commands.Register({.id = FileClose, .text = tr("&Close"), .category = file,
                       .shortcut = QKeySequence(QStringLiteral("Ctrl+W")),
                       .iconName = QStringLiteral("document-close"),
                       .run = [this] { if (CChildFrame* child = ActiveChild()) child->close(); },
                       .update = hasDocument});
    // Ctrl+F4 as well, the key Windows users reach for.
    if (QAction* close = commands.Action(FileClose))
        close->setShortcuts({QKeySequence(QStringLiteral("Ctrl+W")), QKeySequence(QStringLiteral("Ctrl+F4"))});
    commands.Register({.id = FileSave, .text = tr("&Save"), .category = file,
                       .shortcut = QKeySequence(QKeySequence::Save), .iconName = QStringLiteral("document-save"),
                       .run = [this] { if (CDocument* d = ActiveDocument()) d->DoFileSave(); },
                       .update = hasDocument});
    commands.Register({.id = FileSaveAs, .text = tr("Save &As..."), .category = file,
                       .run = [this] { if (CDocument* d = ActiveDocument()) d->DoSave(QString()); },
                       .update = hasDocument});
    commands.Register({.id = FileSaveAll, .text = tr("Save A&ll"), .category = file,
                       .shortcut = QKeySequence(QStringLiteral("Ctrl+Shift+S")),
                       .iconName = QStringLiteral("document-save-all"),
                       .run = [this] { m_app->OnFileSaveAll(); }});
    // Ctrl+Q comments lines here, so leaving takes the window's own key.
    commands.Register({.id = AppExit, .text = tr("E&xit"), .category = file,
                       .shortcut = QKeySequence(QStringLiteral("Alt+F4")), .run = [this] { close(); }});
    menus.AddCommand(MenuId::FileNew, MenuGroup::Default, FileNew);
    for (const int id : {int(FileOpen), int(FileClose)})
        menus.AddCommand(MenuId::File, MenuGroup::FileOpen, id);
    for (const int id : {int(FileSave), int(FileSaveAs), int(FileSaveAll)})
        menus.AddCommand(MenuId::File, MenuGroup::FileSave, id);
    menus.AddCommand(MenuId::File, MenuGroup::FileExit, AppExit);
    for (const int id : {int(FileNew), int(FileOpen), int(FileSave), int(FileSaveAll)})
        menus.AddToolBarCommand(ToolBarId::Standard, ToolBarGroup::File, id);
    // The recent files are listed on every change of the list.
    m_menus->Menu(MenuId::FileRecent)->menuAction()->setVisible(true);
    if (m_app)
        connect(m_app, &CMorvaneApp::recentFilesChanged, this, &CMainFrame::RebuildRecentFilesMenu);
    RebuildRecentFilesMenu();

    // The document's path, for every kind of document (the tab menu offers these too).
    commands.Register({.id = CopyFilePath, .text = tr("Copy Filepath"), .category = tr("Edit"),
                       .run = [this] { OnCopyFilePath(); }, .update = hasPath});
    commands.Register({.id = OpenContainingFolder, .text = tr("Open Containing Folder"),
                       .category = tr("Edit"), .run = [this] { OnOpenContainingFolder(); },
                       .update = hasPath});
    menus.AddCommand(MenuId::Edit, MenuGroup::EditOther, CopyFilePath);
    menus.AddCommand(MenuId::Edit, MenuGroup::EditOther, OpenContainingFolder);

    // A text frame opens a second view on its document itself; nothing else can.
    const QString window = tr("Window");
    commands.Register({.id = WindowNew, .text = tr("&New Window"), .category = window});
    commands.Register({.id = CloseAllButSelected, .text = tr("Close &All But Selected"),
                       .category = window, .run = [this] { OnCloseAllButSelected(); },
                       .update = [this](CCmdUI& ui) { ui.enabled = ChildFrames().size() > 1; }});
    // Checked while the flag is clear, which is also how the program starts.
    commands.Register({.id = TabsToggle, .text = tr("&Hide Tabs"), .category = window,
                       .checkable = true, .run = [this] { ToggleTabs(); },
                       .update = [this](CCmdUI& ui) { ui.checked = m_settings.MDITabInActive == 0; }});
    const char* alignTexts[] = {QT_TR_NOOP("Tabs on the &Left"), QT_TR_NOOP("Tabs on the &Top"),
                                QT_TR_NOOP("Tabs on the &Right"), QT_TR_NOOP("Tabs on the &Bottom")};
    for (int index = 0; index < 4; ++index) {
        commands.Register({.id = kTabCommands[index], .text = tr(alignTexts[index]),
                           .category = window, .checkable = true,
                           .run = [this, index] { SetTabAlignment(index); },
                           .update = [this, index](CCmdUI& ui) { ui.checked = m_tabAlignment == index; }});
    }
    menus.AddCommand(MenuId::Window, MenuGroup::WindowNew, WindowNew);
    menus.AddCommand(MenuId::Window, MenuGroup::WindowNew, CloseAllButSelected);
    for (const int id : {int(TabsToggle), int(TabsLeft), int(TabsTop), int(TabsRight), int(TabsBottom)})
        menus.AddCommand(MenuId::Window, MenuGroup::WindowTabs, id);
    connect(m_menus->Menu(MenuId::Window), &QMenu::aboutToShow, this, &CMainFrame::RebuildWindowList);

    QMenu* tabMenu = m_menus->Menu(MenuId::TabContext);
    tabMenu->setObjectName(QStringLiteral("TabContextMenu"));
    for (const int id : {int(FileSave), int(FileClose), int(CloseAllButSelected), int(CopyFilePath),
                         int(OpenContainingFolder)})
        menus.AddCommand(MenuId::TabContext, MenuGroup::Default, id);

    const QString help = tr("Help");
    commands.Register({.id = CheckForUpdates, .text = tr("Check for &Updates..."), .category = help,
                       .iconName = QStringLiteral("system-software-update"),
                       .run = [this] { OnCheckForUpdates(); }});
    commands.Register({.id = AppAbout, .text = tr("&About Morvane..."), .category = help,
                       .iconName = QStringLiteral("help-about"),
                       .run = [this] { if (m_app) m_app->OnAppAbout(); }});
    menus.AddCommand(MenuId::Help, MenuGroup::HelpContents, CheckForUpdates);
    menus.AddCommand(MenuId::Help, MenuGroup::HelpAbout, AppAbout);

    // The bars themselves: the toolbar's own toggle and the status bar's.
    menus.AddAction(MenuId::View, MenuGroup::ViewBars,
                    menus.ToolBar(ToolBarId::Standard)->toggleViewAction());
    auto* statusToggle = new QAction(tr("&Status Bar"), this);
    statusToggle->setCheckable(true);
    statusToggle->setChecked(true);
    connect(statusToggle, &QAction::toggled, statusBar(), &QWidget::setVisible);
    menus.AddAction(MenuId::View, MenuGroup::ViewBars, statusToggle);
}

void CMainFrame::RebuildRecentFilesMenu()
{
    QMenu* menu = m_menus->Menu(MenuId::FileRecent);
    if (!menu || !m_app)
        return;
    qDeleteAll(std::exchange(m_recentActions, {}));
    const QStringList files = m_app->GetRecentFiles().Files();
    int index = 1;
    for (const QString& file : files) {
        QAction* action = menu->addAction(
            QStringLiteral("&%1 %2").arg(index).arg(QDir::toNativeSeparators(file)));
        connect(action, &QAction::triggered, this, [this, file] {
            if (!m_app->OpenDocumentFile(file) && !QFileInfo::exists(file)) {
                m_app->GetRecentFiles().Remove(file);
                RebuildRecentFilesMenu();
            }
        });
        m_recentActions << action;
        ++index;
    }
    menu->setEnabled(!files.isEmpty());
}

void CMainFrame::RebuildWindowList()
{
    // The open documents below the window commands, the active one checked.
    QMenu* menu = m_menus->Menu(MenuId::Window);
    qDeleteAll(std::exchange(m_windowListActions, {}));
    const auto frames = ChildFrames();
    if (frames.isEmpty())
        return;
    m_windowListActions << menu->addSeparator();
    CChildFrame* active = ActiveChild();
    int number = 1;
    for (CChildFrame* frame : frames) {
        QString title = frame->windowTitle();
        title.replace(QLatin1Char('&'), QStringLiteral("&&"));
        QAction* action =
            menu->addAction(number <= 9 ? QStringLiteral("&%1 %2").arg(number).arg(title) : title);
        action->setCheckable(true);
        action->setChecked(frame == active);
        QPointer<CChildFrame> target(frame);
        connect(action, &QAction::triggered, this, [this, target] {
            if (target)
                ActivateChild(target);
        });
        m_windowListActions << action;
        ++number;
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
