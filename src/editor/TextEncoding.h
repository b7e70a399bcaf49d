#pragma once

#include <QString>

// Encoding codes of text documents. 0 to 4 are also the rows of the file dialog's
// encoding box; 5 to 10 only come out of detection.
namespace TextEncoding {

enum Code {
    Utf8 = 0,
    Utf16LE = 1,
    Utf16BE = 2,
    Ansi = 3,
    Auto = 4,
    Utf32LE = 5,
    Utf32BE = 6,
    Scsu = 7,
    Bocu1 = 8,
    Utf7 = 9,
    UtfEbcdic = 10,
};

// The mark written before text in this encoding; empty for codes without one.
QByteArray Mark(int code);
// Mark length used when the user picks the encoding by hand.
int MarkLength(int code);
// Forms we can read but do not write: a save in them could not keep the file intact.
inline bool IsReadOnlyForm(int code) { return code >= Scsu && code <= UtfEbcdic; }
// A compare pane holds text of this encoding as UTF-8; "Ansi" and not-yet-known text it
// keeps as the file's bytes.
inline bool HeldAsUtf8(int code) { return code != Ansi && code != Auto; }
QString DisplayName(int code);

} // namespace TextEncoding
