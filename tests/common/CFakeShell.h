#pragma once

#include "framework/IStatusSink.h"
#include "settings/MainFrameSettings.h"
#include "shell/CCommandRegistry.h"
#include "shell/CMenuPlaces.h"
#include "shell/CShellEvents.h"
#include "shell/IShell.h"

#include <QMainWindow>
#include <QStringList>
#include <map>

// A small shell for testing one subsystem's installation without the whole main
// window: a bare window with the standard menus declared, and recordings of what the
// subsystem asked for.
class CFakeShell : public IShell, public IProgressSink
{
public:
    CFakeShell();
    ~CFakeShell() override;

    QMainWindow* Window() override { return &m_window; }
    CCommandRegistry& Commands() override { return *m_commands; }
    CMenuPlaces& Menus() override { return *m_menus; }
    CShellEvents& Events() override { return m_events; }
    MainFrameSettings& Settings() override { return m_settings; }

    CChildFrame* ActiveChild() const override { return m_active; }
    CDocument* ActiveDocument() const override;
    QList<CChildFrame*> ChildFrames() const override { return m_frames; }
    void ActivateChild(CChildFrame* frame) override;
    void AddChildFrame(CChildFrame* frame) override;

    CDocument* OpenPath(const QString& path, const OpenOptions& options) override;
    CDocument* NewDocument(int mode) override;
    bool ActivateOpenDocument(const QString& path) override;

    IProgressSink& Progress() override { return *this; }
    void ShowStatusMessage(const QString& text, int timeoutMs) override;
    void AddStatusWidget(QWidget* widget, int stretch) override;
    QDockWidget* AddDock(const QString& objectName, const QString& title, QWidget* widget,
                         Qt::DockWidgetArea area) override;

    void AddOutputPage(IOutputPage* page) override;
    QList<IOutputPage*> OutputPages() const override { return m_outputPages; }
    void ShowOutputPage(IOutputPage* page) override;
    void AddExplorerPage(IExplorerPage* page) override;
    QList<IExplorerPage*> ExplorerPages() const override { return m_explorerPages; }
    void AddPropertyPage(int order, PropertyPageFactory factory) override;
    QList<PropertyPageFactory> PropertyPages() const override;

    void AddModelessWindow(QWidget* window) override { m_modeless << window; }
    void RequestCommandUpdate() override { m_commands->RequestUpdate(); }

    void StartProgress(qint64) override {}
    void SetProgress(qint64) override {}
    void StopProgress() override {}

    const QList<QWidget*>& ModelessWindows() const { return m_modeless; }

    // What the subsystem asked for, for the test to check.
    QStringList openedPaths;
    QList<OpenOptions> openedOptions;
    QStringList statusMessages;
    QList<QDockWidget*> docks;
    // What OpenPath and NewDocument hand back; set by the test.
    std::function<CDocument*(const QString&, const OpenOptions&)> openHandler;
    std::function<CDocument*(int)> newDocumentHandler;

private:
    QMainWindow m_window;
    CCommandRegistry* m_commands;
    CMenuPlaces* m_menus;
    CShellEvents m_events;
    MainFrameSettings m_settings;
    CChildFrame* m_active = nullptr;
    QList<CChildFrame*> m_frames;
    QList<IOutputPage*> m_outputPages;
    QList<IExplorerPage*> m_explorerPages;
    std::multimap<int, PropertyPageFactory> m_propertyPages;
    QList<QWidget*> m_modeless;
};
