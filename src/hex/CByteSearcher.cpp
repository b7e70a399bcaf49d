#include "CByteSearcher.h"

#include <cstring>

CByteSearcher::CByteSearcher(const QByteArray& pattern, bool matchCase)
    : m_pattern(pattern)
    , m_matchCase(matchCase)
{
    for (int c = 0; c < 256; ++c)
        m_fold[c] = (!matchCase && c >= 'A' && c <= 'Z') ? uchar(c - 'A' + 'a') : uchar(c);
    for (char& c : m_pattern)
        c = char(m_fold[uchar(c)]);

    const qint64 m = m_pattern.size();
    const auto* p = reinterpret_cast<const uchar*>(m_pattern.constData());
    m_forwardSkip.fill(m);
    m_backwardSkip.fill(m);
    // Forward: the byte under the window's last position decides the shift.
    for (qint64 i = 0; i + 1 < m; ++i)
        m_forwardSkip[p[i]] = m - 1 - i;
    // Backward: the byte under the window's first position decides it.
    for (qint64 i = m - 1; i >= 1; --i)
        m_backwardSkip[p[i]] = i;
    if (!matchCase) {
        for (int c = 'A'; c <= 'Z'; ++c) {
            m_forwardSkip[c] = m_forwardSkip[c - 'A' + 'a'];
            m_backwardSkip[c] = m_backwardSkip[c - 'A' + 'a'];
        }
    }
    m_forwardScan = m_forwardSkip;
    m_backwardScan = m_backwardSkip;
    if (m > 0) {
        for (int c = 0; c < 256; ++c) {
            if (m_fold[c] == p[m - 1])
                m_forwardScan[c] = 0;
            if (m_fold[c] == p[0])
                m_backwardScan[c] = 0;
        }
    }
}

bool CByteSearcher::MatchesAt(const uchar* at) const
{
    const auto* p = reinterpret_cast<const uchar*>(m_pattern.constData());
    const qint64 m = m_pattern.size();
    if (m_matchCase)
        return std::memcmp(at, p, size_t(m)) == 0;
    for (qint64 i = 0; i < m; ++i) {
        if (m_fold[at[i]] != p[i])
            return false;
    }
    return true;
}

qint64 CByteSearcher::FindFirst(const uchar* data, qint64 length) const
{
    const qint64 m = m_pattern.size();
    if (m == 0 || length < m)
        return -1;
#if defined(__GLIBC__)
    if (m_matchCase) {
        const void* hit = ::memmem(data, size_t(length), m_pattern.constData(), size_t(m));
        return hit ? static_cast<const uchar*>(hit) - data : -1;
    }
#endif
    const qint64 last = length - m;
    const qint64 safe = last - 3 * m; // four shifts of at most m stay in range
    qint64 j = 0;
    for (;;) {
        qint64 k = 1;
        while (j <= safe) {
            if ((k = m_forwardScan[data[j + m - 1]]) == 0)
                break;
            j += k;
            if ((k = m_forwardScan[data[j + m - 1]]) == 0)
                break;
            j += k;
            if ((k = m_forwardScan[data[j + m - 1]]) == 0)
                break;
            j += k;
            if ((k = m_forwardScan[data[j + m - 1]]) == 0)
                break;
            j += k;
        }
        while (k != 0 && j <= last) {
            if ((k = m_forwardScan[data[j + m - 1]]) != 0)
                j += k;
        }
        if (j > last)
            return -1;
        if (MatchesAt(data + j))
            return j;
        j += m_forwardSkip[data[j + m - 1]];
    }
}

qint64 CByteSearcher::FindLast(const uchar* data, qint64 length) const
{
    const qint64 m = m_pattern.size();
    if (m == 0 || length < m)
        return -1;
    const qint64 safe = 3 * m;
    qint64 j = length - m;
    for (;;) {
        qint64 k = 1;
        while (j >= safe) {
            if ((k = m_backwardScan[data[j]]) == 0)
                break;
            j -= k;
            if ((k = m_backwardScan[data[j]]) == 0)
                break;
            j -= k;
            if ((k = m_backwardScan[data[j]]) == 0)
                break;
            j -= k;
            if ((k = m_backwardScan[data[j]]) == 0)
                break;
            j -= k;
        }
        while (k != 0 && j >= 0) {
            if ((k = m_backwardScan[data[j]]) != 0)
                j -= k;
        }
        if (j < 0)
            return -1;
        if (MatchesAt(data + j))
            return j;
        j -= m_backwardSkip[data[j]];
    }
}
