#pragma once

#include <QByteArray>
#include <QString>

// Conversions between bytes and the text the user types or copies.
namespace HexText {

// The value of one hexadecimal digit, or -1 when `c` is none.
int DigitValue(QChar c);

// "4D 5A 90": two upper-case digits per byte, separated by spaces.
QString ToHex(const QByteArray& bytes);

// Reads bytes written as hexadecimal digits. Groups are separated by white space,
// commas or dashes and may carry a "0x" prefix; a group of odd length is read as if
// it had a leading zero ("A" is 0A, "ABC" is 0A BC). False, with `out` untouched, when
// anything else appears or there are no digits at all.
bool ParseHex(const QString& text, QByteArray* out);

// Reads an offset typed in the go-to box: digits in the chosen base, a "0x" prefix
// always meaning hexadecimal, and a leading "+" or "-" counting from `current`. The
// result must lie in [0, size - 1] (only 0 in an empty document). On failure `error`
// holds the message to show.
bool ParseOffset(const QString& text, bool hex, qint64 current, qint64 size, qint64* out,
                 QString* error);

} // namespace HexText
