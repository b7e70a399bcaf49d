#pragma once

#include "framework/CChildFrame.h"
#include "framework/IStatusSink.h"
#include "settings/MainFrameSettings.h"
#include "syntax/CSyntaxParserList.h"

#include <QHash>
#include <QMainWindow>
#include <QPointer>
#include <functional>

class CDocument;
class CHistoryComboBox;
class CMorvaneApp;
class CScrivelDoc;
class CScrivelFrame;
class CScrivelView;
class KeyboardIndicators;
class QComboBox;
class QFont;
class QLabel;
class QMdiArea;
class QMdiSubWindow;
class QMenu;
class QProgressBar;
class QTabBar;
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

    // The syntax definitions behind View As, comment commands and colouring.
    const CSyntaxParserList& Parsers() const { return m_parsers; }
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

    // The text views of all CScrivelFrame children; other kinds of child are left out.
    QList<CScrivelView*> TextViews() const;
    // The active child when it is a text frame, else null.
    CScrivelFrame* ActiveTextFrame() const;

    // The toolbar's find box: an editable combo box that remembers what was searched.
    CHistoryComboBox* FindBox() const { return m_findBox; }
    QString FindText() const;

    // Modeless windows (find, replace, ...) are destroyed first when the frame closes.
    void AddModelessWindow(QWidget* window);

    // The View As submenu, filled by the syntax menu helper.
    QMenu* ViewAsSubMenu() const { return m_viewAsMenu; }

    // Takes face (at most 31 characters), weight, slant and size of `font` into the view
    // settings and gives them to every text view.
    void ApplyFont(const QFont& font);

    // Document tabs: alignment index 0 left, 1 top, 2 right, 3 bottom.
    int TabAlignment() const { return m_tabAlignment; }
    bool TabsInstalled() const;
    void SetTabAlignment(int index);
    void ToggleTabs();

Q_SIGNALS:
    // Before the window asks about unsaved work: the modeless windows are gone by now.
    void closing();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void CreateActions();
    void CreateEditActions();
    void CreateViewActions();
    void CreateWindowActions();
    void CreateMenus();
    void CreateToolBar();
    void CreateStatusBar();
    void RebuildRecentFilesMenu();
    void RebuildWindowList();
    void OnSubWindowActivated(QMdiSubWindow* window);
    void UpdateTitle();
    void UpdateIndicators();
    CDocument* ActiveDocument() const;

    void ToggleViewSetting(int id);
    void OnViewFont();
    void OnNavigate(bool forward);
    void OnCloseAllButSelected();
    void OnCheckForUpdates();
    void OnNewWindow();
    void OnGoto();
    void OnNothingToFind();
    void OnCopyFilePath();
    void OnOpenContainingFolder();
    void InstallTabs();
    void UninstallTabs();
    void ShowTabContextMenu(const QPoint& position);
    void DestroyModelessWindows();

    CMorvaneApp* m_app;
    MainFrameSettings m_settings;
    CSyntaxParserList m_parsers;
    QMdiArea* m_mdiArea = nullptr;
    QHash<int, QAction*> m_actions;
    QHash<int, std::function<void()>> m_handlers;
    QHash<int, std::function<void(CCmdUI&)>> m_updaters;
    QMenu* m_fileMenu = nullptr;
    QMenu* m_recentMenu = nullptr;
    QMenu* m_viewAsMenu = nullptr;
    QMenu* m_viewMenu = nullptr;
    QMenu* m_windowMenu = nullptr;
    QList<QAction*> m_windowListActions;
    QMenu* m_tabContextMenu = nullptr;
    QToolBar* m_toolBar = nullptr;
    CHistoryComboBox* m_findBox = nullptr;
    QLabel* m_positionLabel = nullptr;
    QLabel* m_overtypeLabel = nullptr;
    QLabel* m_capsLabel = nullptr;
    QLabel* m_numLabel = nullptr;
    QLabel* m_scrollLabel = nullptr;
    KeyboardIndicators* m_indicators = nullptr;
    QPointer<QTabBar> m_tabBar;
    QList<QPointer<QWidget>> m_modeless;
    int m_tabAlignment = 1;
    QProgressBar* m_progress = nullptr;
    qint64 m_progressRange = 0;
    bool m_updatePending = false;
    QMetaObject::Connection m_statusConnection;
    QMetaObject::Connection m_titleConnection;
};
