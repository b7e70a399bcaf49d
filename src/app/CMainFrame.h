#pragma once

#include "framework/CChildFrame.h"
#include "framework/IStatusSink.h"
#include "settings/MainFrameSettings.h"
#include "shell/IShell.h"

#include <QMainWindow>
#include <QPointer>
#include <map>

class CCommandRegistry;
class CMenuPlaces;
class CMorvaneApp;
class CShellEvents;
class KeyboardIndicators;
class QLabel;
class QMdiArea;
class QMdiSubWindow;
class QProgressBar;
class QPushButton;
class QTabBar;

// The main window: the MDI area with its document tabs, the status bar and the dock
// host. It is the shell every subsystem installs itself into; its own commands (files,
// windows and tabs, help) are in FrameCommands.cpp.
class CMainFrame : public QMainWindow, public IShell, public IProgressSink
{
    Q_OBJECT
public:
    explicit CMainFrame(CMorvaneApp* app);
    ~CMainFrame() override;

    // Reads the settings, builds the window and installs the subsystems; it stays
    // hidden until ShowMainWindow.
    bool Create();
    // Restores the bar layout and the window's place, then shows it.
    // With `announceIdle` false, the first idle moment waits for AnnounceFirstIdle: files
    // loading after the window shows come first.
    void ShowMainWindow(bool announceIdle = true);
    void AnnounceFirstIdle();

    // IShell
    QMainWindow* Window() override { return this; }
    CCommandRegistry& Commands() override { return *m_commands; }
    CMenuPlaces& Menus() override { return *m_menus; }
    CShellEvents& Events() override { return *m_events; }
    MainFrameSettings& Settings() override { return m_settings; }
    CChildFrame* ActiveChild() const override;
    CDocument* ActiveDocument() const override;
    QList<CChildFrame*> ChildFrames() const override;
    void ActivateChild(CChildFrame* frame) override;
    void AddChildFrame(CChildFrame* frame) override;
    CDocument* OpenPath(const QString& path, const OpenOptions& options = OpenOptions::defaults()) override;
    CDocument* NewDocument(int mode = OpenOptions::Text) override;
    bool ActivateOpenDocument(const QString& path) override;
    IProgressSink& Progress() override { return *this; }
    void ShowStatusMessage(const QString& text, int timeoutMs = 0) override;
    void AddStatusWidget(QWidget* widget, int stretch = 0) override;
    QDockWidget* AddDock(const QString& objectName, const QString& title, QWidget* widget,
                         Qt::DockWidgetArea area) override;
    void AddOutputPage(IOutputPage* page) override;
    QList<IOutputPage*> OutputPages() const override { return m_outputPages; }
    void ShowOutputPage(IOutputPage* page) override;
    void AddExplorerPage(IExplorerPage* page) override;
    QList<IExplorerPage*> ExplorerPages() const override { return m_explorerPages; }
    void AddPropertyPage(int order, PropertyPageFactory factory) override;
    QList<PropertyPageFactory> PropertyPages() const override;
    void AddModelessWindow(QWidget* window) override;
    void RequestCommandUpdate() override;

    // IProgressSink
    void StartProgress(qint64 range) override;
    void SetProgress(qint64 done) override;
    void StopProgress() override;
    void OfferCancel() override;
    bool CancelRequested() const override;

    const MainFrameSettings& Settings() const { return m_settings; }
    QMdiArea* MdiArea() const { return m_mdiArea; }
    QString PositionText() const;
    // Every new child frame is announced here: the title follows it and the subsystems
    // hear of it.
    void OnFrameCreated(CChildFrame* frame);
    void OnDocumentCreated(CDocument* document);

    // The registry's actions, for the application's own tests and start-up.
    QAction* Action(int id) const;
    void OnCommand(int id);
    void UpdateCommandUI();

    // Document tabs: alignment index 0 left, 1 top, 2 right, 3 bottom.
    int TabAlignment() const { return m_tabAlignment; }
    bool TabsInstalled() const;
    void SetTabAlignment(int index);
    void ToggleTabs();

protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // FrameCommands.cpp
    void RegisterFrameCommands();
    void RebuildRecentFilesMenu();
    void RebuildWindowList();
    void OnCloseAllButSelected();
    void OnCheckForUpdates();
    void OnCopyFilePath();
    void OnOpenContainingFolder();

    void CreateStatusBar();
    void ApplyFallbackIcon(int id);
    void ApplyViewSettings();
    void OnSubWindowActivated(QMdiSubWindow* window);
    void UpdateTitle();
    void UpdatePositionPane();
    void OnStatusTextChanged(const QString& text);
    void UpdateIndicators();
    void InstallTabs();
    void UninstallTabs();
    void ShowTabContextMenu(const QPoint& position);
    void DestroyModelessWindows();
    // Asks about each modified document in turn, showing it; false on Cancel or a failed save.
    bool AskToSaveAll();

    CMorvaneApp* m_app;
    MainFrameSettings m_settings;
    CCommandRegistry* m_commands = nullptr;
    CMenuPlaces* m_menus = nullptr;
    CShellEvents* m_events = nullptr;
    QMdiArea* m_mdiArea = nullptr;
    // Compared only: the area may be half destroyed when its viewport's last events come.
    QObject* m_mdiViewport = nullptr;
    QList<QAction*> m_recentActions;
    QList<QAction*> m_windowListActions;
    QLabel* m_positionLabel = nullptr;
    QLabel* m_overtypeLabel = nullptr;
    QLabel* m_capsLabel = nullptr;
    QLabel* m_numLabel = nullptr;
    QLabel* m_scrollLabel = nullptr;
    KeyboardIndicators* m_indicators = nullptr;
    QPointer<QTabBar> m_tabBar;
    // The sub-window in front while it closes, and the one to bring forward after it.
    QMdiSubWindow* m_closing = nullptr;
    QPointer<QMdiSubWindow> m_closingNeighbour;
    QList<QPointer<QWidget>> m_modeless;
    QList<IOutputPage*> m_outputPages;
    QList<IExplorerPage*> m_explorerPages;
    std::multimap<int, PropertyPageFactory> m_propertyPages;
    int m_tabAlignment = 1;
    QProgressBar* m_progress = nullptr;
    QPushButton* m_progressCancel = nullptr;
    qint64 m_progressRange = 0;
    bool m_progressCancelled = false;
    bool m_shown = false;
};
