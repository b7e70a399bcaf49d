#pragma once

#include <QIcon>

class QStyle;

// The icon of a command for menus and the toolbar: the desktop theme's icon where it
// has one, else the style's standard icon, else a small glyph drawn here, so that the
// toolbar looks the same whatever the desktop offers. Null for commands without one.
namespace CommandIcons {

QIcon ForCommand(int commandId, const QStyle* style);

// Picks an installed freedesktop theme when the desktop names none (a bare window
// manager leaves the toolkit on "hicolor", which holds no command icons), and makes it
// the fallback of a named theme that lacks some.
void UseDesktopTheme();

} // namespace CommandIcons
