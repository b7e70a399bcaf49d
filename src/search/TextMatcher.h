#pragma once

#include "hex/CByteSearcher.h"

#include <optional>
#include "SearchQuery.h"

#include <QRegularExpression>
#include <QString>
#include <cstddef>
#include <functional>
#include <string_view>
#include <vector>

// Where a match lies in a block of text; offsets count bytes from the block's start.
struct LineHit
{
    std::size_t lineStart = 0;
    std::size_t lineEnd = 0; // the line's "\n", or the block's end
    std::size_t matchStart = 0;
    std::size_t matchLength = 0;
    qint64 line = 0; // from 1
};

// Searches blocks of whole lines for one query. Each thread makes its own: it holds the
// expression and a little scratch space. Lines end at "\n"; a match never spans lines.
// Line numbers are counted only up to each match, so blocks without matches cost no more
// than the search itself.
class TextMatcher
{
public:
    // Return false to stop the search of this block.
    using Sink = std::function<bool(const LineHit&)>;

    explicit TextMatcher(const SearchQuery& query);

    // `block` holds whole lines, its first line being `firstLine`. `heldAsUtf8` says
    // whether the bytes are UTF-8 text (else "Ansi" bytes). Returns false when the sink
    // asked to stop.
    bool Search(std::string_view block, qint64 firstLine, const Sink& sink);

    // The editor's column of byte `offset` of a line: characters for text held as UTF-8,
    // bytes for "Ansi", tabs reaching the next multiple of `tabWidth`.
    static int EditorColumn(const char* line, std::size_t offset, bool heldAsUtf8, int tabWidth);
    // Whether [start, end) of `line` begins and ends on word boundaries: a change between
    // word characters, white space and punctuation, or the line's edge.
    static bool IsWholeWord(std::string_view line, std::size_t start, std::size_t end);
    static bool IsValidUtf8(const char* data, std::size_t length);
    // The offset of the first byte that does not begin a valid UTF-8 sequence, or npos.
    static std::size_t FirstInvalidUtf8(const char* data, std::size_t length);

    static constexpr std::size_t npos = std::size_t(-1);

private:
    bool SearchLiteral(std::string_view block, qint64 firstLine, const Sink& sink);
    // The first place at or after `from` where one of the pieces occurs, or npos.
    std::size_t NextCandidate(const char* data, std::size_t size, std::size_t from);
    bool SearchCandidateLines(std::string_view block, qint64 firstLine, const Sink& sink);
    bool SearchWholeBlock(std::string_view block, qint64 firstLine, const Sink& sink);
    // Searches the valid UTF-8 text of `whole` from `begin` in one piece.
    bool SearchValidText(std::string_view whole, std::size_t begin, qint64 firstLine, const Sink& sink);
    // The expression's match at or after `from`, preferring a non-empty match to an empty
    // one at the same place.
    QRegularExpressionMatch MatchFrom(const QString& text, qsizetype from) const;
    // Runs the expression over one line from byte `fromByte`; reports each match.
    bool MatchLine(std::string_view block, std::size_t lineStart, std::size_t lineEnd,
                   std::size_t fromByte, qint64 line, const Sink& sink);

    // The first occurrence at or after `from`, or npos.
    static std::size_t Find(const CByteSearcher& searcher, const char* data, std::size_t size,
                            std::size_t from);

    const SearchQuery& m_query;
    std::optional<CByteSearcher> m_searcher;
    // The pieces of text that lead an expression to the lines worth matching.
    std::vector<CByteSearcher> m_candidates;
    std::vector<std::size_t> m_nextCandidate;
    QRegularExpression m_expression;
    QRegularExpression m_nonEmpty;
    QString m_lineText;
};
