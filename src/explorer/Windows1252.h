#pragma once

#include <QByteArray>
#include <QString>

// The Windows-1252 code page, which the built-in reference lists are written in. Bytes
// the code page leaves undefined come back as the same code point, so nothing is lost.
namespace Windows1252 {

QChar ToUnicode(unsigned char byte);
QString Decode(const QByteArray& bytes);

} // namespace Windows1252
