#include "CByteSearcher.h"

#include <algorithm>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#define MORVANE_WIDE_SEARCH 1
#endif

CByteSearcher::CByteSearcher(const QByteArray& pattern, bool matchCase, Method method)
    : m_pattern(pattern)
    , m_matchCase(matchCase)
    , m_method(method)
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
    if (m_method == Fastest) {
#if defined(__GLIBC__)
        if (m_matchCase) {
            const void* hit = ::memmem(data, size_t(length), m_pattern.constData(), size_t(m));
            return hit ? static_cast<const uchar*>(hit) - data : -1;
        }
#endif
#ifdef MORVANE_WIDE_SEARCH
        return WideFirst(data, length);
#endif
    }
    return HorspoolFirst(data, length);
}

qint64 CByteSearcher::FindLast(const uchar* data, qint64 length) const
{
    const qint64 m = m_pattern.size();
    if (m == 0 || length < m)
        return -1;
#ifdef MORVANE_WIDE_SEARCH
    if (m_method == Fastest)
        return WideLast(data, length);
#endif
    return HorspoolLast(data, length);
}

qint64 CByteSearcher::HorspoolFirst(const uchar* data, qint64 length) const
{
    const qint64 m = m_pattern.size();
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

qint64 CByteSearcher::HorspoolLast(const uchar* data, qint64 length) const
{
    const qint64 m = m_pattern.size();
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

#ifdef MORVANE_WIDE_SEARCH

namespace {

// Upper-case ASCII letters of sixteen bytes to lower case (signed compares leave the
// bytes from 0x80 up alone).
inline __m128i Fold(__m128i v)
{
    const __m128i upper = _mm_and_si128(_mm_cmpgt_epi8(v, _mm_set1_epi8('A' - 1)),
                                        _mm_cmplt_epi8(v, _mm_set1_epi8('Z' + 1)));
    return _mm_add_epi8(v, _mm_and_si128(upper, _mm_set1_epi8(0x20)));
}

// Bit i set when position i of the block may start a match: its byte equals the
// pattern's first and the byte m - 1 further on equals the pattern's last.
inline unsigned Candidates(const uchar* at, qint64 m, __m128i first, __m128i last, bool fold)
{
    __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
    __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at + m - 1));
    if (fold) {
        a = Fold(a);
        b = Fold(b);
    }
    return unsigned(_mm_movemask_epi8(
        _mm_and_si128(_mm_cmpeq_epi8(a, first), _mm_cmpeq_epi8(b, last))));
}

} // namespace

qint64 CByteSearcher::WideFirst(const uchar* data, qint64 length) const
{
    const qint64 m = m_pattern.size();
    const bool fold = !m_matchCase;
    const __m128i first = _mm_set1_epi8(m_pattern[0]);
    const __m128i last = _mm_set1_epi8(m_pattern[m - 1]);
    qint64 j = 0;
    // A block needs its sixteen bytes and the sixteen m - 1 further on.
    for (; j + m - 1 + 16 <= length; j += 16) {
        for (unsigned mask = Candidates(data + j, m, first, last, fold); mask; mask &= mask - 1) {
            const qint64 at = j + __builtin_ctz(mask);
            if (MatchesAt(data + at))
                return at;
        }
    }
    for (; j <= length - m; ++j) {
        if (MatchesAt(data + j))
            return j;
    }
    return -1;
}

qint64 CByteSearcher::WideLast(const uchar* data, qint64 length) const
{
    const qint64 m = m_pattern.size();
    const bool fold = !m_matchCase;
    const __m128i first = _mm_set1_epi8(m_pattern[0]);
    const __m128i last = _mm_set1_epi8(m_pattern[m - 1]);
    // Blocks of sixteen start positions, from the last possible start down.
    qint64 j = length - m - 15;
    for (; j >= 0; j -= 16) {
        for (unsigned mask = Candidates(data + j, m, first, last, fold); mask;) {
            const int bit = 31 - __builtin_clz(mask);
            if (MatchesAt(data + j + bit))
                return j + bit;
            mask &= ~(1u << bit);
        }
    }
    for (qint64 i = std::min(j + 15, length - m); i >= 0; --i) {
        if (MatchesAt(data + i))
            return i;
    }
    return -1;
}

#endif
