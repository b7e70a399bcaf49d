#include "editor/CMFCScintilla.h"
#include "editor/CTextSearch.h"
#include "framework/IStatusSink.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

namespace {

using Sci = QsciScintillaBase;

// Cancels as soon as any progress is reported.
class CancellingProgress : public IProgressSink
{
public:
    void StartProgress(qint64) override { started = true; }
    void SetProgress(qint64) override { reported = true; }
    void StopProgress() override { stopped = true; }
    bool CancelRequested() const override { return reported; }
    bool started = false;
    bool reported = false;
    bool stopped = false;
};

// Every match, from every start, as the control's own search finds it.
std::vector<long> ControlMatches(CMFCScintilla& editor, const QByteArray& needle, int flags)
{
    std::vector<long> found;
    editor.SetSearchFlags(flags);
    for (long from = 0;;) {
        editor.SetTargetStart(from);
        editor.SetTargetEnd(editor.GetLength());
        const long at = editor.SearchInTarget(needle);
        if (at < 0)
            break;
        found.push_back(at);
        from = at + 1;
    }
    return found;
}

std::vector<long> OurMatches(CMFCScintilla& editor, const QString& needle, bool matchCase, bool word)
{
    std::vector<long> found;
    CTextSearch search(&editor);
    search.SetSearchFlags(matchCase, word, false);
    for (long from = 0;;) {
        editor.SetSel(from, from);
        const long at = search.FindText(needle, false, false);
        if (at < 0)
            break;
        found.push_back(at);
        EXPECT_EQ(editor.GetSelectionEnd() - at, needle.toUtf8().size());
        from = at + 1;
    }
    return found;
}

// The fast search over the control's memory agrees with the control's own search, across
// the edges of its windows, in both cases and for whole words.
TEST(SearchAtScale, PlainSearchAgreesWithTheControl)
{
    CMFCScintilla editor;
    editor.SetCodePage(int(Sci::SC_CP_UTF8));
    QByteArray text = "Needle at the start, needle_word, (needle) n\xC3\xA9" "edle caf\xC3\xA9needle\n";
    // Matches straddling where the first windows end, and one at the very end.
    for (long edge : {64L * 1024, 64L * 1024 + 128L * 1024}) {
        text += QByteArray(edge - text.size() - 3, 'x') + " NEEDLE ";
    }
    text += QByteArray(1000, 'y') + "\nneedle";
    editor.AddText(text.constData(), text.size());
    // A gap in the middle of the text must not disturb the search.
    editor.GotoPos(70000);
    editor.AddText("needle", 6);
    editor.SendScintilla(Sci::SCI_DELETERANGE, 70000UL, 6L);

    const struct { const char* needle; bool matchCase; bool word; } cases[] = {
        {"needle", true, false},  {"needle", false, false}, {"NEEDLE", true, false},
        {"needle", false, true},  {"needle", true, true},   {"eedle", false, true},
        {"(needle)", true, true}, {"caf\xC3\xA9", true, false}, {"x NEEDLE", false, false},
        {"\n", true, false},
    };
    for (const auto& c : cases) {
        const QByteArray needle(c.needle);
        int flags = (c.matchCase ? Sci::SCFIND_MATCHCASE : 0) | (c.word ? Sci::SCFIND_WHOLEWORD : 0);
        const std::vector<long> expected = ControlMatches(editor, needle, flags);
        EXPECT_EQ(OurMatches(editor, QString::fromUtf8(needle), c.matchCase, c.word), expected)
            << c.needle << " case " << c.matchCase << " word " << c.word;
        EXPECT_FALSE(expected.empty() && needle != "eedle") << c.needle;
    }
}

// Replace All of many matches is one undo step; Cancel stops it between matches,
// with every match before the stop replaced and none after.
TEST(SearchAtScale, ReplaceAllOfManyMatchesAndCancel)
{
    CMFCScintilla editor;
    editor.SetCodePage(int(Sci::SC_CP_UTF8));
    const QByteArray original = QByteArray("ab ").repeated(200000);
    editor.AddText(original.constData(), original.size());
    editor.EmptyUndoBuffer();

    CTextSearch search(&editor);
    search.SetSearchFlags(true, false, false);
    EXPECT_EQ(search.ReplaceAll(QStringLiteral("ab"), QStringLiteral("xyz"), false, false), 200000);
    EXPECT_FALSE(search.WasCancelled());
    EXPECT_EQ(editor.GetText(), QByteArray("xyz ").repeated(200000));
    editor.Undo();
    EXPECT_EQ(editor.GetText(), original);

    CancellingProgress progress;
    search.SetProgressSink(&progress, 0);
    const long count = search.ReplaceAll(QStringLiteral("ab"), QStringLiteral("xyz"), false, false);
    EXPECT_TRUE(search.WasCancelled());
    EXPECT_TRUE(progress.started && progress.stopped);
    ASSERT_GT(count, 0);
    ASSERT_LT(count, 200000);
    EXPECT_EQ(editor.GetText(), QByteArray("xyz ").repeated(count) + QByteArray("ab ").repeated(200000 - count));
    editor.Undo();
    EXPECT_EQ(editor.GetText(), original);
}

} // namespace
