#include "TextEncoding.h"

#include <QCoreApplication>

namespace TextEncoding {

QByteArray Mark(int code)
{
    switch (code) {
    case Utf8: return QByteArray("\xEF\xBB\xBF", 3);
    case Utf16LE: return QByteArray("\xFF\xFE", 2);
    case Utf16BE: return QByteArray("\xFE\xFF", 2);
    case Utf32LE: return QByteArray("\xFF\xFE\x00\x00", 4);
    case Utf32BE: return QByteArray("\x00\x00\xFE\xFF", 4);
    default: return {};
    }
}

int MarkLength(int code)
{
    return int(Mark(code).size());
}

QString DisplayName(int code)
{
    switch (code) {
    case Utf8: return QStringLiteral("UTF-8");
    case Utf16LE: return QStringLiteral("Unicode");
    case Utf16BE: return QStringLiteral("Unicode (Big Endian)");
    case Ansi: return QStringLiteral("Ansi");
    case Auto: return QStringLiteral("Auto");
    case Utf32LE: return QStringLiteral("UTF-32");
    case Utf32BE: return QStringLiteral("UTF-32 (Big Endian)");
    case Scsu: return QStringLiteral("SCSU");
    case Bocu1: return QStringLiteral("BOCU-1");
    case Utf7: return QStringLiteral("UTF-7");
    case UtfEbcdic: return QStringLiteral("UTF-EBCDIC");
    default: return QString();
    }
}

} // namespace TextEncoding
