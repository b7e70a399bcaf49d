#include "fileexplorer/FileSysOrder.h"

#include <algorithm>

namespace FileSysOrder {

namespace {

inline bool IsDigit(QChar c)
{
    return c.unicode() >= '0' && c.unicode() <= '9';
}

inline char16_t Fold(QChar c)
{
    const char16_t u = c.unicode();
    if (u < 128)
        return (u >= 'A' && u <= 'Z') ? char16_t(u + 32) : u;
    return c.toCaseFolded().unicode();
}

} // namespace

int CompareNames(const QString& a, const QString& b)
{
    const QChar* pa = a.constData();
    const QChar* pb = b.constData();
    const qsizetype na = a.size();
    const qsizetype nb = b.size();
    qsizetype i = 0;
    qsizetype j = 0;
    while (i < na && j < nb) {
        if (IsDigit(pa[i]) && IsDigit(pb[j])) {
            // Compare the numbers by value: skip leading zeros, then the longer run
            // is larger, then digit by digit.
            qsizetype si = i;
            qsizetype sj = j;
            while (si < na && pa[si] == QLatin1Char('0'))
                ++si;
            while (sj < nb && pb[sj] == QLatin1Char('0'))
                ++sj;
            qsizetype ei = si;
            qsizetype ej = sj;
            while (ei < na && IsDigit(pa[ei]))
                ++ei;
            while (ej < nb && IsDigit(pb[ej]))
                ++ej;
            if (ei - si != ej - sj)
                return (ei - si) < (ej - sj) ? -1 : 1;
            for (qsizetype k = 0; k < ei - si; ++k) {
                if (pa[si + k] != pb[sj + k])
                    return pa[si + k].unicode() < pb[sj + k].unicode() ? -1 : 1;
            }
            i = ei;
            j = ej;
            continue;
        }
        const char16_t ca = Fold(pa[i]);
        const char16_t cb = Fold(pb[j]);
        if (ca != cb)
            return ca < cb ? -1 : 1;
        ++i;
        ++j;
    }
    if (i < na)
        return 1;
    if (j < nb)
        return -1;
    return QString::compare(a, b, Qt::CaseSensitive);
}

QString SortKey(const QString& name)
{
    QString key;
    key.reserve(name.size() + 4);
    const QChar* p = name.constData();
    const qsizetype n = name.size();
    for (qsizetype i = 0; i < n;) {
        if (IsDigit(p[i])) {
            qsizetype start = i;
            while (start < n && p[start] == QLatin1Char('0'))
                ++start;
            qsizetype end = start;
            while (end < n && IsDigit(p[end]))
                ++end;
            // Every run starts with '0', so against any other character it compares
            // as a digit would; then its length, then its digits.
            key.append(QLatin1Char('0'));
            key.append(QChar(char16_t(0x20 + std::min<qsizetype>(end - start, 0xF000))));
            key.append(p + start, end - start);
            i = end;
            continue;
        }
        key.append(QChar(Fold(p[i])));
        ++i;
    }
    return key;
}

bool Less(bool folderA, const QString& a, bool folderB, const QString& b)
{
    if (folderA != folderB)
        return folderA;
    return CompareNames(a, b) < 0;
}

} // namespace FileSysOrder
