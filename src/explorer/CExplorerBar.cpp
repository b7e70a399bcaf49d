#include "CExplorerBar.h"

#include "ExplorerCommandIds.h"
#include "ExplorerPageKind.h"
#include "settings/CRegistryStore.h"
#include "shell/CCommandRegistry.h"
#include "shell/CShellEvents.h"
#include "shell/IExplorerPage.h"
#include "shell/IShell.h"

#include <QAction>
#include <QContextMenuEvent>
#include <QDockWidget>
#include <QMenu>
#include <QTabBar>
#include <QTabWidget>
#include <QToolBar>
#include <QVBoxLayout>

namespace {

const QString Section = QStringLiteral("ExplorerBar");

// Kinds in the order the pages are first laid in, with the names of their flags.
struct PageInfo
{
    int kind;
    const char* flagName;
};
constexpr PageInfo Pages[] = {
    {ExplorerPageKind::File, "FilePage"},
    {ExplorerPageKind::Project, "ProjectPage"},
    {ExplorerPageKind::CodeLibrary, "LibraryPage"},
    {ExplorerPageKind::List, "ListPage"},
};

QList<int> DefaultOrder()
{
    QList<int> order;
    for (const PageInfo& page : Pages)
        order << page.kind;
    return order;
}

} // namespace

CExplorerBar::CExplorerBar(IShell& shell, QWidget* parent)
    : QWidget(parent)
    , m_shell(shell)
{
    setObjectName(QStringLiteral("ExplorerBarContents"));
    m_layout = new QVBoxLayout(this);
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setSpacing(0);
    m_tabs = new QTabWidget(this);
    m_tabs->setTabPosition(QTabWidget::South);
    m_tabs->setDocumentMode(true);
    m_tabs->tabBar()->installEventFilter(this);
    m_layout->addWidget(m_tabs, 1);
    connect(m_tabs, &QTabWidget::currentChanged, this, &CExplorerBar::OnCurrentTabChanged);

    for (const PageInfo& page : Pages)
        m_flags[page.kind] = true;
    m_order = DefaultOrder();
    LoadSettings();

    m_dock = shell.AddDock(QStringLiteral("ExplorerBar"), tr("Morvane"), this, Qt::LeftDockWidgetArea);
    if (m_dock)
        m_dock->installEventFilter(this);

    for (IExplorerPage* page : shell.ExplorerPages())
        AddPage(page);
    connect(&shell.Events(), &CShellEvents::explorerPageAdded, this, &CExplorerBar::AddPage);
    connect(&shell.Events(), &CShellEvents::showExplorerPage, this, [this](IExplorerPage* page) {
        if (page)
            ShowPage(page->PageKind());
    });
    connect(&shell.Events(), &CShellEvents::saveSettings, this, &CExplorerBar::SaveSettings);
    // The saved dock layout is restored after the subsystems install; the flags decide.
    connect(&shell.Events(), &CShellEvents::firstIdle, this, &CExplorerBar::UpdateVisibility);
    BuildPages();
}

CExplorerBar::~CExplorerBar() = default;

void CExplorerBar::AddPage(IExplorerPage* page)
{
    if (!page || m_pages.contains(page->PageKind()))
        return;
    m_pages.insert(page->PageKind(), page);
    if (!m_order.contains(page->PageKind()) && IsPageOn(page->PageKind()))
        m_order << page->PageKind();
    BuildPages();
}

void CExplorerBar::BuildPages()
{
    m_building = true;
    while (m_tabs->count() > 0)
        m_tabs->removeTab(0);
    for (int kind : std::as_const(m_order)) {
        IExplorerPage* page = m_pages.value(kind);
        if (!page || !IsPageOn(kind))
            continue;
        m_tabs->addTab(page->Widget(), page->Icon(), page->Title());
    }
    int active = 0;
    if (IExplorerPage* page = m_pages.value(m_activeKind))
        active = std::max(0, m_tabs->indexOf(page->Widget()));
    if (m_tabs->count() > 0)
        m_tabs->setCurrentIndex(active);
    m_building = false;
    // The kept active page stays wanted while it is absent (its subsystem may come later).
    UpdatePageTools();
    Q_EMIT activePageChanged(PageKind());
    UpdateVisibility();
}

IExplorerPage* CExplorerBar::ActivePage() const
{
    QWidget* current = m_tabs->currentWidget();
    for (IExplorerPage* page : m_pages)
        if (page->Widget() == current && current)
            return page;
    return nullptr;
}

int CExplorerBar::PageKind() const
{
    const IExplorerPage* page = ActivePage();
    if (!page)
        return ExplorerPageKind::CodeLibrary;
    const int kind = page->PageKind();
    return kind == ExplorerPageKind::Project || kind == ExplorerPageKind::File || kind == ExplorerPageKind::List
               ? kind
               : ExplorerPageKind::CodeLibrary;
}

QToolBar* CExplorerBar::StripFor(IExplorerPage* page)
{
    const int kind = page->PageKind();
    if (QToolBar* strip = m_strips.value(kind))
        return strip;
    const QList<int> ids = page->ToolStrip();
    const QList<QWidget*> widgets = page->ToolStripWidgets();
    if (ids.isEmpty() && widgets.isEmpty())
        return nullptr;
    auto* strip = new QToolBar(this);
    strip->setIconSize(QSize(16, 16));
    strip->setFloatable(false);
    strip->setMovable(false);
    strip->setToolButtonStyle(Qt::ToolButtonIconOnly);
    if (kind == ExplorerPageKind::Project)
        strip->setWindowTitle(tr("Control Center"));
    for (int id : ids) {
        if (id == 0)
            strip->addSeparator();
        else if (QAction* action = m_shell.Commands().Action(id))
            strip->addAction(action);
    }
    for (QWidget* widget : widgets)
        strip->addWidget(widget);
    strip->hide();
    m_layout->insertWidget(0, strip);
    m_strips.insert(kind, strip);
    return strip;
}

