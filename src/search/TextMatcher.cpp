#include "TextMatcher.h"

#include <QStringDecoder>
#include <algorithm>
#include <cstdint>
#include <cstring>

namespace {

// Our subjects come from fromUtf8 or fromLatin1 and are valid UTF-16, so the check that
// would otherwise run over the whole subject at every call is skipped.
constexpr auto Unchecked = QRegularExpression::DontCheckSubjectStringMatchOption;

enum class CharClass { Word, Space, Punctuation };

inline CharClass ClassOf(unsigned char c)
{
    // Bytes of non-ASCII characters count as word characters, as in the editor.
    if (c >= 0x80 || c == '_' || (c >= '0' && c <= '9') || ((c | 0x20) >= 'a' && (c | 0x20) <= 'z'))
        return CharClass::Word;
    if (c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f' || c == '\v')
        return CharClass::Space;
    return CharClass::Punctuation;
}

const char* FindLineStart(const char* begin, const char* at)
{
    while (at > begin && at[-1] != '\n')
        --at;
    return at;
}

std::size_t CountLines(const char* begin, const char* end)
{
    // The plain loop vectorises; memchr per line would not pay on short lines.
    std::size_t count = 0;
    for (const char* p = begin; p < end; ++p)
        count += *p == '\n';
    return count;
}

// Maps UTF-16 offsets of a text made from bytes back to byte offsets, walking forward
// from the last answer; runs of ASCII go eight bytes at a time. Also keeps the line of
// the last answer, counting only the stretch walked since.
class OffsetWalker
{
public:
    OffsetWalker(const char* bytes, std::size_t length, bool latin1)
        : m_bytes(bytes), m_length(length), m_latin1(latin1) {}

    std::size_t ToByte(qsizetype unit)
    {
        if (unit < m_unit) {
            m_unit = 0;
            m_byte = 0;
        }
        if (m_latin1) {
            m_byte = std::min(std::size_t(unit), m_length);
            m_unit = qsizetype(m_byte);
        }
        while (m_unit < unit && m_byte < m_length) {
            if (unit - m_unit >= 8 && m_byte + 8 <= m_length) {
                std::uint64_t word;
                std::memcpy(&word, m_bytes + m_byte, 8);
                if (!(word & 0x8080808080808080ULL)) {
                    m_byte += 8;
                    m_unit += 8;
                    continue;
                }
            }
            const auto c = static_cast<unsigned char>(m_bytes[m_byte]);
            const std::size_t width = c < 0x80 ? 1 : c < 0xE0 ? 2 : c < 0xF0 ? 3 : 4;
            m_byte += width;
            m_unit += width == 4 ? 2 : 1;
        }
        return std::min(m_byte, m_length);
    }

    // Line number (from 0) and start of the line holding byte `at`; `at` must not go back.
    void LineOf(std::size_t at, std::size_t& line, std::size_t& lineStart)
    {
        if (at < m_counted) {
            m_counted = 0;
            m_lines = 0;
        }
        const char* start = FindLineStart(m_bytes + m_counted, m_bytes + at);
        m_lines += CountLines(m_bytes + m_counted, start);
        m_counted = std::size_t(start - m_bytes);
        line = m_lines;
        lineStart = m_counted;
    }

private:
    const char* m_bytes;
    std::size_t m_length;
    bool m_latin1;
    qsizetype m_unit = 0;
    std::size_t m_byte = 0;
    std::size_t m_counted = 0; // lines are counted up to this byte, a line start
    std::size_t m_lines = 0;
};

// The bytes of `units` UTF-16 units of text made from the bytes at `from`.
std::size_t ByteSpan(const char* bytes, std::size_t length, std::size_t from, qsizetype units,
                     bool latin1)
{
    if (latin1)
        return std::min(std::size_t(units), length - from);
    std::size_t b = from;
    while (units > 0 && b < length) {
        const auto c = static_cast<unsigned char>(bytes[b]);
        const std::size_t width = c < 0x80 ? 1 : c < 0xE0 ? 2 : c < 0xF0 ? 3 : 4;
        b += width;
        units -= width == 4 ? 2 : 1;
    }
    return std::min(b, length) - from;
}

// UTF-8 when the bytes are valid UTF-8, else byte for byte, so that offsets map back.
// One pass: the decoder tells whether it met anything invalid.
QString TextOf(const char* data, std::size_t length, bool& latin1)
{
    QStringDecoder decoder(QStringConverter::Utf8,
                           QStringConverter::Flag::Stateless | QStringConverter::Flag::ConvertInitialBom);
    QString text = decoder.decode(QByteArrayView(data, qsizetype(length)));
    latin1 = decoder.hasError();
    if (latin1)
        text = QString::fromLatin1(data, qsizetype(length));
    return text;
}

} // namespace

TextMatcher::TextMatcher(const SearchQuery& query)
    : m_query(query)
{
    if (query.UsesExpression()) {
        // A copy of its own per thread, so that no compiled code is shared.
        m_expression = QRegularExpression(query.Pattern(), query.PatternOptions());
        m_expression.optimize();
        // Tried where the expression matched empty, so that a longer alternative at the
        // same place ("|ab" at "ab") is found rather than skipped by the step past the
        // empty match. \G holds at the offset the match was asked to start from.
        m_nonEmpty = QRegularExpression(QStringLiteral("(?:") + query.Pattern() + QStringLiteral(")(?!\\G)"),
                                        query.PatternOptions());
        if (m_nonEmpty.isValid())
            m_nonEmpty.optimize();
        for (const std::string& piece : query.RequiredLiterals()) {
            m_candidates.emplace_back(QByteArray::fromStdString(piece), query.RequiredCaseSensitive());
            // A line that is not UTF-8 is read byte for byte, where "é" is the "é" that
            // UTF-8 spells in two bytes: look for that spelling too.
            const bool ascii = std::all_of(piece.begin(), piece.end(), [](char c) { return (c & 0x80) == 0; });
            const QString text = QString::fromStdString(piece);
            if (!ascii && std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() <= 0xFF; }))
                m_candidates.emplace_back(text.toLatin1(), query.RequiredCaseSensitive());
        }
    } else {
        m_searcher.emplace(QByteArray::fromStdString(query.Literal()), query.LiteralCaseSensitive());
    }
}

