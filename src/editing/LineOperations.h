#pragma once

#include <QByteArray>
#include <QPair>

class QsciScintillaBase;

// Commands that rework whole lines of the selection (or the caret's line). Each is one
// undo step and keeps the lines it touched selected, so it can be repeated.
namespace LineOperations {

enum class SortOrder { Ascending, Descending, CaseInsensitive, Unique };

// Moves the selection's lines one line up (-1) or down (+1). A folded block next to
// them is stepped over whole. False at the first or last line.
bool MoveLines(QsciScintillaBase& control, int direction);
// Duplicates the selection, or the caret's line when nothing is selected.
void Duplicate(QsciScintillaBase& control);
// Joins the selection's lines (the caret's line with the next one) with single spaces.
bool JoinLines(QsciScintillaBase& control);
// Sorts the selection's lines, or the whole document when at most one line is selected.
// Equal lines keep their order; Unique drops repeats after an ascending sort.
bool SortLines(QsciScintillaBase& control, SortOrder order);

// The block comment markers of a lexer ("cpp" gives "/*" and "*/"); empty when it has none.
QPair<QByteArray, QByteArray> BlockCommentMarkers(const QByteArray& lexer);
// Wraps the selection (or the caret line's text) in the markers, or unwraps it when it is
// wrapped already. False when there are no markers or the text is read-only.
bool ToggleBlockComment(QsciScintillaBase& control, const QByteArray& open, const QByteArray& close);

} // namespace LineOperations
