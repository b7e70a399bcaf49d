// The line diff of two texts. Its hunks, applied to the left text, must give the right
// one: the lines between hunks pass over unchanged and must equal their partners on the
// right (byte for byte, or under the options when they ignore blanks or case), each hunk
// puts its right lines in place of its left ones. Hunks come in order without overlap,
// and the changed-line flags say the same as the hunks.
#include "FuzzInput.h"

#include "compare/CLineDiff.h"
#include "compare/LineTable.h"

#include <string>
#include <vector>

namespace {

// The fuzzer's bytes make lines from a small alphabet, so that equal lines are common.
std::string Text(const std::string& raw)
{
    static const char alphabet[] = "ab \t\n\nA\r";
    std::string text;
    for (unsigned char c : raw)
        text += alphabet[c % (sizeof alphabet - 1)];
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzInput in(data, size);
    DiffOptions options;
    options.ignoreWhitespace = in.Flag();
    options.ignoreCase = in.Flag();
    const int method = in.Byte() % 3;
    const bool raw = in.Flag();
    const std::string leftBytes = in.Bytes(4000);
    const std::string rightBytes = in.Rest();
    const std::string left = raw ? leftBytes : Text(leftBytes);
    const std::string right = raw ? rightBytes : Text(rightBytes);

    LineTable table;
    FUZZ_CHECK(table.Build(left, right, options));
    CLineDiff diff(table.LeftIds(), table.RightIds(), table.DistinctCount());
    diff.SetMethod(method == 0 ? CLineDiff::Method::Patience
                   : method == 1 ? CLineDiff::Method::Histogram : CLineDiff::Method::Myers);
    FUZZ_CHECK(diff.Run());

    const int leftLines = int(table.LeftIds().size());
    const int rightLines = int(table.RightIds().size());
    const auto leftLine = [&](int i) { return LineTable::Line(left, table.LeftStarts(), i); };
    const auto rightLine = [&](int i) { return LineTable::Line(right, table.RightStarts(), i); };
    const bool exact = !options.ignoreWhitespace && !options.ignoreCase;
    std::vector<char> leftChanged(std::size_t(leftLines), 0);
    std::vector<char> rightChanged(std::size_t(rightLines), 0);

    int a = 0; // next left line
    int b = 0; // next right line produced
    auto passOver = [&](int untilLeft) {
        for (; a < untilLeft; ++a, ++b) {
            FUZZ_CHECK(b < rightLines);
            if (exact)
                FUZZ_CHECK(leftLine(a) == rightLine(b));
            else
                FUZZ_CHECK(LineTable::Equal(leftLine(a), rightLine(b), options));
        }
    };
    for (const DiffHunk& hunk : diff.Hunks()) {
        FUZZ_CHECK(hunk.leftCount >= 0 && hunk.rightCount >= 0);
        FUZZ_CHECK(hunk.leftCount + hunk.rightCount > 0);
        FUZZ_CHECK(hunk.leftStart >= a && hunk.leftStart + hunk.leftCount <= leftLines);
        passOver(hunk.leftStart);
        FUZZ_CHECK(hunk.rightStart == b && hunk.rightStart + hunk.rightCount <= rightLines);
        for (int i = 0; i < hunk.leftCount; ++i)
            leftChanged[std::size_t(a + i)] = 1;
        for (int i = 0; i < hunk.rightCount; ++i)
            rightChanged[std::size_t(b + i)] = 1;
        a += hunk.leftCount;
        b += hunk.rightCount;
    }
    passOver(leftLines);
    FUZZ_CHECK(b == rightLines);
    FUZZ_CHECK(diff.LeftChanged() == leftChanged);
    FUZZ_CHECK(diff.RightChanged() == rightChanged);
    return 0;
}