std::size_t TextMatcher::Find(const CByteSearcher& searcher, const char* data, std::size_t size,
                              std::size_t from)
{
    if (from >= size)
        return npos;
    const qint64 at = searcher.FindFirst(reinterpret_cast<const uchar*>(data) + from, qint64(size - from));
    return at < 0 ? npos : from + std::size_t(at);
}

bool TextMatcher::Search(std::string_view block, qint64 firstLine, const Sink& sink)
{
    if (!m_query.IsValid())
        return true;
    if (!m_query.UsesExpression())
        return SearchLiteral(block, firstLine, sink);
    if (!m_candidates.empty())
        return SearchCandidateLines(block, firstLine, sink);
    return SearchWholeBlock(block, firstLine, sink);
}

bool TextMatcher::SearchLiteral(std::string_view block, qint64 firstLine, const Sink& sink)
{
    const char* data = block.data();
    const std::size_t size = block.size();
    if (!m_searcher)
        return true;
    const std::size_t length = std::size_t(m_searcher->Length());
    std::size_t from = 0;
    std::size_t counted = 0; // lines are counted up to here
    qint64 line = firstLine;
    for (;;) {
        const std::size_t at = Find(*m_searcher, data, size, from);
        if (at == npos)
            return true;
        const std::size_t lineStart = std::size_t(FindLineStart(data + counted, data + at) - data);
        line += qint64(CountLines(data + counted, data + lineStart));
        counted = lineStart;
        const auto* eol = static_cast<const char*>(std::memchr(data + at, '\n', size - at));
        const std::size_t lineEnd = eol ? std::size_t(eol - data) : size;
        if (m_query.MatchWord()
            && !IsWholeWord(block.substr(lineStart, lineEnd - lineStart), at - lineStart,
                            at - lineStart + length)) {
            from = at + 1;
            continue;
        }
        if (!sink(LineHit{lineStart, lineEnd, at, length, line}))
            return false;
        from = at + length;
    }
}

