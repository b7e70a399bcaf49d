#include "editor/LongLinePieces.h"

#include <QByteArray>
#include <gtest/gtest.h>
#include <vector>

namespace {

using LongLinePieces::StyleA;
using LongLinePieces::StyleB;

// The pieces as text, split where the style changes: "ab|cd|e".
QByteArray Pieces(const QByteArray& text, unsigned char before = 0)
{
    std::vector<unsigned char> styles(static_cast<size_t>(text.size()), 0);
    LongLinePieces::Fill(text.constData(), text.size(), styles.data(), before);
    QByteArray out;
    for (qsizetype i = 0; i < text.size(); ++i) {
        EXPECT_TRUE(LongLinePieces::IsPieceStyle(styles[size_t(i)])) << i;
        if (i > 0 && styles[size_t(i)] != styles[size_t(i - 1)])
            out += '|';
        out += text[i];
    }
    return out;
}

} // namespace

TEST(LongLinePieces, CutsAsciiInPairsAndKeepsOtherScriptsWhole)
{
    const struct {
        QByteArray text;
        QByteArray pieces;
    } cases[] = {
        {"", ""},
        {"a", "a"},
        {"abcd", "ab|cd"},
        {"abcde", "ab|cd|e"},
        {"{\"id\":12}", "{\"|id|\":|12|}"},
        // An accented letter, precomposed or with a combining mark, stays with the letter
        // in front of it.
        {"caf\xC3\xA9!", "ca|f\xC3\xA9|!"},
        {"cafe\xCC\x81!", "ca|f|e\xCC\x81|!"},
        // A word of another script is one piece, with the space in front of it.
        {"ab \xE4\xB8\xAD\xE6\x96\x87 cd", "ab| \xE4\xB8\xAD\xE6\x96\x87| c|d"},
        {"\xF0\x9F\x98\x80\xF0\x9F\x98\x80x", "\xF0\x9F\x98\x80\xF0\x9F\x98\x80|x"},
        // Bytes that are not UTF-8 are kept together like any other run.
        {"a\xFF\xFE" "bc", "a\xFF\xFE|bc"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Pieces(c.text), c.pieces) << c.text.toStdString();
}

// The first piece differs from the style in front of it, so a refill in the middle of a
// line never joins the piece before it.
TEST(LongLinePieces, FirstPieceDiffersFromTheOneInFront)
{
    for (const unsigned char before : {StyleA, StyleB, static_cast<unsigned char>(0)}) {
        unsigned char styles[4] = {};
        LongLinePieces::Fill("abcd", 4, styles, before);
        EXPECT_NE(styles[0], before);
        EXPECT_EQ(styles[0], styles[1]);
        EXPECT_NE(styles[1], styles[2]);
    }
}
