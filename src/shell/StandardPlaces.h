#pragma once

class CMenuPlaces;

// Declares the menu bar's menus with their submenus and groups, the context menus and
// the standard toolbar, in the order the user sees them. The main window and the test
// shell lay out the same places, so a subsystem lands in the same spot in both.
void DeclareStandardPlaces(CMenuPlaces& places);
