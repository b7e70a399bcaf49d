#include "MatchScanner.h"

#include <algorithm>

void MatchScanner::Start(const SearchQuery& query, qint64 textLength)
{
    m_matcher.reset();
    m_query = std::make_unique<SearchQuery>(query);
    m_matcher = std::make_unique<TextMatcher>(*m_query);
    m_matches.clear();
    m_length = std::max<qint64>(0, textLength);
    m_scanned = query.IsValid() ? 0 : m_length;
}

void MatchScanner::Reset()
{
    m_matcher.reset();
    m_query.reset();
    m_matches.clear();
    m_length = m_scanned = 0;
}

bool MatchScanner::Step(const RangeReader& read, qint64 bytes)
{
    if (!m_matcher || Done())
        return true;
    // The matcher wants whole lines; a line longer than the step widens the step.
    qint64 want = std::max<qint64>(bytes, 1);
    std::string_view block;
    for (;;) {
        const qint64 to = std::min(m_length, m_scanned + want);
        block = read(m_scanned, to);
        if (qint64(block.size()) != to - m_scanned) {
            // The text is shorter than we were told: nothing more to search.
            m_length = m_scanned;
            return true;
        }
        if (to == m_length)
            break;
        const std::size_t lastEnd = block.rfind('\n');
        if (lastEnd != std::string_view::npos) {
            block = block.substr(0, lastEnd + 1);
            break;
        }
        want *= 2;
    }
    const qint64 base = m_scanned;
    m_matcher->Search(block, 1, [this, base](const LineHit& hit) {
        if (hit.matchLength > 0)
            m_matches.push_back({base + qint64(hit.matchStart), qint64(hit.matchLength)});
        return true;
    });
    m_scanned += qint64(block.size());
    return Done();
}

qint64 MatchScanner::FirstFrom(qint64 position) const
{
    const auto it = std::lower_bound(m_matches.begin(), m_matches.end(), position,
                                     [](const Match& m, qint64 p) { return m.start < p; });
    return it == m_matches.end() ? -1 : qint64(it - m_matches.begin());
}

qint64 MatchScanner::LastBefore(qint64 position) const
{
    const qint64 first = FirstFrom(position);
    const qint64 index = (first < 0 ? qint64(m_matches.size()) : first) - 1;
    return index;
}
