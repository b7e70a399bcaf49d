#include "MemoryGuard.h"

#include "TextEncoding.h"

#include <QFile>
#include <QList>

namespace MemoryGuard {

qint64 EstimateTextLoad(qint64 fileSize, int encoding, bool styled)
{
    qint64 utf8 = fileSize;
    if (encoding == TextEncoding::Utf16LE || encoding == TextEncoding::Utf16BE)
        utf8 = fileSize / 2 * 3; // a UTF-16 unit becomes up to three UTF-8 bytes
    else if (!TextEncoding::HeldAsUtf8(encoding))
        utf8 = fileSize * 2; // a code page's upper half becomes two bytes
    // Text and styles side by side, plus the line index and the loader's buffers.
    return utf8 * (styled ? 2 : 1) + utf8 / 8 + (16 << 20);
}

qint64 ParseMemAvailable(const QByteArray& meminfo)
{
    for (const QByteArray& line : meminfo.split('\n')) {
        if (!line.startsWith("MemAvailable:"))
            continue;
        const QList<QByteArray> parts = line.mid(13).simplified().split(' ');
        bool ok = false;
        const qint64 value = parts.value(0).toLongLong(&ok);
        if (!ok || value < 0)
            return -1;
        return parts.value(1) == "kB" ? value * 1024 : value;
    }
    return -1;
}

qint64 AvailableMemory()
{
    const QByteArray fake = qgetenv("MORVANE_MEMAVAILABLE");
    if (!fake.isEmpty()) {
        bool ok = false;
        const qint64 value = fake.toLongLong(&ok);
        return ok ? value : -1;
    }
    QFile file(QStringLiteral("/proc/meminfo"));
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    return ParseMemAvailable(file.readAll());
}

bool Fits(qint64 needed, qint64 available)
{
    return available < 0 || needed <= available;
}

} // namespace MemoryGuard
