#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

class CSyntaxParserList;
class QAction;
class QMenu;

// The View As menu: the first parsers by name, then "More ..." for the dialog.
namespace ViewAsMenu {

// The menu has room for this many parser names; the rest are reached by "More ...".
constexpr int MaxMenuEntries = 21;
// Index 20 never shows a check mark, although the entry is there.
constexpr int MaxCheckedEntries = 20;

// Makes the action for one entry; the syntax commands pass the registry's, so that the
// action is routed like every other command. Without one, plain actions owned by the menu are made.
using ActionFactory = std::function<QAction*(int commandId, const QString& text)>;

// Empties `menu` of earlier View As entries and fills it: one checkable action per parser
// (ids Cmd::ViewAsFirst + index, at most 21), or a single disabled "Coloring Not
// Available" when there is none; then a separator and "More ..." (Cmd::ViewAsMore).
// Every action carries its command id in data(). Returns the actions, "More ..." last.
QList<QAction*> Fill(QMenu* menu, const QStringList& menuNames, const ActionFactory& factory = {});
QList<QAction*> Fill(QMenu* menu, const CSyntaxParserList& parsers, const ActionFactory& factory = {});

// Whether entry `index` shows the check mark when parser `current` of `count` is active.
bool ShowsCheck(int index, int count, int current);
// Sets the check marks of actions made by Fill.
void UpdateChecks(const QList<QAction*>& actions, int count, int current);

// The parser index of a View As command id, or -1 for any other id.
int ParserIndexOfCommand(int commandId);

} // namespace ViewAsMenu
