#pragma once

#include "shell/MenuPlaces.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QStringList>

class CCommandRegistry;
class QAction;
class QMainWindow;
class QMenu;
class QMenuBar;
class QToolBar;
class QWidget;

// The menus and toolbars, laid out from named places. A menu or toolbar is declared
// once with its groups in order; commands and widgets are then added to a group and
// appear after what the group already holds, with a line between non-empty groups.
class CMenuPlaces : public QObject
{
    Q_OBJECT
public:
    CMenuPlaces(QMainWindow* window, CCommandRegistry& commands);

    // A menu on the menu bar (`parentMenu` empty, placed in declaration order) or a
    // submenu in a group of another menu. Declaring an existing id returns it unchanged.
    QMenu* DeclareMenu(const QString& menuId, const QString& title, const QStringList& groups,
                       const QString& parentMenu = {}, const QString& parentGroup = {});
    // A context menu nobody shows from the menu bar: a view asks for it and pops it up.
    QMenu* DeclareContextMenu(const QString& menuId, const QStringList& groups);
    QMenu* Menu(const QString& menuId) const;
    QStringList MenuIds() const;

    // The order of commands within a group that several subsystems fill: a listed command
    // goes before any listed after it, whichever subsystem adds it first. Others follow
    // in the order they were added.
    void SetGroupOrder(const QString& menuId, const QString& group, const QList<int>& commandIds);

    // Adds the registered command to a group; an unknown group goes to the end.
    QAction* AddCommand(const QString& menuId, const QString& group, int commandId);
    void AddAction(const QString& menuId, const QString& group, QAction* action);

    QToolBar* DeclareToolBar(const QString& toolBarId, const QString& title,
                             const QStringList& groups);
    QToolBar* ToolBar(const QString& toolBarId) const;
    QStringList ToolBarIds() const;
    void AddToolBarCommand(const QString& toolBarId, const QString& group, int commandId);
    void AddToolBarWidget(const QString& toolBarId, const QString& group, QWidget* widget);
    // The command ids a toolbar shows, in order (0 for a separator), for customisation.
    QList<int> ToolBarCommands(const QString& toolBarId) const;
    // What the subsystems put on the toolbar, before any customisation.
    QList<int> DefaultToolBarCommands(const QString& toolBarId) const;
    // Shows exactly these commands (0 a separator; ids not registered are skipped).
    // Widgets on the toolbar (the find box) stay, after the commands.
    void SetToolBarCommands(const QString& toolBarId, const QList<int>& ids);
    // Back to the subsystems' layout.
    void ResetToolBar(const QString& toolBarId);
    bool IsToolBarCustomised(const QString& toolBarId) const;
    // Removes a toolbar (one the user made); false when there is none by that id.
    bool RemoveToolBar(const QString& toolBarId);

private:
    struct Place
    {
        QPointer<QWidget> widget; // QMenu or QToolBar
        QStringList groups;
        QHash<QString, QAction*> separators; // the line before each group's first item
        QHash<QString, QList<QAction*>> items;
        bool customised = false;
        QList<QAction*> customSeparators; // lines of a customised layout, ours to delete
        QHash<QString, QList<int>> order;
    };
    void AddMenuPlace(const QString& menuId, QMenu* menu, const QStringList& groups);
    static void AddPlace(QHash<QString, Place>& places, QStringList& order, const QString& id,
                         QWidget* widget, const QStringList& groups);
    void ClearCommands(Place& place);
    void Forget(QAction* action);
    void Insert(Place& place, const QString& group, QAction* action);
    static void UpdateSeparators(Place& place);

    QMainWindow* m_window;
    CCommandRegistry& m_commands;
    QHash<QString, Place> m_menus;
    QStringList m_menuOrder;
    QHash<QString, Place> m_toolBars;
    QStringList m_toolBarOrder;
};