std::size_t TextMatcher::NextCandidate(const char* data, std::size_t size, std::size_t from)
{
    // Each piece remembers where it next occurs, so each is looked for once per stretch.
    std::size_t best = npos;
    for (std::size_t i = 0; i < m_candidates.size(); ++i) {
        if (m_nextCandidate[i] != npos && m_nextCandidate[i] < from)
            m_nextCandidate[i] = Find(m_candidates[i], data, size, from);
        best = std::min(best, m_nextCandidate[i]);
    }
    return best;
}

bool TextMatcher::SearchCandidateLines(std::string_view block, qint64 firstLine, const Sink& sink)
{
    const char* data = block.data();
    const std::size_t size = block.size();
    m_nextCandidate.resize(m_candidates.size());
    for (std::size_t i = 0; i < m_candidates.size(); ++i)
        m_nextCandidate[i] = Find(m_candidates[i], data, size, 0);
    std::size_t from = 0;
    std::size_t counted = 0;
    qint64 line = firstLine;
    while (from < size) {
        const std::size_t at = NextCandidate(data, size, from);
        if (at == npos)
            return true;
        const std::size_t lineStart = std::size_t(FindLineStart(data + counted, data + at) - data);
        line += qint64(CountLines(data + counted, data + lineStart));
        counted = lineStart;
        const auto* eol = static_cast<const char*>(std::memchr(data + at, '\n', size - at));
        const std::size_t lineEnd = eol ? std::size_t(eol - data) : size;
        if (!MatchLine(block, lineStart, lineEnd, 0, line, sink))
            return false;
        from = lineEnd + 1;
    }
    return true;
}

QRegularExpressionMatch TextMatcher::MatchFrom(const QString& text, qsizetype from) const
{
    QRegularExpressionMatch match = m_expression.match(text, from, QRegularExpression::NormalMatch, Unchecked);
    if (match.hasMatch() && match.capturedLength() == 0 && m_nonEmpty.isValid()) {
        QRegularExpressionMatch longer =
            m_nonEmpty.match(text, match.capturedStart(), QRegularExpression::NormalMatch,
                             QRegularExpression::AnchorAtOffsetMatchOption | Unchecked);
        if (longer.hasMatch())
            return longer;
    }
    return match;
}

bool TextMatcher::MatchLine(std::string_view block, std::size_t lineStart, std::size_t lineEnd,
                            std::size_t fromByte, qint64 line, const Sink& sink)
{
    std::size_t textEnd = lineEnd;
    if (textEnd > lineStart && block[textEnd - 1] == '\r')
        --textEnd;
    const char* bytes = block.data() + lineStart;
    const std::size_t length = textEnd - lineStart;
    bool latin1 = false;
    m_lineText = TextOf(bytes, length, latin1);
    const std::string_view lineView(bytes, length);

    // The starting byte as a UTF-16 offset.
    qsizetype from = 0;
    if (fromByte > 0) {
        if (latin1) {
            from = qsizetype(fromByte);
        } else {
            for (std::size_t b = 0; b < fromByte && b < length; ++b) {
                const auto c = static_cast<unsigned char>(bytes[b]);
                if ((c & 0xC0) != 0x80)
                    from += c >= 0xF0 ? 2 : 1;
            }
        }
    }

    OffsetWalker walker(bytes, length, latin1);
    bool emptyReported = false;
    while (from <= m_lineText.size()) {
        const QRegularExpressionMatch match = MatchFrom(m_lineText, from);
        if (!match.hasMatch())
            break;
        const qsizetype start = match.capturedStart();
        const qsizetype end = match.capturedEnd();
        qsizetype next = end > start ? end : start + 1;
        if (end == start && next < m_lineText.size() && m_lineText[start].isHighSurrogate())
            ++next;
        const std::size_t byteStart = walker.ToByte(start);
        const std::size_t byteEnd = byteStart + ByteSpan(bytes, length, byteStart, end - start, latin1);
        bool report = true;
        if (start == end) {
            report = !emptyReported;
            emptyReported = true;
        }
        if (report && m_query.MatchWord() && !IsWholeWord(lineView, byteStart, byteEnd)) {
            report = false;
            next = start + 1;
        }
        if (report
            && !sink(LineHit{lineStart, lineEnd, lineStart + byteStart, byteEnd - byteStart, line}))
            return false;
        from = next;
    }
    return true;
}

