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
    AddMenuPlace(menuId, menu, groups);
    return menu;
}

QMenu* CMenuPlaces::DeclareContextMenu(const QString& menuId, const QStringList& groups)
{
    if (QMenu* existing = Menu(menuId))
        return existing;
    auto* menu = new QMenu(m_window);
    AddMenuPlace(menuId, menu, groups);
    return menu;
}

void CMenuPlaces::AddMenuPlace(const QString& menuId, QMenu* menu, const QStringList& groups)
{
    AddPlace(m_menus, m_menuOrder, menuId, menu, groups);
    // States are fresh whenever a menu opens.
    connect(menu, &QMenu::aboutToShow, &m_commands, &CCommandRegistry::UpdateAll);
}

void CMenuPlaces::AddPlace(QHash<QString, Place>& places, QStringList& order, const QString& id,
                           QWidget* widget, const QStringList& groups)
{
    Place place;
    place.widget = widget;
    place.groups = groups;
    // No line ever shows above the first group, so it gets none.
    for (const QString& group : groups.mid(1)) {
        auto* line = new QAction(widget);
        line->setSeparator(true);
        widget->addAction(line);
        place.separators.insert(group, line);
    }
    order << id;
    UpdateSeparators(*places.insert(id, place));
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
    AddPlace(m_toolBars, m_toolBarOrder, toolBarId, bar, groups);
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
    if (it->customised) {
        // The user's layout holds; the command joins the layout a reset brings back.
        it->items[it->groups.contains(group) ? group : QString()].append(action);
        return;
    }
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

QList<int> CMenuPlaces::DefaultToolBarCommands(const QString& toolBarId) const
{
    QList<int> ids;
    const auto it = m_toolBars.constFind(toolBarId);
    if (it == m_toolBars.cend())
        return ids;
    for (const QString& group : it->groups) {
        bool any = false;
        for (const QAction* action : it->items.value(group)) {
            if (action && action->data().isValid()) {
                if (!any && !ids.isEmpty())
                    ids << 0;
                ids << action->data().toInt();
                any = true;
            }
        }
    }
    return ids;
}

void CMenuPlaces::ClearCommands(Place& place)
{
    auto* bar = qobject_cast<QToolBar*>(place.widget.data());
    if (!bar)
        return;
    const auto actions = bar->actions();
    for (QAction* action : actions) {
        // Widgets (whose actions carry no id) and the group lines stay.
        if (action->data().isValid() && m_commands.Action(action->data().toInt()) == action)
            bar->removeAction(action);
    }
    qDeleteAll(place.customSeparators);
    place.customSeparators.clear();
}

void CMenuPlaces::SetToolBarCommands(const QString& toolBarId, const QList<int>& ids)
{
    const auto it = m_toolBars.find(toolBarId);
    auto* bar = ToolBar(toolBarId);
    if (it == m_toolBars.end() || !bar)
        return;
    ClearCommands(*it);
    for (QAction* separator : std::as_const(it->separators))
        separator->setVisible(false);
    // Commands go before the first widget, so the find box stays last.
    QAction* before = nullptr;
    for (QAction* action : bar->actions()) {
        if (!action->isSeparator() && !action->data().isValid()) {
            before = action;
            break;
        }
    }
    // A line goes in only between two buttons: none at either end, never two in a row.
    bool anyButton = false;
    bool lineWanted = false;
    for (const int id : ids) {
        if (id == 0) {
            lineWanted = anyButton;
            continue;
        }
        QAction* action = m_commands.Action(id);
        if (!action || bar->actions().contains(action))
            continue;
        if (lineWanted) {
            auto* line = new QAction(bar);
            line->setSeparator(true);
            bar->insertAction(before, line);
            it->customSeparators << line;
            lineWanted = false;
        }
        bar->insertAction(before, action);
        anyButton = true;
    }
    it->customised = true;
}

void CMenuPlaces::ResetToolBar(const QString& toolBarId)
{
    const auto it = m_toolBars.find(toolBarId);
    auto* bar = ToolBar(toolBarId);
    if (it == m_toolBars.end() || !bar)
        return;
    ClearCommands(*it);
    for (int g = 0; g < it->groups.size(); ++g) {
        QAction* before = nullptr;
        for (int next = g + 1; next < it->groups.size() && !before; ++next)
            before = it->separators.value(it->groups.at(next));
        // Back to front, so that each item lands before the one that follows it, widgets
        // (which never left) included.
        const QList<QAction*> items = it->items.value(it->groups.at(g));
        for (auto item = items.crbegin(); item != items.crend(); ++item) {
            if (!*item)
                continue;
            if (!bar->actions().contains(*item))
                bar->insertAction(before, *item);
            before = *item;
        }
    }
    it->customised = false;
    UpdateSeparators(*it);
}

bool CMenuPlaces::IsToolBarCustomised(const QString& toolBarId) const
{
    const auto it = m_toolBars.constFind(toolBarId);
    return it != m_toolBars.cend() && it->customised;
}

bool CMenuPlaces::RemoveToolBar(const QString& toolBarId)
{
    QToolBar* bar = ToolBar(toolBarId);
    if (!bar)
        return false;
    m_window->removeToolBar(bar);
    delete bar;
    m_toolBars.remove(toolBarId);
    m_toolBarOrder.removeAll(toolBarId);
    return true;
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
    // A command withdrawn later (a deleted user tool) leaves no stale entry behind: a new
    // action at the same address would otherwise count as already placed.
    connect(action, &QObject::destroyed, this, [this, action] { Forget(action); });
}

void CMenuPlaces::Forget(QAction* action)
{
    for (auto* places : {&m_menus, &m_toolBars}) {
        for (Place& place : *places) {
            for (QList<QAction*>& items : place.items)
                items.removeAll(action);
        }
    }
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
