#include "CMainFrame.h"

#include "CMorvaneApp.h"
#include "CommandIcons.h"
#include "KeyboardIndicators.h"
#include "Subsystems.h"
#include "editor/CMFCScintilla.h"
#include "editor/CScrivelFrame.h"
#include "editor/CScrivelView.h"
#include "framework/CDocTemplate.h"
#include "framework/CDocument.h"
#include "settings/CRegistryStore.h"
#include "shell/CCommandRegistry.h"
#include "shell/CMenuPlaces.h"
#include "shell/CShellEvents.h"
#include "shell/StandardPlaces.h"

#include <QAction>
#include <QApplication>
#include <QChildEvent>
#include <QClipboard>
#include <QCloseEvent>
#include <QDir>
#include <QDockWidget>
#include <QFileInfo>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMessageBox>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QStatusBar>
#include <QTabBar>
#include <QTimer>
#include <QToolBar>

#include <utility>

namespace {
const QString kBarState = QStringLiteral("Control Bar State");

// Tab positions by alignment index: left, top, right, bottom.
constexpr QTabWidget::TabPosition kTabPositions[] = {QTabWidget::West, QTabWidget::North,
                                                    QTabWidget::East, QTabWidget::South};

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
    if (m_mdiArea) {
        for (CChildFrame* child : ChildFrames())
            child->disconnect(this);
        m_mdiArea->disconnect(this);
        delete takeCentralWidget();
    }
}

bool CMainFrame::Create()
{
    m_settings.LoadViewSettings();

    m_mdiArea = new QMdiArea(this);
    m_mdiArea->setObjectName(QStringLiteral("MdiArea"));
    setCentralWidget(m_mdiArea);
    // The area is told of a closing sub-window through its viewport.
    m_mdiViewport = m_mdiArea->viewport();
    m_mdiViewport->installEventFilter(this);
    connect(m_mdiArea, &QMdiArea::subWindowActivated, this, &CMainFrame::OnSubWindowActivated);

    m_events = new CShellEvents(this);
    m_commands = new CCommandRegistry(this);
    m_commands->SetActiveChildProvider([this] { return ActiveChild(); });
    m_menus = new CMenuPlaces(this, *m_commands);
    DeclareStandardPlaces(*m_menus);
    ApplyViewSettings();
    // The properties sheet and the view toggles announce their changes; the window
    // follows at once, as the views do.
    connect(m_events, &CShellEvents::viewSettingsChanged, this, &CMainFrame::ApplyViewSettings);
    // Icons the desktop's theme lacks are drawn.
    connect(m_commands, &CCommandRegistry::commandRegistered, this, &CMainFrame::ApplyFallbackIcon);

    CreateStatusBar();
    RegisterFrameCommands();
    InstallSubsystems(*this);
    m_commands->LoadShortcuts();

    m_settings.LoadOtherSettings();

    // Document tabs at the top; the saved flag is taken later, without installing again.
    m_tabAlignment = 1;
    InstallTabs();
    // Paste follows the clipboard, which other programs change too.
    connect(QApplication::clipboard(), &QClipboard::dataChanged, this,
            &CMainFrame::RequestCommandUpdate);
    UpdateTitle();
    resize(1000, 700);
    return true;
}

void CMainFrame::ShowMainWindow(bool announceIdle)
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
    UpdatePositionPane();
    UpdateCommandUI();
    if (announceIdle)
        AnnounceFirstIdle();
}

void CMainFrame::AnnounceFirstIdle()
{
    if (!std::exchange(m_shown, true))
        QTimer::singleShot(0, this, [this] { Q_EMIT m_events->firstIdle(); });
}

void CMainFrame::ApplyFallbackIcon(int id)
{
    QAction* action = m_commands->Action(id);
    if (!action || !action->icon().isNull())
        return;
    const QIcon icon = CommandIcons::ForCommand(id, style());
    if (!icon.isNull())
        action->setIcon(icon);
}

QAction* CMainFrame::Action(int id) const
{
    return m_commands->Action(id);
}