bool TextMatcher::SearchWholeBlock(std::string_view block, qint64 firstLine, const Sink& sink)
{
    // A line that is not UTF-8 is read byte for byte, as the lines picked by the pieces
    // of text are. Decoding the whole block one way would make the answer for a line
    // depend on its neighbours: so valid stretches go whole, each bad line alone.
    std::size_t at = 0;
    qint64 line = firstLine;
    for (;;) {
        const std::size_t bad = FirstInvalidUtf8(block.data() + at, block.size() - at);
        if (bad == npos)
            return SearchValidText(block, at, line, sink);
        const std::size_t badAt = at + bad;
        const std::size_t lineStart = std::size_t(FindLineStart(block.data() + at, block.data() + badAt) - block.data());
        if (lineStart > at) {
            if (!SearchValidText(block.substr(0, lineStart), at, line, sink))
                return false;
            line += qint64(CountLines(block.data() + at, block.data() + lineStart));
        }
        const auto* eol = static_cast<const char*>(std::memchr(block.data() + badAt, '\n', block.size() - badAt));
        const std::size_t lineEnd = eol ? std::size_t(eol - block.data()) : block.size();
        if (!MatchLine(block, lineStart, lineEnd, 0, line, sink))
            return false;
        if (lineEnd + 1 >= block.size())
            return true;
        at = lineEnd + 1;
        ++line;
    }
}

bool TextMatcher::SearchValidText(std::string_view whole, std::size_t begin, qint64 firstLine, const Sink& outer)
{
    // Offsets in hits count from the start of the whole block.
    const std::string_view block = whole.substr(begin);
    const Sink shifted = [&](const LineHit& hit) {
        return outer(LineHit{hit.lineStart + begin, hit.lineEnd + begin, hit.matchStart + begin,
                             hit.matchLength, hit.line});
    };
    const Sink& sink = begin == 0 ? outer : shifted;
    const char* data = block.data();
    const std::size_t size = block.size();
    bool latin1 = false;
    const QString text = TextOf(data, size, latin1);
    OffsetWalker walker(data, size, latin1);
    qint64 emptyReportedLine = 0;
    qsizetype from = 0;
    while (from <= text.size()) {
        const QRegularExpressionMatch match = MatchFrom(text, from);
        if (!match.hasMatch())
            return true;
        const qsizetype start = match.capturedStart();
        const qsizetype end = match.capturedEnd();
        // Nothing follows a final line end: the next block starts the next line, and an
        // empty match there ("$") would report that line twice.
        if (start == text.size() && start > 0 && text[start - 1] == QLatin1Char('\n'))
            return true;
        const std::size_t byteStart = walker.ToByte(start);
        std::size_t lineIndex = 0;
        std::size_t lineStart = 0;
        walker.LineOf(byteStart, lineIndex, lineStart);
        const qint64 line = firstLine + qint64(lineIndex);
        const auto* eol = static_cast<const char*>(std::memchr(data + byteStart, '\n', size - byteStart));
        const std::size_t lineEnd = eol ? std::size_t(eol - data) : size;
        const qsizetype lineEndUnit = text.indexOf(QLatin1Char('\n'), start);
        const std::size_t byteEnd = byteStart + ByteSpan(data, size, byteStart, end - start, latin1);
        // The CR of a CRLF line end belongs to the line end, as it does for lines matched
        // one by one.
        const bool reachesReturn = lineEnd > lineStart && data[lineEnd - 1] == '\r' && byteEnd >= lineEnd;

        if ((lineEndUnit >= 0 && lineEndUnit < end) || reachesReturn) {
            // The match ran over a line end: match that line on its own instead.
            if (!MatchLine(block, lineStart, lineEnd, byteStart - lineStart, line, sink))
                return false;
            if (lineEndUnit < 0)
                return true;
            from = lineEndUnit + 1;
            continue;
        }
        qsizetype next = end > start ? end : start + 1;
        bool report = true;
        if (start == end) {
            if (start < text.size() && text[start].isHighSurrogate())
                ++next;
            report = emptyReportedLine != line;
            emptyReportedLine = line;
        }
        if (report && m_query.MatchWord()) {
            std::size_t textEnd = lineEnd;
            if (textEnd > lineStart && data[textEnd - 1] == '\r')
                --textEnd;
            if (!IsWholeWord(block.substr(lineStart, textEnd - lineStart), byteStart - lineStart,
                             byteEnd - lineStart)) {
                report = false;
                next = start + 1;
            }
        }
        if (report && !sink(LineHit{lineStart, lineEnd, byteStart, byteEnd - byteStart, line}))
            return false;
        from = next;
    }
    return true;
}

