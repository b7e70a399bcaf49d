#pragma once

#include "SearchQuery.h"
#include "TextMatcher.h"

#include <QtGlobal>
#include <functional>
#include <memory>
#include <string_view>
#include <deque>

// Finds every match of a query in a text too large to search at once. Each Step searches
// the next stretch of whole lines, so the caller can give its thread back to the user
// between steps. Matches come in text order; empty matches are left out, since there is
// nothing of them to show or select.
class MatchScanner
{
public:
    struct Match
    {
        qint64 start = 0;
        qint64 length = 0;
    };
    // Bytes [from, to) of the text; the view must stay valid until the next call.
    using RangeReader = std::function<std::string_view(qint64 from, qint64 to)>;

    MatchScanner() = default;
    MatchScanner(const MatchScanner&) = delete;
    MatchScanner& operator=(const MatchScanner&) = delete;

    // Forgets what was found and starts over with `query` on a text of `textLength` bytes.
    // An invalid query or an empty text is done at once with no matches.
    void Start(const SearchQuery& query, qint64 textLength);
    // Forgets everything: not started, no matches (the text changed under the scan).
    void Reset();
    // Searches about `bytes` more bytes, rounded up to the end of a line. Returns Done().
    bool Step(const RangeReader& read, qint64 bytes);
    bool Done() const { return m_scanned >= m_length; }
    bool IsStarted() const { return m_matcher != nullptr; }
    // Every byte below this has been searched.
    qint64 ScannedTo() const { return m_scanned; }

    const std::deque<Match>& Matches() const { return m_matches; }
    // The index of the first match starting at or after `position`, or -1 when none is
    // known (yet).
    qint64 FirstFrom(qint64 position) const;
    // The index of the last match starting before `position`, or -1.
    qint64 LastBefore(qint64 position) const;

private:
    std::unique_ptr<SearchQuery> m_query;
    std::unique_ptr<TextMatcher> m_matcher; // refers to *m_query
    std::deque<Match> m_matches; // grows without copying what it holds
    qint64 m_length = 0;
    qint64 m_scanned = 0;
};