void CMainFrame::OnCommand(int id)
{
    m_commands->Execute(id);
}

void CMainFrame::UpdateCommandUI()
{
    m_commands->UpdateAll();
}

void CMainFrame::RequestCommandUpdate()
{
    if (m_commands)
        m_commands->RequestUpdate();
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

CDocument* CMainFrame::ActiveDocument() const
{
    CChildFrame* child = ActiveChild();
    return child ? child->GetDocument() : nullptr;
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

void CMainFrame::ActivateChild(CChildFrame* frame)
{
    if (!frame)
        return;
    if (frame->isMinimized())
        frame->showNormal();
    m_mdiArea->setActiveSubWindow(frame);
}

void CMainFrame::AddChildFrame(CChildFrame* frame)
{
    if (!frame)
        return;
    if (frame->mdiArea() != m_mdiArea)
        m_mdiArea->addSubWindow(frame);
    OnFrameCreated(frame);
    frame->show();
    ActivateChild(frame);
}

CDocument* CMainFrame::OpenPath(const QString& path, const OpenOptions& options)
{
    if (!m_app)
        return nullptr;
    m_app->GetOpenOptions() = options;
    return m_app->RouteOpenFile(path);
}

CDocument* CMainFrame::NewDocument(int mode)
{
    if (!m_app)
        return nullptr;
    if (mode == OpenOptions::Hex)
        return m_app->GetHexTemplate() ? m_app->GetHexTemplate()->OpenDocumentFile(QString()) : nullptr;
    return m_app->NewDocument();
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
            ActivateChild(child);
            return true;
        }
    }
    return false;
}

void CMainFrame::ShowStatusMessage(const QString& text, int timeoutMs)
{
    statusBar()->showMessage(text, timeoutMs);
}

void CMainFrame::AddStatusWidget(QWidget* widget, int stretch)
{
    statusBar()->addPermanentWidget(widget, stretch);
}

QDockWidget* CMainFrame::AddDock(const QString& objectName, const QString& title, QWidget* widget,
                                 Qt::DockWidgetArea area)
{
    auto* dock = new QDockWidget(title, this);
    dock->setObjectName(objectName);
    dock->setWidget(widget);
    addDockWidget(area, dock);
    return dock;
}

void CMainFrame::AddOutputPage(IOutputPage* page)
{
    if (!page || m_outputPages.contains(page))
        return;
    m_outputPages << page;
    Q_EMIT m_events->outputPageAdded(page);
}

void CMainFrame::ShowOutputPage(IOutputPage* page)
{
    Q_EMIT m_events->showOutputPage(page);
}

void CMainFrame::AddExplorerPage(IExplorerPage* page)
{
    if (!page || m_explorerPages.contains(page))
        return;
    m_explorerPages << page;
    Q_EMIT m_events->explorerPageAdded(page);
}

void CMainFrame::AddPropertyPage(int order, PropertyPageFactory factory)
{
    m_propertyPages.emplace(order, std::move(factory));
}

QList<PropertyPageFactory> CMainFrame::PropertyPages() const
{
    QList<PropertyPageFactory> pages;
    for (const auto& [order, factory] : m_propertyPages)
        pages << factory;
    return pages;
}

