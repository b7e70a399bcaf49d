#include "compare/ByteCompare.h"

#include <QFile>

#include <cstring>
#include <vector>

namespace ByteCompare {

Result FirstDifference(const QString& left, const QString& right)
{
    Result result;
    QFile a(left), b(right);
    if (!a.open(QIODevice::ReadOnly)) {
        result.error = a.errorString();
        return result;
    }
    if (!b.open(QIODevice::ReadOnly)) {
        result.error = b.errorString();
        return result;
    }
    result.leftSize = a.size();
    result.rightSize = b.size();
    constexpr qint64 kChunk = 1 << 20;
    std::vector<char> bufA(kChunk), bufB(kChunk);
    qint64 offset = 0;
    for (;;) {
        const qint64 na = a.read(bufA.data(), kChunk);
        const qint64 nb = b.read(bufB.data(), kChunk);
        if (na < 0 || nb < 0) {
            result.error = na < 0 ? a.errorString() : b.errorString();
            return result;
        }
        const qint64 n = std::min(na, nb);
        if (std::memcmp(bufA.data(), bufB.data(), std::size_t(n)) != 0) {
            qint64 i = 0;
            while (bufA[std::size_t(i)] == bufB[std::size_t(i)])
                ++i;
            result.offset = offset + i;
            break;
        }
        if (na != nb) {
            result.offset = offset + n;
            break;
        }
        if (na == 0)
            break;
        offset += n;
    }
    result.ok = true;
    return result;
}

} // namespace ByteCompare
