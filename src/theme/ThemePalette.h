#pragma once

#include <QPalette>

// The window colours of the two themes, for the Fusion style.
namespace ThemePalette {

QPalette Dark();
// Fusion's own light palette.
QPalette Light();
// Whether a palette paints dark windows: what a desktop without a colour-scheme hint says.
bool IsDark(const QPalette& palette);

} // namespace ThemePalette