void CMainFrame::ApplyViewSettings()
{
    // Large icons are a little under the themes' 22 pixels so that the whole bar fits a
    // window 1000 pixels wide.
    const int iconSize = m_settings.view.LargeTBIcons ? 20 : 16;
    for (const QString& id : m_menus->ToolBarIds()) {
        if (QToolBar* bar = m_menus->ToolBar(id))
            bar->setIconSize(QSize(iconSize, iconSize));
    }
    RequestCommandUpdate();
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
    m_progressCancel = new QPushButton(tr("Cancel"), this);
    m_progressCancel->setObjectName(QStringLiteral("ProgressCancel"));
    m_progressCancel->setVisible(false);
    connect(m_progressCancel, &QPushButton::clicked, this, [this] { m_progressCancelled = true; });
    statusBar()->addPermanentWidget(m_progressCancel);

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
    const auto* frame = qobject_cast<CScrivelFrame*>(ActiveChild());
    const bool overtype = frame && frame->GetView()->GetEditor()->SendScintilla(
                                       QsciScintillaBase::SCI_GETOVERTYPE) != 0;
    m_overtypeLabel->setText(overtype ? tr("OVR") : tr("INS"));
    m_overtypeLabel->setEnabled(frame != nullptr);
    // A lock that is off shows its pane greyed, as it always has.
    m_capsLabel->setEnabled(m_indicators->CapsLock());
    m_numLabel->setEnabled(m_indicators->NumLock());
    m_scrollLabel->setEnabled(m_indicators->ScrollLock());
}

void CMainFrame::OnDocumentCreated(CDocument* document)
{
    Q_EMIT m_events->documentCreated(document);
}

void CMainFrame::OnFrameCreated(CChildFrame* frame)
{
    // Every document fills the area, with or without tabs, even when it arrives while
    // the window is still hidden at start-up.
    frame->showMaximized();
    frame->installEventFilter(this);
    // The caret or the selection moved: the position pane and the commands follow. Every
    // frame is heard, as the first one may be in front before any activation is reported.
    connect(frame, &CChildFrame::statusTextChanged, this, &CMainFrame::OnStatusTextChanged,
            Qt::UniqueConnection);
    connect(frame, &QWidget::windowTitleChanged, this, &CMainFrame::UpdateTitle, Qt::UniqueConnection);
    connect(frame, &QObject::destroyed, this, &CMainFrame::UpdateTitle, Qt::QueuedConnection);
    connect(frame, &QObject::destroyed, this, &CMainFrame::UpdatePositionPane, Qt::QueuedConnection);
    Q_EMIT m_events->frameCreated(frame);
    UpdateTitle();
    RequestCommandUpdate();
}

void CMainFrame::OnSubWindowActivated(QMdiSubWindow* window)
{
    auto* child = qobject_cast<CChildFrame*>(window);
    if (window) {
        // A document always fills the area: the area leaves a window it brings forward
        // after a close at its restored size.
        if (!window->isMaximized())
            window->showMaximized();
    }
    UpdatePositionPane();
    UpdateIndicators();
    UpdateTitle();
    RequestCommandUpdate();
    Q_EMIT m_events->activeChildChanged(child);
}

void CMainFrame::OnStatusTextChanged(const QString& text)
{
    if (sender() == ActiveChild())
        m_positionLabel->setText(text);
    RequestCommandUpdate();
}

