#pragma once

#include "CChildFrame.h"
#include "IStatusSink.h"
#include "MainFrameSettings.h"

#include <QHash>
#include <QMainWindow>
#include <functional>

class CDocument;
class CMorvaneApp;
class CScrivelDoc;
class CScrivelFrame;
class QLabel;
class QMdiArea;
class QMdiSubWindow;
class QMenu;
class QProgressBar;
class QToolBar;

// The main window: the MDI area with its document tabs, the menus, toolbar and status
// bar, the settings every view shares, and the commands not tied to one document.
class CMainFrame : public QMainWindow, public IProgressSink
{
    Q_OBJECT
public:
    explicit CMainFrame(CMorvaneApp* app);
    ~CMainFrame() override;

    // Reads the settings and builds the window; it stays hidden until ShowMainWindow.
    bool Create();
    // Restores the bar layout and the window's place, then shows it.
    void ShowMainWindow();

    MainFrameSettings& Settings() { return m_settings; }
    const MainFrameSettings& Settings() const { return m_settings; }
    QMdiArea* MdiArea() const { return m_mdiArea; }
    CChildFrame* ActiveChild() const;
    QList<CChildFrame*> ChildFrames() const;

    // Brings forward the document open under `path`; false when there is none.
    bool ActivateOpenDocument(const QString& path);
    void ApplyParserForExtension(CScrivelDoc* document, const QString& extension);

    // Commands: every menu and toolbar entry is a QAction carrying its command id. The
    // active child frame is offered the command first, then the frame's own handler.
    QAction* AddCommand(int id, const QString& text, const QKeySequence& shortcut,
                        std::function<void()> handler,
                        std::function<void(CCmdUI&)> update = {});
    QAction* Action(int id) const { return m_actions.value(id); }
    void OnCommand(int id);
    // Refreshes the enabled and checked state of every command.
    void UpdateCommandUI();
    // Asks for an update pass when the event loop is next idle.
    void RequestCommandUpdate();

    // IProgressSink
    void StartProgress(qint64 range) override;
    void SetProgress(qint64 done) override;
    void StopProgress() override;

    QString PositionText() const;
    // Every new child frame is announced here, so the title follows it.
    void OnFrameCreated(CChildFrame* frame);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void CreateActions();
    void CreateMenus();
    void CreateToolBar();
    void CreateStatusBar();
    void RebuildRecentFilesMenu();
    void OnSubWindowActivated(QMdiSubWindow* window);
    void UpdateTitle();
    CDocument* ActiveDocument() const;

    CMorvaneApp* m_app;
    MainFrameSettings m_settings;
    QMdiArea* m_mdiArea = nullptr;
    QHash<int, QAction*> m_actions;
    QHash<int, std::function<void()>> m_handlers;
    QHash<int, std::function<void(CCmdUI&)>> m_updaters;
    QMenu* m_fileMenu = nullptr;
    QMenu* m_recentMenu = nullptr;
    QToolBar* m_toolBar = nullptr;
    QLabel* m_positionLabel = nullptr;
    QProgressBar* m_progress = nullptr;
    qint64 m_progressRange = 0;
    bool m_updatePending = false;
    QMetaObject::Connection m_statusConnection;
    QMetaObject::Connection m_titleConnection;
};
