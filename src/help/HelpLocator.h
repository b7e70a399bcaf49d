#pragma once

#include <QString>

class QWidget;

// Where the help collection is, and which page belongs to which window.
namespace HelpLocator {

inline constexpr char Namespace[] = "com.brackwyn.morvane.manual";
inline constexpr char CollectionName[] = "morvane.qhc";

// The folder holding the built collection: $MORVANE_HELP_DIR, "help" beside the
// executable, the installed share folder, then the build tree. Empty when none has it.
QString ShippedFolder();
// A private copy of the collection in the user's data folder, refreshed when the
// shipped one changed: the search index is written beside the collection, which an
// installed (read-only) copy can't hold. Empty when there is no collection.
QString UserCollection();

// "qthelp://.../manual/<page>".
QString PageUrl(const QString& page);
// The page for the window in front: the nearest "helpPage" property from the focused
// widget up to its window, else the window's own kind, else the contents.
QString PageFor(const QWidget* window, const QWidget* focus);

} // namespace HelpLocator
