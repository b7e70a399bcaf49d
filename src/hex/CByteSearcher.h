#pragma once

#include <QByteArray>
#include <array>

// Finds one byte string in a block of memory, forward or backward, optionally ignoring
// the case of ASCII letters. Exact forward search uses the C library's memmem, which is
// as fast as anything we could write. The other three ways compare the first and last
// byte of the pattern at sixteen positions at once where SSE2 is available, and use
// Horspool's skip tables elsewhere.
class CByteSearcher
{
public:
    enum Method {
        Fastest,  // what this machine does best
        Portable, // Horspool only; for tests of the code other machines run
    };

    CByteSearcher(const QByteArray& pattern, bool matchCase, Method method = Fastest);

    qint64 Length() const { return m_pattern.size(); }
    bool IsEmpty() const { return m_pattern.isEmpty(); }

    // Index of the first (last) occurrence lying wholly in [data, data + length), or -1.
    qint64 FindFirst(const uchar* data, qint64 length) const;
    qint64 FindLast(const uchar* data, qint64 length) const;

private:
    bool MatchesAt(const uchar* at) const;
    qint64 HorspoolFirst(const uchar* data, qint64 length) const;
    qint64 HorspoolLast(const uchar* data, qint64 length) const;
    qint64 WideFirst(const uchar* data, qint64 length) const;
    qint64 WideLast(const uchar* data, qint64 length) const;

    QByteArray m_pattern; // folded to lower case when case is ignored
    bool m_matchCase;
    Method m_method;
    std::array<uchar, 256> m_fold{};
    std::array<qint64, 256> m_forwardSkip{};
    std::array<qint64, 256> m_backwardSkip{};
    // The same shifts with 0 for bytes that may end (start) a match: the scanning loop
    // runs on these alone and stops only where a comparison is worth making.
    std::array<qint64, 256> m_forwardScan{};
    std::array<qint64, 256> m_backwardScan{};
};
