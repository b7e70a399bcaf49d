// The find-in-files matcher against a naive oracle.
// Plain text: every match a byte-by-byte scan of each line finds, at the same place and
// on the same line number, with whole-word and case rules applied by hand.
// Expressions over UTF-8 text: the lines with a non-empty match are those where the
// expression, run over each line alone, finds one; so the pieces of text that pick
// candidate lines must never hide a line that matches.
#include "FuzzInput.h"

#include "search/SearchQuery.h"
#include "search/TextMatcher.h"

#include <QRegularExpression>
#include <QString>

#include <cstdio>
#include <set>
#include <string>
#include <tuple>
#include <vector>

namespace {

struct Hit
{
    qint64 line;
    std::size_t start;
    std::size_t length;
    auto operator<=>(const Hit&) const = default;
};

std::vector<std::string_view> Lines(std::string_view block)
{
    std::vector<std::string_view> lines;
    std::size_t at = 0;
    for (;;) {
        const std::size_t eol = block.find('\n', at);
        lines.push_back(block.substr(at, eol == std::string_view::npos ? std::string_view::npos : eol - at));
        if (eol == std::string_view::npos)
            return lines;
        at = eol + 1;
    }
}

int Kind(unsigned char c)
{
    if (c >= 0x80 || c == '_' || std::isalnum(c))
        return 0;
    if (c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f' || c == '\v')
        return 1;
    return 2;
}

bool Boundary(std::string_view line, std::size_t at)
{
    return at == 0 || at >= line.size() || Kind(line[at - 1]) != Kind(line[at]);
}

unsigned char Fold(unsigned char c)
{
    return c >= 'A' && c <= 'Z' ? c + 32 : c;
}

std::vector<Hit> NaiveLiteral(std::string_view block, const std::string& needle, bool matchCase,
                              bool word)
{
    std::vector<Hit> hits;
    qint64 number = 1;
    std::size_t lineStart = 0;
    for (std::string_view line : Lines(block)) {
        std::size_t at = 0;
        while (needle.size() <= line.size() && at + needle.size() <= line.size()) {
            bool same = true;
            for (std::size_t k = 0; k < needle.size() && same; ++k) {
                const auto a = static_cast<unsigned char>(line[at + k]);
                const auto b = static_cast<unsigned char>(needle[k]);
                same = matchCase ? a == b : Fold(a) == Fold(b);
            }
            if (same && (!word || (Boundary(line, at) && Boundary(line, at + needle.size())))) {
                hits.push_back({number, lineStart + at, needle.size()});
                at += needle.size();
            } else {
                ++at;
            }
        }
        lineStart += line.size() + 1;
        ++number;
    }
    return hits;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzInput in(data, size);
    const bool matchCase = in.Flag();
    const bool word = in.Flag();
    const bool expression = in.Flag();
    std::string findText = in.Bytes(24);
    std::string block = in.Rest();
    // A find text is one line of the dialog.
    std::erase(findText, '\n');
    std::erase(findText, '\r');

    const SearchQuery query(QString::fromUtf8(findText.data(), qsizetype(findText.size())), matchCase,
                            word, expression);
    if (!query.IsValid())
        return 0;
    TextMatcher matcher(query);
    std::vector<Hit> found;
    matcher.Search(block, 1, [&](const LineHit& hit) {
        FUZZ_CHECK(hit.lineStart <= hit.matchStart && hit.matchStart + hit.matchLength <= hit.lineEnd);
        FUZZ_CHECK(hit.lineEnd == block.size() || block[hit.lineEnd] == '\n');
        found.push_back({hit.line, hit.matchStart, hit.matchLength});
        return true;
    });

    if (!query.UsesExpression()) {
        // The literal is what the dialog's text becomes: compare against that.
        const bool sensitive = query.LiteralCaseSensitive();
        FUZZ_CHECK(found == NaiveLiteral(block, query.Literal(), sensitive, word));
        return 0;
    }
    // Text that is not UTF-8 is searched as single bytes, and a block mixing both has no
    // one right reading: the oracle speaks for UTF-8 text only.
    if (word || !TextMatcher::IsValidUtf8(block.data(), block.size()))
        return 0;

    // Lines with a non-empty match, by running the expression over each line alone.
    const QRegularExpression re(query.Pattern(), query.PatternOptions());
    std::set<qint64> expected;
    qint64 number = 1;
    for (std::string_view line : Lines(block)) {
        if (!line.empty() && line.back() == '\r')
            line.remove_suffix(1);
        // After an empty match the search moves on by one character, as the matcher
        // does; it does not look for a longer match at the same place (which a pattern
        // with an empty alternative, "|ab", would need).
        const QString subject = QString::fromUtf8(line.data(), qsizetype(line.size()));
        for (qsizetype from = 0; from <= subject.size();) {
            const QRegularExpressionMatch m = re.match(subject, from);
            if (!m.hasMatch())
                break;
            if (m.capturedLength() > 0) {
                expected.insert(number);
                break;
            }
            from = m.capturedStart() + 1;
            if (from < subject.size() && subject[from].isLowSurrogate())
                ++from;
        }
        ++number;
    }
    std::set<qint64> reported;
    for (const Hit& hit : found)
        if (hit.length > 0)
            reported.insert(hit.line);
    if (reported != expected) {
        std::fprintf(stderr, "pattern \"%s\"\nmatcher found lines:", query.Pattern().toUtf8().constData());
        for (qint64 line : reported)
            std::fprintf(stderr, " %lld", static_cast<long long>(line));
        std::fprintf(stderr, "\nexpected lines:");
        for (qint64 line : expected)
            std::fprintf(stderr, " %lld", static_cast<long long>(line));
        std::fprintf(stderr, "\n");
    }
    FUZZ_CHECK(reported == expected);
    return 0;
}