void CExplorerBar::UpdatePageTools()
{
    IExplorerPage* page = ActivePage();
    QToolBar* shown = page ? StripFor(page) : nullptr;
    for (QToolBar* strip : std::as_const(m_strips))
        strip->setVisible(strip == shown);
    if (m_dock)
        m_dock->setWindowTitle(page ? page->Title() : tr("Morvane"));
    m_shell.RequestCommandUpdate();
}

void CExplorerBar::OnCurrentTabChanged(int)
{
    if (m_building)
        return;
    if (IExplorerPage* page = ActivePage())
        m_activeKind = page->PageKind();
    UpdatePageTools();
    Q_EMIT activePageChanged(PageKind());
}

void CExplorerBar::SetPageOn(int kind, bool on)
{
    if (on) {
        m_flags[kind] = true;
        m_order.removeAll(kind);
        m_order.prepend(kind);
        m_activeKind = kind;
    } else {
        m_flags[kind] = false;
        m_order.removeAll(kind);
    }
    BuildPages();
}

void CExplorerBar::ShowPage(int kind)
{
    if (!IsPageOn(kind) || !IsBarVisible()) {
        SetPageOn(kind, true);
        return;
    }
    if (IExplorerPage* page = m_pages.value(kind))
        m_tabs->setCurrentWidget(page->Widget());
}

void CExplorerBar::SetBarVisible(bool visible)
{
    for (const PageInfo& page : Pages) {
        m_flags[page.kind] = visible;
        if (visible && !m_order.contains(page.kind))
            m_order << page.kind;
    }
    if (!visible)
        m_order.clear();
    BuildPages();
}

bool CExplorerBar::IsBarVisible() const
{
    return m_dock ? !m_dock->isHidden() : !isHidden();
}

void CExplorerBar::UpdateVisibility()
{
    // Hidden while no page it holds is on.
    const bool any = m_tabs->count() > 0;
    if (m_dock)
        m_dock->setVisible(any);
    m_shell.RequestCommandUpdate();
}

void CExplorerBar::LoadSettings()
{
    const CRegistryStore store;
    for (const PageInfo& page : Pages)
        m_flags[page.kind] = store.GetProfileInt(Section, QString::fromLatin1(page.flagName), 1) != 0;
    const QString orderText = store.GetProfileString(Section, QStringLiteral("PageOrder"));
    QList<int> order;
    for (const QString& part : orderText.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        bool ok = false;
        const int kind = part.trimmed().toInt(&ok);
        if (ok && kind >= 0 && kind < ExplorerPageKind::Count && !order.contains(kind))
            order << kind;
    }
    // Pages that are on but missing from the kept order go last, in the usual order.
    for (int kind : DefaultOrder())
        if (IsPageOn(kind) && !order.contains(kind))
            order << kind;
    m_order = order;
    m_activeKind = store.GetProfileInt(Section, QStringLiteral("ActivePage"), -1);
}

void CExplorerBar::SaveSettings() const
{
    QList<QPair<QString, QVariant>> values;
    for (const PageInfo& page : Pages)
        values.append({QString::fromLatin1(page.flagName), IsPageOn(page.kind) ? 1 : 0});
    QStringList order;
    for (int kind : m_order)
        if (IsPageOn(kind))
            order << QString::number(kind);
    values.append({QStringLiteral("PageOrder"), order.join(QLatin1Char(','))});
    values.append({QStringLiteral("ActivePage"), m_activeKind});
    CRegistryStore().ReplaceSection(Section, values);
}

QMenu* CExplorerBar::ContextMenu()
{
    if (!m_contextMenu) {
        m_contextMenu = new QMenu(this);
        for (int id : {ExplorerCmd::ViewFileExplorer, ExplorerCmd::ViewProjectExplorer,
                       ExplorerCmd::ViewCodeLibrary, ExplorerCmd::ViewListExplorer})
            if (QAction* action = m_shell.Commands().Action(id))
                m_contextMenu->addAction(action);
    }
    m_shell.Commands().UpdateAll();
    return m_contextMenu;
}

void CExplorerBar::contextMenuEvent(QContextMenuEvent* event)
{
    ContextMenu()->popup(event->globalPos());
    event->accept();
}

bool CExplorerBar::eventFilter(QObject* watched, QEvent* event)
{
    // The event's type first: the watched widgets still send events while they are
    // destroyed, and comparing them through their owners or guards then casts a
    // half-gone object.
    if (event->type() == QEvent::ContextMenu && watched == m_tabs->tabBar()) {
        ContextMenu()->popup(static_cast<QContextMenuEvent*>(event)->globalPos());
        return true;
    }
    if (event->type() == QEvent::Close && watched == m_dock) {
        // Closing the dock by its button is the same as hiding the bar by command.
        for (auto it = m_flags.begin(); it != m_flags.end(); ++it)
            it.value() = false;
        m_order.clear();
        m_shell.RequestCommandUpdate();
    }
    return QWidget::eventFilter(watched, event);
}
