#pragma once

#include <QtGlobal>

// The control measures a line's text piece by piece, and remembers the widths of short
// pieces it has seen; a piece ends wherever the style changes. A line of megabytes in one
// style is measured afresh, in pieces of about a hundred characters, at every change of
// that line. Cut into short pieces that repeat ("ab", "{\"", "é"), the same line is
// measured once per distinct piece and after that from memory.
namespace LongLinePieces {

// Two styles that look exactly like plain text: alternating between them cuts the pieces.
// Far above the styles that lexers use, so nothing reads them as a lexer's class.
constexpr unsigned char StyleA = 250;
constexpr unsigned char StyleB = 251;

inline bool IsPieceStyle(int style)
{
    return style == StyleA || style == StyleB;
}

// Writes one style byte for each byte of `text`: ASCII characters two at a time, and each
// run of other characters whole, with the ASCII character in front of it (an accent or
// other combining mark is never drawn apart from its letter, and a word in another script
// stays one piece). Pieces alternate between StyleA and StyleB, the first one differing
// from `before`, the style of the byte in front of the text.
void Fill(const char* text, qint64 length, unsigned char* styles, unsigned char before);

} // namespace LongLinePieces
