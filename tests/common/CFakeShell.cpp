#include "CFakeShell.h"

#include "shell/StandardPlaces.h"

#include <QDockWidget>
#include <QStatusBar>

CFakeShell::CFakeShell()
{
    m_commands = new CCommandRegistry(&m_window);
    m_menus = new CMenuPlaces(&m_window, *m_commands);
    m_commands->SetActiveChildProvider([this] { return m_active; });
    DeclareStandardPlaces(*m_menus);
}

CFakeShell::~CFakeShell() = default;

CDocument* CFakeShell::ActiveDocument() const
{
    return m_active ? m_active->GetDocument() : nullptr;
}

void CFakeShell::ActivateChild(CChildFrame* frame)
{
    m_active = frame;
    Q_EMIT m_events.activeChildChanged(frame);
}

void CFakeShell::AddChildFrame(CChildFrame* frame)
{
    m_frames << frame;
    Q_EMIT m_events.frameCreated(frame);
    ActivateChild(frame);
}

CDocument* CFakeShell::OpenPath(const QString& path, const OpenOptions& options)
{
    openedPaths << path;
    openedOptions << options;
    return openHandler ? openHandler(path, options) : nullptr;
}

CDocument* CFakeShell::NewDocument(int mode)
{
    return newDocumentHandler ? newDocumentHandler(mode) : nullptr;
}

bool CFakeShell::ActivateOpenDocument(const QString& path)
{
    for (CChildFrame* frame : std::as_const(m_frames)) {
        if (frame->GetDocument() && frame->GetDocument()->GetPathName() == path) {
            ActivateChild(frame);
            return true;
        }
    }
    return false;
}

void CFakeShell::ShowStatusMessage(const QString& text, int timeoutMs)
{
    statusMessages << text;
    m_window.statusBar()->showMessage(text, timeoutMs);
}

void CFakeShell::AddStatusWidget(QWidget* widget, int stretch)
{
    m_window.statusBar()->addPermanentWidget(widget, stretch);
}

QDockWidget* CFakeShell::AddDock(const QString& objectName, const QString& title, QWidget* widget,
                                 Qt::DockWidgetArea area)
{
    auto* dock = new QDockWidget(title, &m_window);
    dock->setObjectName(objectName);
    dock->setWidget(widget);
    m_window.addDockWidget(area, dock);
    docks << dock;
    return dock;
}

void CFakeShell::AddOutputPage(IOutputPage* page)
{
    m_outputPages << page;
    Q_EMIT m_events.outputPageAdded(page);
}

void CFakeShell::ShowOutputPage(IOutputPage* page)
{
    Q_EMIT m_events.showOutputPage(page);
}

void CFakeShell::AddExplorerPage(IExplorerPage* page)
{
    m_explorerPages << page;
    Q_EMIT m_events.explorerPageAdded(page);
}

void CFakeShell::AddPropertyPage(int order, PropertyPageFactory factory)
{
    m_propertyPages.emplace(order, std::move(factory));
}

QList<PropertyPageFactory> CFakeShell::PropertyPages() const
{
    QList<PropertyPageFactory> pages;
    for (const auto& [order, factory] : m_propertyPages)
        pages << factory;
    return pages;
}
