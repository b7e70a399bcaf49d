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
    const auto* p = reinterpret_cast<const uchar*>(m_pattern.constData());
    const uchar lastByte = p[m - 1];
    const qint64 last = length - m;
    qint64 j = 0;
    while (j <= last) {
        const uchar c = data[j + m - 1];
        // The byte that decides the shift is checked first: most windows end there.
        if (m_fold[c] == lastByte && MatchesAt(data + j))
            return j;
        j += m_forwardSkip[c];
    }
    return -1;
}

qint64 CByteSearcher::FindLast(const uchar* data, qint64 length) const
{
    const qint64 m = m_pattern.size();
    if (m == 0 || length < m)
        return -1;
    const uchar firstByte = uchar(m_pattern[0]);
    qint64 j = length - m;
    while (j >= 0) {
        const uchar c = data[j];
        if (m_fold[c] == firstByte && MatchesAt(data + j))
            return j;
        j -= m_backwardSkip[c];
    }
    return -1;
}
