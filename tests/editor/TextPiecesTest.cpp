// The control's text read in the two pieces either side of its gap.
#include "editor/CMFCScintilla.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

using Sci = QsciScintillaBase;

// Four-, three- and two-byte characters between ASCII.
const QByteArray kText("ab\xF0\x9F\x98\x80" "cd\xE4\xB8\xAD" "ef\xC3\xA9" "gh\n"
                       "second line\n");

struct GapCase
{
    const char* name;
    long gap;          // where the gap is put
    long expected;     // where the pieces meet
};

class TextPieces : public ::testing::TestWithParam<GapCase>
{
};

long Gap(const CMFCScintilla& editor)
{
    return static_cast<long>(editor.SendScintilla(Sci::SCI_GETGAPPOSITION));
}

TEST_P(TextPieces, MeetBetweenCharactersAndLeaveTheGapAlone)
{
    const GapCase& c = GetParam();
    CMFCScintilla editor;
    editor.SetCodePage(Sci::SC_CP_UTF8);
    editor.AddText(kText.constData(), kText.size());
    // Closing the gap puts it at the end; a range from `gap` that reaches past it moves
    // the gap to the range's start (nothing is read there).
    editor.SendScintilla(Sci::SCI_GETCHARACTERPOINTER);
    if (c.gap < kText.size())
        editor.SendScintilla(Sci::SCI_GETRANGEPOINTER, static_cast<unsigned long>(c.gap),
                             long(kText.size()) - c.gap + 1);
    ASSERT_EQ(Gap(editor), c.gap);

    const auto [before, after] = editor.TextPieces();
    EXPECT_EQ(QByteArray(before.data(), qsizetype(before.size())) + QByteArray(after.data(), qsizetype(after.size())),
              kText);
    EXPECT_EQ(long(before.size()), c.expected);
    EXPECT_EQ(Gap(editor), c.expected) << "the gap is where the pieces meet, moved at most into its character";
    if (!after.empty()) {
        EXPECT_NE(static_cast<unsigned char>(after.front()) & 0xC0, 0x80) << "no piece starts inside a character";
    }
}

INSTANTIATE_TEST_SUITE_P(Places, TextPieces,
                         ::testing::Values(GapCase{"AtTheStart", 0, 0}, GapCase{"InAscii", 1, 1},
                                           GapCase{"BeforeAFourByteCharacter", 2, 2},
                                           GapCase{"AfterTheFirstByteOfFour", 3, 2},
                                           GapCase{"AfterTheThirdByteOfFour", 5, 2},
                                           GapCase{"AfterAFourByteCharacter", 6, 6},
                                           GapCase{"InsideAThreeByteCharacter", 10, 8},
                                           GapCase{"InsideATwoByteCharacter", 14, 13},
                                           GapCase{"AtTheEnd", long(kText.size()), long(kText.size())}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(TextPiecesOfAnEmptyControl, AreBothEmpty)
{
    CMFCScintilla editor;
    const auto [before, after] = editor.TextPieces();
    EXPECT_TRUE(before.empty());
    EXPECT_TRUE(after.empty());
}

} // namespace
