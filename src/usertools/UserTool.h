#pragma once

#include <QList>
#include <QString>

// One external tool the user defined: what to run, where, and where its output goes.
struct UserTool
{
    enum Kind { OutputBar = 0, NewDocument = 1, Launch = 2 };

    QString name;
    QString command;
    QString arguments;
    QString initialDirectory;
    int kind = OutputBar;
    bool saveBeforeRun = false;
    // The key in portable text ("Ctrl+Shift+B"); empty for none.
    QString shortcut;

    bool operator==(const UserTool&) const = default;
};

namespace UserTools {
// Each tool is the command FirstCommand + its place in the list.
inline constexpr int FirstCommand = 53000;
inline constexpr int LastCommand = 53250;
inline constexpr int MaxTools = LastCommand - FirstCommand + 1;
inline constexpr int StopCommand = 651;
} // namespace UserTools
