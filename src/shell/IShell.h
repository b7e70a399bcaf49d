#pragma once

#include "framework/OpenOptions.h"
#include "shell/IPropertyPage.h"

#include <QList>
#include <QString>
#include <Qt>

class CCommandRegistry;
class CChildFrame;
class CDocument;
class CMenuPlaces;
class CShellEvents;
class IExplorerPage;
class IOutputPage;
class IProgressSink;
class MainFrameSettings;
class QDockWidget;
class QMainWindow;
class QWidget;

// What the main window offers the subsystems. Each subsystem gets this in its one
// entry point (`Install...(IShell&)`) and keeps it; none includes the window itself.
class IShell
{
public:
    virtual ~IShell() = default;

    // The parent for dialogs and the place for docks.
    virtual QMainWindow* Window() = 0;
    virtual CCommandRegistry& Commands() = 0;
    virtual CMenuPlaces& Menus() = 0;
    virtual CShellEvents& Events() = 0;
    // The view and other frame settings every view shares: their one source of truth.
    virtual MainFrameSettings& Settings() = 0;

    virtual CChildFrame* ActiveChild() const = 0;
    virtual CDocument* ActiveDocument() const = 0;
    virtual QList<CChildFrame*> ChildFrames() const = 0;
    virtual void ActivateChild(CChildFrame* frame) = 0;
    // Adds a frame made outside the document templates (a compare view) to the area.
    virtual void AddChildFrame(CChildFrame* frame) = 0;

    // Opens through the common routine (probe, routing, already-open check, recent
    // files); null when nothing opened.
    virtual CDocument* OpenPath(const QString& path,
                                const OpenOptions& options = OpenOptions::defaults()) = 0;
    // A new empty document of the given kind (OpenOptions::Text or Hex).
    virtual CDocument* NewDocument(int mode = OpenOptions::Text) = 0;
    // Brings forward the document open under `path`; false when there is none.
    virtual bool ActivateOpenDocument(const QString& path) = 0;

    virtual IProgressSink& Progress() = 0;
    virtual void ShowStatusMessage(const QString& text, int timeoutMs = 0) = 0;
    // A permanent pane on the right of the status bar.
    virtual void AddStatusWidget(QWidget* widget, int stretch = 0) = 0;

    // A docked window; its place is kept in "Control Bar State" by `objectName`.
    virtual QDockWidget* AddDock(const QString& objectName, const QString& title, QWidget* widget,
                                 Qt::DockWidgetArea area) = 0;

    // Pages for the bars and the properties sheet. The hosts are subsystems too, so a
    // page may be added before its host exists; the shell keeps every page.
    virtual void AddOutputPage(IOutputPage* page) = 0;
    virtual QList<IOutputPage*> OutputPages() const = 0;
    virtual void ShowOutputPage(IOutputPage* page) = 0;
    virtual void AddExplorerPage(IExplorerPage* page) = 0;
    virtual QList<IExplorerPage*> ExplorerPages() const = 0;
    // Pages of "Document Properties", shown in ascending `order`.
    virtual void AddPropertyPage(int order, PropertyPageFactory factory) = 0;
    virtual QList<PropertyPageFactory> PropertyPages() const = 0;

    // Modeless windows (find, replace ...) are destroyed first when the program closes.
    virtual void AddModelessWindow(QWidget* window) = 0;
    // Command states are refreshed when the event loop is next idle.
    virtual void RequestCommandUpdate() = 0;
};
