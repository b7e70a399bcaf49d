#include "CMenuPlaces.h"

#include "shell/CCommandRegistry.h"

#include <QAction>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>

CMenuPlaces::CMenuPlaces(QMainWindow* window, CCommandRegistry& commands)
    : QObject(window)
    , m_window(window)
    , m_commands(commands)
{
}

QMenu* CMenuPlaces::DeclareMenu(const QString& menuId, const QString& title,
                                const QStringList& groups, const QString& parentMenu,
                                const QString& parentGroup)
{
    if (QMenu* existing = Menu(menuId))
        return existing;
    QMenu* menu = nullptr;
    if (parentMenu.isEmpty()) {
        menu = m_window->menuBar()->addMenu(title);
    } else {
        QMenu* parent = Menu(parentMenu);
        menu = new QMenu(title, parent ? static_cast<QWidget*>(parent) : m_window);
        if (parent)
            Insert(m_menus[parentMenu], parentGroup, menu->menuAction());
    }
    menu->setSeparatorsCollapsible(true);
    Place place;
    place.widget = menu;
    place.groups = groups;
    // No line ever shows above the first group, so it gets none.
    for (const QString& group : groups.mid(1))
        place.separators.insert(group, menu->addSeparator());
    m_menus.insert(menuId, place);
    m_menuOrder << menuId;
    // States are fresh whenever a menu opens.
    connect(menu, &QMenu::aboutToShow, &m_commands, &CCommandRegistry::UpdateAll);
    UpdateSeparators(m_menus[menuId]);
    return menu;
}

QMenu* CMenuPlaces::DeclareContextMenu(const QString& menuId, const QStringList& groups)
{
    if (QMenu* existing = Menu(menuId))
        return existing;
    auto* menu = new QMenu(m_window);
    Place place;
    place.widget = menu;
    place.groups = groups;
    for (const QString& group : groups.mid(1))
        place.separators.insert(group, menu->addSeparator());
    m_menus.insert(menuId, place);
    m_menuOrder << menuId;
    connect(menu, &QMenu::aboutToShow, &m_commands, &CCommandRegistry::UpdateAll);
    UpdateSeparators(m_menus[menuId]);
    return menu;
}

QMenu* CMenuPlaces::Menu(const QString& menuId) const
{
    const auto it = m_menus.constFind(menuId);
    return it == m_menus.cend() ? nullptr : qobject_cast<QMenu*>(it->widget.data());
}

QStringList CMenuPlaces::MenuIds() const
{
    return m_menuOrder;
}

QAction* CMenuPlaces::AddCommand(const QString& menuId, const QString& group, int commandId)
{
    QAction* action = m_commands.Action(commandId);
    if (!action) {
        qWarning("Command %d is not registered", commandId);
        return nullptr;
    }
    AddAction(menuId, group, action);
    return action;
}

void CMenuPlaces::SetGroupOrder(const QString& menuId, const QString& group,
                                const QList<int>& commandIds)
{
    const auto it = m_menus.find(menuId);
    if (it != m_menus.end())
        it->order.insert(group, commandIds);
}

void CMenuPlaces::AddAction(const QString& menuId, const QString& group, QAction* action)
{
    const auto it = m_menus.find(menuId);
    if (it == m_menus.end() || !action) {
        qWarning("No menu place %s", qPrintable(menuId));
        return;
    }
    Insert(*it, group, action);
}

QToolBar* CMenuPlaces::DeclareToolBar(const QString& toolBarId, const QString& title,
                                      const QStringList& groups)
{
    if (QToolBar* existing = ToolBar(toolBarId))
        return existing;
    QToolBar* bar = m_window->addToolBar(title);
    bar->setObjectName(toolBarId + QStringLiteral("ToolBar"));
    Place place;
    place.widget = bar;
    place.groups = groups;
    for (const QString& group : groups.mid(1))
        place.separators.insert(group, bar->addSeparator());
    m_toolBars.insert(toolBarId, place);
    m_toolBarOrder << toolBarId;
    UpdateSeparators(m_toolBars[toolBarId]);
    return bar;
}