bool CMainFrame::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Close && m_mdiArea) {
        // The area would bring the first tab forward; the one beside the closed tab is
        // where the user's eye is: the next one, or the one before the last. Chosen now,
        // while the closing window is still in front and in the list.
        auto* window = qobject_cast<QMdiSubWindow*>(watched);
        const auto windows = m_mdiArea->subWindowList(QMdiArea::CreationOrder);
        const qsizetype index = windows.indexOf(window);
        m_closing = nullptr;
        m_closingNeighbour = nullptr;
        if (window && index >= 0 && windows.size() > 1 && window == m_mdiArea->activeSubWindow()) {
            m_closing = window;
            m_closingNeighbour = windows.at(index + 1 < windows.size() ? index + 1 : index - 1);
        }
    } else if (watched == m_mdiViewport && event->type() == QEvent::ChildRemoved) {
        // Told when the close went through. Pointers are only compared: the child may be
        // half destroyed already.
        if (m_closing && static_cast<QChildEvent*>(event)->child() == static_cast<QObject*>(m_closing)) {
            const QPointer<QMdiSubWindow> neighbour = std::exchange(m_closingNeighbour, nullptr);
            m_closing = nullptr;
            QTimer::singleShot(0, this, [this, neighbour] {
                if (neighbour && m_mdiArea->subWindowList().contains(neighbour.data()))
                    m_mdiArea->setActiveSubWindow(neighbour);
            });
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

void CMainFrame::UpdatePositionPane()
{
    CChildFrame* child = ActiveChild();
    m_positionLabel->setText(child ? child->StatusText() : QString());
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
    m_progressCancelled = false;
    m_progress->setValue(0);
    m_progress->setVisible(true);
}

void CMainFrame::SetProgress(qint64 done)
{
    const int value = int(done * 1000 / m_progressRange);
    if (value != m_progress->value())
        m_progress->setValue(std::min(value, 1000));
}

void CMainFrame::OfferCancel()
{
    m_progressCancelled = false;
    m_progressCancel->setVisible(true);
}

bool CMainFrame::CancelRequested() const
{
    return m_progressCancelled;
}

void CMainFrame::StopProgress()
{
    m_progressCancel->setVisible(false);
    m_progress->setVisible(false);
    m_progress->reset();
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
    if (QMenu* menu = m_menus->Menu(MenuId::TabContext))
        menu->popup(m_tabBar->mapToGlobal(position));
}

void CMainFrame::closeEvent(QCloseEvent* event)
{
    // The modeless windows go first, then every part writes its settings, all before
    // anyone is asked about unsaved work: a Cancel there leaves the windows gone.
    DestroyModelessWindows();
    Q_EMIT m_events->closing();
    m_settings.Save();
    CRegistryStore store;
    store.WriteProfileString(kBarState, QStringLiteral("State"),
                             QString::fromLatin1(saveState().toBase64()));
    store.WriteProfileString(kBarState, QStringLiteral("Geometry"),
                             QString::fromLatin1(saveGeometry().toBase64()));
    m_commands->SaveShortcuts();
    Q_EMIT m_events->saveSettings();

    if (!AskToSaveAll()) {
        event->ignore();
        return;
    }
    // Everything has been saved or let go: close without asking again.
    for (CChildFrame* child : ChildFrames()) {
        if (CDocument* document = child->GetDocument())
            document->SetModifiedFlag(false);
    }
    Q_EMIT m_events->aboutToQuit();
    m_mdiArea->closeAllSubWindows();
    if (m_app)
        m_app->ExitInstance();
    event->accept();
}

bool CMainFrame::AskToSaveAll()
{
    QList<QPointer<CChildFrame>> pending;
    QList<CDocument*> seen;
    for (CChildFrame* child : ChildFrames()) {
        CDocument* document = child->GetDocument();
        if (document && !seen.contains(document)) {
            seen << document;
            if (document->IsModified())
                pending << child;
        }
    }
    // With more than one to ask about, one answer may stand for all the rest.
    const int buttons = pending.size() > 1
        ? int(QMessageBox::Yes | QMessageBox::YesToAll | QMessageBox::No | QMessageBox::NoToAll
              | QMessageBox::Cancel)
        : int(QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
    bool saveRest = false;
    for (const QPointer<CChildFrame>& child : std::as_const(pending)) {
        CDocument* document = child ? child->GetDocument() : nullptr;
        if (!document || !document->IsModified())
            continue;
        if (!saveRest) {
            // The question is about the document in front of the user.
            ActivateChild(child);
            QString name = document->GetPathName().isEmpty() ? document->GetTitle()
                                                             : QFileInfo(document->GetPathName()).fileName();
            if (name.endsWith(QLatin1Char('*')))
                name.chop(1);
            const int answer = QMessageBox::question(this, QApplication::applicationDisplayName(),
                                                     tr("Save changes to %1?").arg(name),
                                                     QMessageBox::StandardButtons(buttons), QMessageBox::Yes);
            if (answer == QMessageBox::Cancel)
                return false;
            if (answer == QMessageBox::NoToAll)
                return true;
            if (answer == QMessageBox::No)
                continue;
            saveRest = answer == QMessageBox::YesToAll;
        }
        if (child)
            ActivateChild(child);
        if (!document->DoFileSave())
            return false;
    }
    return true;
}
