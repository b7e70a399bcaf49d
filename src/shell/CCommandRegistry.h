#pragma once

#include "shell/CommandInfo.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>
#include <functional>

class QAction;
class QWidget;

// Every command of the program, registered once by the subsystem that carries it out.
// Each becomes one QAction carrying its id; menus and toolbars show those actions, and
// keyboard customisation reads and changes their shortcuts here.
class CCommandRegistry : public QObject
{
    Q_OBJECT
public:
    // Actions are children of `actionParent` (the main window), so that their shortcuts
    // work in every child window.
    explicit CCommandRegistry(QWidget* actionParent);
    ~CCommandRegistry() override;

    // Registers a command; an id registered twice is a programming error: the first
    // registration stays and null is returned. A placeholder is the exception: the real
    // command takes over its action and places.
    QAction* Register(const CommandInfo& cmd);
    // Removes a command whose subsystem withdraws it (a deleted user tool).
    void Unregister(int id);

    QAction* Action(int id) const;
    bool Contains(int id) const { return m_commands.contains(id); }
    const CommandInfo* Info(int id) const;
    // Ids in the order they were registered.
    const QList<int>& Ids() const { return m_order; }
    // The menu text without its mnemonic and accelerator ("Save As...").
    QString PlainText(int id) const;

    QKeySequence DefaultShortcut(int id) const;
    QKeySequence Shortcut(int id) const;
    // The user's key for a command; an empty sequence removes it.
    void SetShortcut(int id, const QKeySequence& shortcut);
    void ResetShortcut(int id);
    // The command that a key is bound to, or 0.
    int CommandForShortcut(const QKeySequence& shortcut) const;
    // Reads and writes the user's keys in the settings section "Shortcuts": only the
    // keys that differ from the defaults are written.
    void LoadShortcuts();
    void SaveShortcuts() const;

    // The active child frame, offered every command before its own handler runs.
    void SetActiveChildProvider(std::function<CChildFrame*()> provider);

    void Execute(int id);
    // Refreshes the enabled and checked state of every command now, or when the event
    // loop is next idle.
    void UpdateAll();
    void RequestUpdate();
    // The state one command would show now.
    CCmdUI State(int id) const;

Q_SIGNALS:
    void commandRegistered(int id);
    void commandUnregistered(int id);
    void shortcutChanged(int id);
    void executed(int id);

private:
    struct Entry
    {
        CommandInfo cmd;
        QPointer<QAction> action;
    };
    QAction* TakeOverPlaceholder(Entry& entry, const CommandInfo& cmd);
    static void ApplyLook(QAction* action, const CommandInfo& cmd);

    QWidget* m_actionParent;
    QHash<int, Entry> m_commands;
    QList<int> m_order;
    std::function<CChildFrame*()> m_activeChild;
    bool m_updatePending = false;
};
