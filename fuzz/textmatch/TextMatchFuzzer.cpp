// The find-in-files matcher against a naive oracle.
// Plain text: every match a byte-by-byte scan of each line finds, at the same place and
// on the same line number, with whole-word and case rules applied by hand.
// Expressions: the lines with a non-empty match are those where the expression, tried
// at each place of each line alone, finds one; so the pieces of text that pick candidate
// lines must never hide a line that matches, an empty alternative must not hide a longer
// one, and a line that is not UTF-8 must not change how its neighbours are read.
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
    if (word)
        return 0;

    // Lines with a non-empty match: a line has one when at some place of it, tried alone,
    // the expression can match something not empty. Each line is read on its own: as
    // UTF-8 when it is, byte for byte when not, whatever its neighbours hold, so the
    // answer must not depend on which lines the pieces of text picked.
    const QRegularExpression re(QStringLiteral("(?:") + query.Pattern() + QStringLiteral(")(?!\\G)"),
                                query.PatternOptions());
    if (!re.isValid())
        return 0; // a pattern that cannot be wrapped: the matcher keeps to plain steps
    std::set<qint64> expected;
    qint64 number = 1;
    for (std::string_view line : Lines(block)) {
        if (!line.empty() && line.back() == '\r')
            line.remove_suffix(1);
        const QString subject = TextMatcher::IsValidUtf8(line.data(), line.size())
                                    ? QString::fromUtf8(line.data(), qsizetype(line.size()))
                                    : QString::fromLatin1(line.data(), qsizetype(line.size()));
        for (qsizetype at = 0; at <= subject.size(); ++at) {
            if (re.match(subject, at, QRegularExpression::NormalMatch, QRegularExpression::AnchorAtOffsetMatchOption)
                    .hasMatch()) {
                expected.insert(number);
                break;
            }
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
