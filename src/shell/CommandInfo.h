#pragma once

#include "framework/CChildFrame.h"

#include <QIcon>
#include <QKeySequence>
#include <QString>
#include <functional>

// One command as the subsystem that carries it out registers it. The text keeps its
// mnemonic ("&Save"); the shortcut given here is the default, which the user's own
// keys (the "Shortcuts" settings section) may override.
struct CommandInfo
{
    int id = 0;
    QString text;
    // Groups the command in the keyboard customisation list ("File", "Edit", ...).
    QString category;
    QKeySequence shortcut;
    // A freedesktop icon name; the registry looks it up in the desktop's theme.
    QString iconName;
    QIcon icon;
    QString toolTip;
    bool checkable = false;
    // Runs the command. Without one, the command is only offered to the active child
    // frame (CChildFrame::OnCmdMsg), which is how text and hex frames answer the same
    // editing command each in its own way.
    std::function<void()> run;
    // Fills in the state menus and toolbars show. Without one the command is enabled
    // while it has a handler or the active child speaks for it.
    std::function<void(CCmdUI&)> update;
    // Holds a place in the menus, greyed, for a command whose subsystem has not been
    // written yet. That subsystem's own registration later takes the place over.
    bool placeholder = false;
};
