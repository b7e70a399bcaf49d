#pragma once

#include <QIcon>

class QStyle;

// The icon of a command for menus and the toolbar: the desktop theme's icon where it
// has one, else the style's standard icon, else a small glyph drawn here, so that the
// toolbar looks the same whatever the desktop offers. Null for commands without one.
namespace CommandIcons {

QIcon ForCommand(int commandId, const QStyle* style);

} // namespace CommandIcons