int TextMatcher::EditorColumn(const char* line, std::size_t offset, bool heldAsUtf8, int tabWidth)
{
    if (tabWidth < 1)
        tabWidth = 1;
    int column = 0;
    for (std::size_t i = 0; i < offset; ++i) {
        const auto c = static_cast<unsigned char>(line[i]);
        if (c == '\t')
            column = (column / tabWidth + 1) * tabWidth;
        else if (!heldAsUtf8 || (c & 0xC0) != 0x80)
            ++column;
    }
    return column;
}

bool TextMatcher::IsWholeWord(std::string_view line, std::size_t start, std::size_t end)
{
    auto boundary = [&line](std::size_t at) {
        if (at == 0 || at >= line.size())
            return true;
        return ClassOf(static_cast<unsigned char>(line[at - 1]))
            != ClassOf(static_cast<unsigned char>(line[at]));
    };
    return boundary(start) && boundary(end);
}

bool TextMatcher::IsValidUtf8(const char* data, std::size_t length)
{
    return FirstInvalidUtf8(data, length) == npos;
}

std::size_t TextMatcher::FirstInvalidUtf8(const char* data, std::size_t length)
{
    const auto* s = reinterpret_cast<const unsigned char*>(data);
    std::size_t i = 0;
    while (i < length) {
        // Runs of ASCII, eight bytes at a time.
        while (i + 8 <= length) {
            std::uint64_t word;
            std::memcpy(&word, s + i, 8);
            if (word & 0x8080808080808080ULL)
                break;
            i += 8;
        }
        if (i >= length)
            break;
        const unsigned char c = s[i];
        if (c < 0x80) {
            ++i;
            continue;
        }
        std::size_t n;
        if (c >= 0xC2 && c <= 0xDF) n = 2;
        else if (c >= 0xE0 && c <= 0xEF) n = 3;
        else if (c >= 0xF0 && c <= 0xF4) n = 4;
        else return i;
        if (i + n > length)
            return i;
        for (std::size_t k = 1; k < n; ++k) {
            if ((s[i + k] & 0xC0) != 0x80)
                return i;
        }
        if (c == 0xE0 && s[i + 1] < 0xA0) return i;
        if (c == 0xED && s[i + 1] > 0x9F) return i; // surrogates
        if (c == 0xF0 && s[i + 1] < 0x90) return i;
        if (c == 0xF4 && s[i + 1] > 0x8F) return i;
        i += n;
    }
    return npos;
}
