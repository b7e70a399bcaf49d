#include "CMainFrame.h"

#include "CDocTemplate.h"
#include "CDocument.h"
#include "CMorvaneApp.h"
#include "CRegistryStore.h"
#include "CommandIds.h"
#include "editor/CScrivelDoc.h"
#include "editor/CScrivelFrame.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QProgressBar>
#include <QStatusBar>
#include <QStyle>
#include <QTabBar>
#include <QTimer>
#include <QToolBar>

namespace {
const QString kBarState = QStringLiteral("Control Bar State");

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

    m_mdiArea = new QMdiArea(this);
    m_mdiArea->setObjectName(QStringLiteral("MdiArea"));
    m_mdiArea->setViewMode(QMdiArea::TabbedView);
    m_mdiArea->setDocumentMode(true);
    m_mdiArea->setTabsClosable(true);
    m_mdiArea->setTabsMovable(true);
    m_mdiArea->setTabPosition(QTabWidget::North);
    setCentralWidget(m_mdiArea);
    connect(m_mdiArea, &QMdiArea::subWindowActivated, this, &CMainFrame::OnSubWindowActivated);

    CreateActions();
    CreateMenus();
    CreateToolBar();
    CreateStatusBar();

    m_settings.LoadOtherSettings();
    if (m_app)
        connect(m_app, &CMorvaneApp::recentFilesChanged, this, &CMainFrame::RebuildRecentFilesMenu);
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

    AddCommand(FileNew, tr("&New"), QKeySequence::New, [this] { m_app->OnFileNew(); })
        ->setIcon(style()->standardIcon(QStyle::SP_FileIcon));
    AddCommand(FileOpen, tr("&Open..."), QKeySequence::Open, [this] { m_app->OnFileOpen(); })
        ->setIcon(style()->standardIcon(QStyle::SP_DialogOpenButton));
    AddCommand(FileOpenAsHex, tr("Open as &Hex..."), QKeySequence(tr("Ctrl+Shift+O")),
               [this] { m_app->OnFileOpenAsHex(); });
    AddCommand(FileClose, tr("&Close"), QKeySequence(tr("Ctrl+W")),
               [this] { if (CChildFrame* child = ActiveChild()) child->close(); }, hasDocument);
    AddCommand(FileSave, tr("&Save"), QKeySequence::Save,
               [this] { if (CDocument* d = ActiveDocument()) d->DoFileSave(); }, hasDocument)
        ->setIcon(style()->standardIcon(QStyle::SP_DialogSaveButton));
    AddCommand(FileSaveAs, tr("Save &As..."), QKeySequence(),
               [this] { if (CDocument* d = ActiveDocument()) d->DoSave(QString()); }, hasDocument);
    AddCommand(FileSaveAll, tr("Save A&ll"), QKeySequence(tr("Ctrl+Shift+S")),
               [this] { m_app->OnFileSaveAll(); });
    AddCommand(AppExit, tr("E&xit"), QKeySequence::Quit, [this] { close(); });
    AddCommand(AppAbout, tr("&About Morvane..."), QKeySequence(), [this] { m_app->OnAppAbout(); });
}

void CMainFrame::CreateMenus()
{
    using namespace Cmd;
    m_fileMenu = menuBar()->addMenu(tr("&File"));
    m_fileMenu->setObjectName(QStringLiteral("FileMenu"));
    m_fileMenu->addAction(Action(FileNew));
    m_fileMenu->addAction(Action(FileOpen));
    m_fileMenu->addAction(Action(FileOpenAsHex));
    m_fileMenu->addAction(Action(FileClose));
    m_fileMenu->addSeparator();
    m_fileMenu->addAction(Action(FileSave));
    m_fileMenu->addAction(Action(FileSaveAs));
    m_fileMenu->addAction(Action(FileSaveAll));
    m_fileMenu->addSeparator();
    m_recentMenu = m_fileMenu->addMenu(tr("Recent &Files"));
    m_fileMenu->addSeparator();
    m_fileMenu->addAction(Action(AppExit));
    connect(m_fileMenu, &QMenu::aboutToShow, this, &CMainFrame::UpdateCommandUI);

    QMenu* help = menuBar()->addMenu(tr("&Help"));
    help->addAction(Action(AppAbout));
}

void CMainFrame::CreateToolBar()
{
    m_toolBar = addToolBar(tr("Standard Buttons"));
    m_toolBar->setObjectName(QStringLiteral("StandardToolBar"));
    const int size = m_settings.view.LargeTBIcons ? 24 : 16;
    m_toolBar->setIconSize(QSize(size, size));
    m_toolBar->addAction(Action(Cmd::FileNew));
    m_toolBar->addAction(Action(Cmd::FileOpen));
    m_toolBar->addAction(Action(Cmd::FileSave));
}

void CMainFrame::CreateStatusBar()
{
    m_positionLabel = new QLabel(this);
    m_positionLabel->setObjectName(QStringLiteral("PositionPane"));
    m_progress = new QProgressBar(this);
    m_progress->setObjectName(QStringLiteral("ProgressPane"));
    m_progress->setFixedWidth(150);
    m_progress->setTextVisible(false);
    m_progress->setRange(0, 1000);
    m_progress->setVisible(false);
    statusBar()->addPermanentWidget(m_positionLabel);
    statusBar()->addPermanentWidget(m_progress);
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
    Q_UNUSED(document);
    Q_UNUSED(extension);
}

void CMainFrame::OnFrameCreated(CChildFrame* frame)
{
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
        m_statusConnection = connect(child, &CChildFrame::statusTextChanged, m_positionLabel,
                                     &QLabel::setText);
        m_positionLabel->setText(child->StatusText());
    } else {
        m_positionLabel->clear();
    }
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

void CMainFrame::closeEvent(QCloseEvent* event)
{
    // Settings are written before anyone is asked about unsaved work.
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