QToolBar* CMenuPlaces::ToolBar(const QString& toolBarId) const
{
    const auto it = m_toolBars.constFind(toolBarId);
    return it == m_toolBars.cend() ? nullptr : qobject_cast<QToolBar*>(it->widget.data());
}

QStringList CMenuPlaces::ToolBarIds() const
{
    return m_toolBarOrder;
}

void CMenuPlaces::AddToolBarCommand(const QString& toolBarId, const QString& group, int commandId)
{
    const auto it = m_toolBars.find(toolBarId);
    QAction* action = m_commands.Action(commandId);
    if (it == m_toolBars.end() || !action)
        return;
    Insert(*it, group, action);
}

void CMenuPlaces::AddToolBarWidget(const QString& toolBarId, const QString& group, QWidget* widget)
{
    const auto it = m_toolBars.find(toolBarId);
    auto* bar = ToolBar(toolBarId);
    if (it == m_toolBars.end() || !bar || !widget)
        return;
    // A widget takes its place through the action the toolbar makes for it.
    QAction* before = nullptr;
    const int index = it->groups.indexOf(group);
    for (int next = index + 1; index >= 0 && next < it->groups.size() && !before; ++next)
        before = it->separators.value(it->groups.at(next));
    QAction* action = before ? bar->insertWidget(before, widget) : bar->addWidget(widget);
    it->items[index >= 0 ? group : QString()].append(action);
    UpdateSeparators(*it);
}

QList<int> CMenuPlaces::ToolBarCommands(const QString& toolBarId) const
{
    QList<int> ids;
    const QToolBar* bar = ToolBar(toolBarId);
    if (!bar)
        return ids;
    const auto actions = bar->actions();
    for (const QAction* action : actions) {
        if (!action->isVisible())
            continue;
        if (action->isSeparator())
            ids << 0;
        else if (action->data().isValid())
            ids << action->data().toInt();
    }
    while (!ids.isEmpty() && ids.first() == 0)
        ids.removeFirst();
    return ids;
}

void CMenuPlaces::Insert(Place& place, const QString& group, QAction* action)
{
    QWidget* widget = place.widget.data();
    if (!widget)
        return;
    // A command that takes over a placeholder is added again where it already stands.
    for (const QList<QAction*>& items : std::as_const(place.items)) {
        if (items.contains(action))
            return;
    }
    // A menu kept hidden while it had nothing to show shows now.
    if (auto* menu = qobject_cast<QMenu*>(widget))
        menu->menuAction()->setVisible(true);
    // The item goes before the line of the next declared group, else at the end; in a
    // group with an order, before the first item ranked after it.
    QAction* before = nullptr;
    const int index = place.groups.indexOf(group);
    QList<QAction*>& items = place.items[index >= 0 ? group : QString()];
    qsizetype position = items.size();
    const QList<int> order = place.order.value(group);
    if (const qsizetype rank = order.indexOf(action->data().toInt()); rank >= 0) {
        for (qsizetype i = 0; i < items.size(); ++i) {
            const qsizetype other = order.indexOf(items.at(i)->data().toInt());
            if (other > rank) {
                position = i;
                before = items.at(i);
                break;
            }
        }
    }
    for (int next = index + 1; !before && index >= 0 && next < place.groups.size(); ++next)
        before = place.separators.value(place.groups.at(next));
    widget->insertAction(before, action);
    items.insert(position, action);
    UpdateSeparators(place);
}

void CMenuPlaces::UpdateSeparators(Place& place)
{
    // A line shows only between two groups that both hold something, so toolbars (which
    // do not fold lines away as menus do) look the same as menus.
    bool anyBefore = false;
    for (const QString& group : std::as_const(place.groups)) {
        const bool filled = !place.items.value(group).isEmpty();
        if (QAction* separator = place.separators.value(group))
            separator->setVisible(filled && anyBefore);
        anyBefore = anyBefore || filled;
    }
}
