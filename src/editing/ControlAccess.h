#pragma once

#include <Qsci/qsciscintillabase.h>

// Small helpers the editing features share for talking to the control's bytes.
namespace ControlAccess {

inline long Send(QsciScintillaBase& c, unsigned int msg, unsigned long w = 0, long l = 0)
{
    return c.SendScintilla(msg, w, l);
}

// A byte that may be part of a word: letters, digits, underscore, and every byte of a
// multi-byte character, so that words in any script are whole.
inline bool IsWordByte(char ch)
{
    const auto b = static_cast<unsigned char>(ch);
    return b == '_' || (b >= '0' && b <= '9') || ((b | 0x20) >= 'a' && (b | 0x20) <= 'z') || b >= 0x80;
}

} // namespace ControlAccess
