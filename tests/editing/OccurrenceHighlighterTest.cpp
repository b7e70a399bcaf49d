// Occurrences of the word under the caret marked in the text and counted for the strip.
#include "BareControl.h"

#include "editing/OccurrenceHighlighter.h"

#include <QTest>
#include <gtest/gtest.h>

namespace {

using Sci = QsciScintillaBase;

struct Highlighted : BareControl
{
    explicit Highlighted(QByteArray text) : BareControl(std::move(text)), highlighter(control)
    {
        control.resize(400, 300);
        control.show();
        highlighter.SetEnabled(true);
        while (highlighter.Step()) {
        }
    }
    // Start offsets of the marked ranges in the text.
    QList<long> Marked()
    {
        QList<long> starts;
        const long length = Send(Sci::SCI_GETLENGTH);
        for (long pos = 0; pos < length;) {
            const long end = Send(Sci::SCI_INDICATOREND, COccurrenceHighlighter::Indicator, pos);
            if (Send(Sci::SCI_INDICATORVALUEAT, COccurrenceHighlighter::Indicator, pos))
                starts.append(pos);
            if (end <= pos)
                break;
            pos = end;
        }
        return starts;
    }
    COccurrenceHighlighter highlighter;
};

TEST(OccurrenceHighlighter, MarksWholeWordsAtTheCaretAndAnySelectedText)
{
    const struct { const char* text; QList<long> marked; } cases[] = {
        {"ab| abc ab\nx(ab)", {0, 7, 12}},
        {"[ab] abc ab", {0, 3, 7}},
        {"größe| größer größe", {0, 17}},
        {"a |  b a", {}},
        {"[a\nb] a\nb", {}},
    };
    for (const auto& c : cases) {
        Highlighted h{QByteArray(c.text)};
        EXPECT_EQ(h.Marked(), c.marked) << c.text;
        EXPECT_EQ(h.highlighter.Occurrences(), c.marked) << c.text;
    }
}

TEST(OccurrenceHighlighter, FollowsTheCaretAndClearsWhenSwitchedOff)
{
    Highlighted h{"one two one two two"};
    h.Send(Sci::SCI_GOTOPOS, 5);
    h.highlighter.Refresh();
    while (h.highlighter.Step()) {
    }
    EXPECT_EQ(h.highlighter.Occurrences(), (QList<long>{4, 12, 16}));
    h.highlighter.SetEnabled(false);
    EXPECT_TRUE(h.Marked().isEmpty());
    EXPECT_EQ(h.Send(Sci::SCI_GETMARGINRIGHT), 0);
}

TEST(OccurrenceHighlighter, ScansALargeDocumentInBoundedStepsAcrossChunkEdges)
{
    // Lines of 64 bytes, so that occurrences straddle every step's edge somewhere.
    QByteArray line(63, '.');
    line.replace(60, 3, "key");
    line.append('\n');
    QByteArray text = "key|\n" + line.repeated(200000);
    Highlighted h{text};
    EXPECT_TRUE(h.highlighter.ScanDone());
    EXPECT_EQ(h.highlighter.Occurrences().size(), 200001);
    // Every share of the document has its tick in the strip.
    EXPECT_EQ(h.highlighter.Ticks().count(true), COccurrenceHighlighter::TickRows);

    // Moving to another occurrence of the same word keeps the finished scan; an edit
    // starts it over.
    h.Send(Sci::SCI_GOTOPOS, 5 + 64 * 1000 + 61);
    h.highlighter.Refresh();
    EXPECT_TRUE(h.highlighter.ScanDone());
    EXPECT_EQ(h.highlighter.Occurrences().size(), 200001);
    h.Send(Sci::SCI_INSERTTEXT, 0, reinterpret_cast<long>("key "));
    h.highlighter.Refresh();
    EXPECT_FALSE(h.highlighter.ScanDone());
    while (h.highlighter.Step()) {
    }
    EXPECT_EQ(h.highlighter.Occurrences().size(), 200002);
}

} // namespace
