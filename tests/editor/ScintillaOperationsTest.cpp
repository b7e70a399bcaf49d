// The wrapper's composite operations against a real control.
#include "editor/CMFCScintilla.h"
#include "TestSupport.h"

#include <QApplication>
#include <QClipboard>
#include <QImage>
#include <QTest>
#include <QPixmap>
#include <gtest/gtest.h>
#include <memory>

namespace {

using Sci = QsciScintillaBase;

class ScintillaOperationsTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_editor = std::make_unique<CMFCScintilla>();
        m_editor->Setup();
        m_editor->SetCodePage(Sci::SC_CP_UTF8);
        m_editor->SetTabWidth(4);
        m_editor->SetUseTabs(false);
        m_editor->resize(600, 400);
    }

    void SetText(const QByteArray& text)
    {
        m_editor->ClearAll();
        m_editor->AddText(text.constData(), text.size());
        m_editor->EmptyUndoBuffer();
    }
    QByteArray Text() const { return m_editor->GetText(); }

    std::unique_ptr<CMFCScintilla> m_editor;
};

TEST_F(ScintillaOperationsTest, CommentAndUncommentAreOneUndoStep)
{
    struct Case { const char* name; QByteArray text, token; long selStart, selEnd; bool comment; QByteArray expected; };
    const QByteArray longLine(1000, 'a');
    const Case cases[] = {
        {"caret line, long token", "abc\ndef", "//", 1, 1, true, "// abc\ndef"},
        {"one-character token", "a\nb\nc", "#", 0, 3, true, "# a\n# b\nc"},
        {"empty token inserts a blank", "abc\ndef", "", 0, 7, true, " abc\n def"},
        {"selection ending at column 0 leaves that line", "a\nb\nc", "//", 0, 4, true, "// a\n// b\nc"},
        {"selection ending inside the last line takes it", "a\nbc\nd", "//", 0, 4, true, "// a\n// bc\nd"},
        {"caret at column 0 counts", "a\nb", "//", 0, 0, true, "// a\nb"},
        {"lines of 1000 characters are skipped", longLine + "\nb", "//", 0, 1002, true, longLine + "\n// b"},
        {"uncomment token and blank", "// abc\n// def", "//", 0, 13, false, "abc\ndef"},
        {"uncomment token without blank", "//abc", "//", 0, 0, false, "abc"},
        {"uncomment xx removes one x", "xx", "x", 0, 0, false, "x"},
        {"uncomment skips lines without token", "a\n# b\nc", "#", 0, 7, false, "a\nb\nc"},
        {"uncomment empty token removes the blank", " abc\ndef", "", 0, 8, false, "abc\ndef"},
        {"uncomment leaves a token in the middle", "a // b", "//", 0, 0, false, "a // b"},
        {"uncomment column 0 rule", "// a\n// b\n// c", "//", 0, 10, false, "a\nb\n// c"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        SetText(c.text);
        m_editor->SetSel(c.selStart, c.selEnd);
        m_editor->CommentLines(c.comment, c.token);
        EXPECT_EQ(Text(), c.expected);
        if (c.expected != c.text) {
            m_editor->Undo();
            EXPECT_EQ(Text(), c.text);
            EXPECT_FALSE(m_editor->CanUndo());
        }
    }
}

TEST_F(ScintillaOperationsTest, CommentKeepsTheSelectionOnItsCharacters)
{
    SetText("alpha\nbeta\ngamma\n");
    m_editor->SetSel(11, 0); // backward, anchor at column 0 of "gamma"
    m_editor->CommentLines(true, "//");
    EXPECT_EQ(Text(), "// alpha\n// beta\ngamma\n");
    EXPECT_EQ(m_editor->GetCurrentPos(), 0);
    EXPECT_EQ(m_editor->SendScintilla(Sci::SCI_GETANCHOR), 17);
    m_editor->CommentLines(false, "//");
    EXPECT_EQ(Text(), "alpha\nbeta\ngamma\n");
    EXPECT_EQ(m_editor->SendScintilla(Sci::SCI_GETANCHOR), 11);

    SetText("    value");
    m_editor->GotoPos(6);
    m_editor->CommentLines(true, "#");
    EXPECT_EQ(m_editor->GetCurrentPos(), 8);
    EXPECT_FALSE(m_editor->HasSelection());
}

TEST_F(ScintillaOperationsTest, InsertWithSelectionPutsTheSelectionIntoTheMarker)
{
    struct Case { QByteArray text; long selStart, selEnd; QByteArray insert, expected; long caret; };
    const Case cases[] = {
        {"aXYb", 1, 3, "<b><%REPLACE%></b>", "a<b>XY</b>b", 10},
        {"abcdef", 3, 3, "<b><%REPLACE%></b>", "abc<b></b>def", 3}, // no selection: caret stays before
        {"x", 0, 1, "[<%REPLACE%>|<%REPLACE%>]", "[x|x]", 5},
        {"ab", 1, 1, "[<%REPLACE%>|<%REPLACE%>]", "a[|]b", 1},
        {"a123b", 1, 4, "<BR/>", "a<BR/>b", 6},
        {"<%REPLACE%>", 0, 11, "(<%REPLACE%>)", "(<%REPLACE%>)", 13}, // not scanned again
        {"s", 0, 1, "<%replace%>", "<%replace%>", 11},
        {"l1\r\nl2", 0, 6, "<p><%REPLACE%></p>", "<p>l1\r\nl2</p>", 13},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.expected.constData());
        SetText(c.text);
        m_editor->SetSel(c.selStart, c.selEnd);
        m_editor->InsertWithSelection(c.insert);
        EXPECT_EQ(Text(), c.expected);
        EXPECT_EQ(m_editor->GetCurrentPos(), c.caret);
        EXPECT_FALSE(m_editor->HasSelection());
    }
}

TEST_F(ScintillaOperationsTest, IndentWithoutSelectionMovesTheWholeLine)
{
    SetText("first\nabc");
    m_editor->GotoPos(8); // between "b" and "c"
    m_editor->Indent();
    EXPECT_EQ(Text(), "first\n    abc");
    EXPECT_EQ(m_editor->GetCurrentPos(), 10) << "the caret went to column 0 before the tab";
}

TEST_F(ScintillaOperationsTest, SelectLineLeavesTheLineEndOut)
{
    struct Case { QByteArray text; long line; QByteArray selected; };
    for (const Case& c : {Case{"ab\ncd", 1, "cd"}, Case{"ab\r\ncd\r\n", 0, "ab"}, Case{"ab\n", 1, ""},
                          Case{"ab\rcd", 1, "cd"}}) {
        SetText(c.text);
        m_editor->SelectLine(c.line);
        EXPECT_EQ(m_editor->GetSelText(), c.selected) << c.text.constData() << " line " << c.line;
    }
}

TEST_F(ScintillaOperationsTest, FindsTheBraceBesideTheCaretAndItsPartner)
{
    struct Case { QByteArray text; long caret; bool sloppy; long brace, partner; };
    const Case cases[] = {
        {"f(a[b]c)", 2, false, 1, 7}, {"f(a[b]c)", 8, false, 7, 1}, {"f(a[b]c)", 6, false, 5, 3},
        {"f(a)", 1, false, -1, -1},   {"f(a)", 1, true, 1, 3},      {"()", 1, true, 0, 1},
        {"{ a", 1, false, 0, -1},     {"{\n  x\n}", 1, false, 0, 6}, {"abc", 2, true, -1, -1},
        {"(a)", 0, false, -1, -1},    {"a<b>", 3, true, -1, -1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.text.constData() << " caret " << c.caret << " sloppy " << c.sloppy);
        SetText(c.text);
        m_editor->GotoPos(c.caret);
        const CMFCScintilla::BraceMatch match = m_editor->FindMatchingBrace(c.sloppy);
        EXPECT_EQ(match.brace, c.brace);
        EXPECT_EQ(match.partner, c.partner);
        EXPECT_FALSE(match.colon);
    }
}

TEST_F(ScintillaOperationsTest, BraceGuideStandsOnTheSmallerColumnOfThePair)
{
    struct Case { QByteArray text; long caret, guide; };
    for (const Case& c : {Case{"    {\n        x;\n    }", 23, 4}, Case{"ab(cd)", 6, 2}, Case{"    {\n", 5, 0}}) {
        SetText(c.text);
        m_editor->SendScintilla(Sci::SCI_SETHIGHLIGHTGUIDE, 9UL);
        m_editor->GotoPos(c.caret);
        m_editor->HighlightBrace();
        EXPECT_EQ(m_editor->SendScintilla(Sci::SCI_GETHIGHLIGHTGUIDE), c.guide) << c.text.constData();
    }
}

TEST_F(ScintillaOperationsTest, PythonColonOpensABlockUpToItsLastChild)
{
    m_editor->SendScintilla(Sci::SCI_SETLEXERLANGUAGE, 0UL, "python");
    m_editor->SetFolding(true);
    SetText("if x:\n    y = 1\n    z = 2\nw = 3\n");
    m_editor->SendScintilla(Sci::SCI_COLOURISE, 0UL, -1L);
    m_editor->GotoPos(5);
    const CMFCScintilla::BraceMatch match = m_editor->FindMatchingBrace(false);
    EXPECT_TRUE(match.colon);
    EXPECT_EQ(match.brace, 4);
    EXPECT_EQ(match.partner, m_editor->GetLineEndPosition(2));
    m_editor->SendScintilla(Sci::SCI_SETLEXERLANGUAGE, 0UL, "null");
    m_editor->SendScintilla(Sci::SCI_COLOURISE, 0UL, -1L);
    EXPECT_EQ(m_editor->FindMatchingBrace(false).brace, -1) << "in plain text a colon is no brace";
}

// The control has already inserted the typed character when it reports it; so does the test.
TEST_F(ScintillaOperationsTest, AutoIndentsTheNewLine)
{
    struct Case { const char* name; QByteArray before; int eolMode; char typed; bool indentAfterBrace; QByteArray expected; };
    const Case cases[] = {
        {"keeps the indent", "    foo", Sci::SC_EOL_LF, '\n', false, "    foo\n    "},
        {"crlf", "  foo\r", Sci::SC_EOL_CRLF, '\n', false, "  foo\r\n  "},
        {"cr mode triggers on cr", "  foo", Sci::SC_EOL_CR, '\r', false, "  foo\r  "},
        {"lf does nothing in cr mode", "  foo", Sci::SC_EOL_CR, '\n', false, "  foo\n"},
        {"unmatched { adds a step", "if (x) {", Sci::SC_EOL_LF, '\n', true, "if (x) {\n    "},
        {"unmatched { without the flag", "if (x) {", Sci::SC_EOL_LF, '\n', false, "if (x) {\n"},
        {"matched braces add nothing", "  { }", Sci::SC_EOL_LF, '\n', true, "  { }\n  "},
        {"last open brace counts", "} {", Sci::SC_EOL_LF, '\n', true, "} {\n    "},
        {"empty lines are passed", "  a\n", Sci::SC_EOL_LF, '\n', false, "  a\n\n  "},
        {"} takes the indent of its partner", "    {\n        x;\n        ", Sci::SC_EOL_LF, '}', true,
         "    {\n        x;\n    }"},
        {"} on the line of its partner", "  {", Sci::SC_EOL_LF, '}', true, "  {}"},
        {"other characters do nothing", "    a", Sci::SC_EOL_LF, 'b', true, "    ab"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        SetText(c.before);
        m_editor->SetEOLMode(c.eolMode);
        m_editor->GotoPos(m_editor->GetLength());
        m_editor->AddText(&c.typed, 1);
        m_editor->AutoIndent(c.typed, c.indentAfterBrace);
        EXPECT_EQ(Text(), c.expected);
        EXPECT_EQ(m_editor->GetCurrentPos(), m_editor->GetLength());
    }
}

TEST_F(ScintillaOperationsTest, BookmarksWrapAroundTheEndsAndSayWhenThereIsNoOther)
{
    SetText("0\n1\n2\n3\n4\n5\n6\n7\n8\n9");
    m_editor->SendScintilla(Sci::SCI_MARKERADD, 5UL, 15L); // another marker is no bookmark
    m_editor->ToggleBookmark(2);
    m_editor->ToggleBookmark(9);
    m_editor->GotoLine(3);
    {
        TestSupport::ModalAnswerer messages;
        for (auto [forward, line] : {std::pair{true, 9L}, {true, 2L}, {false, 9L}, {false, 2L}}) {
            EXPECT_TRUE(m_editor->NextBookmark(forward, false));
            EXPECT_EQ(m_editor->GetCurrentLine(), line) << forward;
        }
        EXPECT_TRUE(messages.Texts().isEmpty());
    }
    const long anchor = m_editor->GetCurrentPos();
    EXPECT_TRUE(m_editor->NextBookmark(true, true));
    EXPECT_EQ(m_editor->GetSelectionStart(), anchor) << "the anchor stays";
    EXPECT_EQ(m_editor->GetSelectionEnd(), m_editor->PositionFromLine(9));

    m_editor->MarkerDeleteAll();
    EXPECT_EQ(m_editor->SendScintilla(Sci::SCI_MARKERGET, 5UL), 1 << 15) << "only bookmarks are cleared";
    for (bool onOwnLine : {false, true}) {
        m_editor->GotoLine(5);
        if (onOwnLine)
            m_editor->ToggleBookmark(5);
        for (bool forward : {true, false}) {
            TestSupport::ModalAnswerer messages;
            EXPECT_FALSE(m_editor->NextBookmark(forward, false));
            EXPECT_EQ(messages.Texts(), QStringList{QStringLiteral("No more bookmarks have been found")});
            EXPECT_EQ(m_editor->GetCurrentLine(), 5);
        }
    }
}

TEST_F(ScintillaOperationsTest, CutAppendDeletesOnlyWhatItCopied)
{
    QClipboard* clipboard = QApplication::clipboard();
    clipboard->setText(QStringLiteral("old "));
    SetText("keep \xC3\xA9t\xC3\xA9 here");
    m_editor->GotoPos(2);
    EXPECT_FALSE(m_editor->CopyAppend());
    m_editor->CutAppend();
    EXPECT_EQ(Text(), "keep \xC3\xA9t\xC3\xA9 here") << "no selection, nothing copied, nothing cut";
    EXPECT_EQ(clipboard->text(), QStringLiteral("old "));

    m_editor->SetSel(5, 10);
    EXPECT_TRUE(m_editor->CopyAppend());
    EXPECT_EQ(clipboard->text(), QStringLiteral("old \u00E9t\u00E9"));
    m_editor->SetSel(0, 5);
    m_editor->CutAppend();
    EXPECT_EQ(clipboard->text(), QStringLiteral("old \u00E9t\u00E9keep "));
    EXPECT_EQ(Text(), "\xC3\xA9t\xC3\xA9 here");

    clipboard->clear();
    m_editor->SetSel(0, 2);
    m_editor->CutAppend();
    EXPECT_EQ(clipboard->text(), QStringLiteral("\u00E9"));
    EXPECT_EQ(Text(), "t\xC3\xA9 here");
}

TEST_F(ScintillaOperationsTest, SearchSeedIsCutTo99BytesWithoutSplittingACharacter)
{
    TestSupport::ClearSettings();
    struct Case { QByteArray text; QString seed; };
    for (const Case& c : {Case{QByteArray(100, 'q'), QString(100, u'q')}, Case{QByteArray(101, 'q'), QString(99, u'q')},
                          Case{QByteArray(98, 'q') + "\xC3\xA9" + QByteArray(10, 'q'), QString(98, u'q')}}) {
        SetText(c.text);
        m_editor->SelectAll();
        EXPECT_EQ(m_editor->GetSearchSeed(), c.seed) << c.text.size();
    }
    m_editor->GotoPos(0);
    EXPECT_EQ(m_editor->GetSearchSeed(), QString(98, u'q')) << "without a selection the last seed comes back";
}

// Markdown headings are coloured whole, not only their "#" marks; other lines are not.
TEST_F(ScintillaOperationsTest, MarkdownHeadingTextTakesTheHeadingColour)
{
    m_editor->SendScintilla(Sci::SCI_SETLEXERLANGUAGE, 0UL, "markdown");
    m_editor->SendScintilla(Sci::SCI_STYLESETFORE, 6UL, 0xE60000L);
    m_editor->SendScintilla(Sci::SCI_STYLESETFORE, 7UL, 0x00A000L);
    SetText("# Title\nplain text\n## Second\n");
    m_editor->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(m_editor.get()));
    QCoreApplication::processEvents();
    const auto colourAt = [this](long position) {
        if (!(m_editor->SendScintilla(Sci::SCI_INDICATORALLONFOR, static_cast<unsigned long>(position))
              & (1 << CMFCScintilla::HeadingIndicator)))
            return -1L;
        return m_editor->SendScintilla(Sci::SCI_INDICATORVALUEAT, static_cast<unsigned long>(CMFCScintilla::HeadingIndicator), position) & 0xFFFFFF;
    };
    EXPECT_EQ(colourAt(3), 0xE60000L) << "the text of a first-level heading";
    EXPECT_EQ(colourAt(10), -1L) << "a plain line";
    EXPECT_EQ(colourAt(21), 0x00A000L) << "the text of a second-level heading";

    // Another language leaves no heading colour behind.
    m_editor->SendScintilla(Sci::SCI_SETLEXERLANGUAGE, 0UL, "null");
    m_editor->AddText(" ");
    QCoreApplication::processEvents();
    EXPECT_EQ(colourAt(3), -1L);
}

// The current line's colour lies behind the text: its letters stay visible at every
// transparency, 255 giving the colour itself and lower values a mix with the background.
struct CaretLineCase
{
    int alpha;
    quint32 expectedBack;
};

class CaretLine : public ScintillaOperationsTest, public ::testing::WithParamInterface<CaretLineCase>
{
};

TEST_P(CaretLine, IsPaintedBehindTheText)
{
    const CaretLineCase& c = GetParam();
    SetText("MMMMMMMMMMMMMMMMMMMM\nsecond line\n");
    m_editor->GotoPos(0);
    m_editor->SendScintilla(Sci::SCI_STYLESETBACK, Sci::STYLE_DEFAULT, 0xFFFFFFL);
    m_editor->SetCaretLine(true, 0x00FFFF, c.alpha); // yellow
    EXPECT_EQ(m_editor->SendScintilla(Sci::SCI_GETCARETLINEBACKALPHA), long(Sci::SC_ALPHA_NOALPHA));
    EXPECT_EQ(quint32(m_editor->SendScintilla(Sci::SCI_GETCARETLINEBACK)), c.expectedBack);

    m_editor->show();
    m_editor->activateWindow();
    m_editor->setFocus();
    ASSERT_TRUE(QTest::qWaitForWindowActive(m_editor.get()));
    const QImage image = m_editor->viewport()->grab().toImage();
    const int y = int(m_editor->SendScintilla(Sci::SCI_POINTYFROMPOSITION, 0UL, 0L))
        + int(m_editor->SendScintilla(Sci::SCI_TEXTHEIGHT, 0UL)) / 2;
    const int x0 = int(m_editor->SendScintilla(Sci::SCI_POINTXFROMPOSITION, 0UL, 0L));
    const int x1 = int(m_editor->SendScintilla(Sci::SCI_POINTXFROMPOSITION, 0UL, 20L));
    int dark = 0;
    for (int x = x0; x < x1 && x < image.width(); ++x) {
        if (qGray(image.pixel(x, y)) < 100)
            ++dark;
    }
    EXPECT_GT(dark, 5) << "the letters of the current line are hidden";
    const QRgb back = image.pixel(x1 + 20, y);
    EXPECT_EQ(qRgb(qRed(back), qGreen(back), qBlue(back)),
              qRgb(int(c.expectedBack & 0xFF), int((c.expectedBack >> 8) & 0xFF), int(c.expectedBack >> 16)));
}

INSTANTIATE_TEST_SUITE_P(Alphas, CaretLine, ::testing::Values(
    CaretLineCase{255, 0x00FFFF},
    CaretLineCase{128, 0x7FFFFF},
    CaretLineCase{0, 0xFFFFFF}));

// A key typed at many carets: every line gets it, listeners hear of the change (once per
// turn of the event loop when the carets are many), and one undo takes it all back.
TEST_F(ScintillaOperationsTest, TypingAtManyCaretsIsAnnouncedAndUndoneAsOneStep)
{
    for (const int carets : {3, 200}) {
        QByteArray text;
        for (int i = 0; i < carets; ++i)
            text += "line\n";
        SetText(text);
        m_editor->SendScintilla(Sci::SCI_SETMULTIPLESELECTION, 1UL);
        for (int i = 0; i < carets; ++i) {
            const long end = 5L * i + 4;
            m_editor->SendScintilla(i ? Sci::SCI_ADDSELECTION : Sci::SCI_SETSELECTION, static_cast<unsigned long>(end), end);
        }
        int inserts = 0;
        const auto connection = QObject::connect(m_editor.get(), &QsciScintillaBase::SCN_MODIFIED, [&](int, int type) {
            if (type & Sci::SC_MOD_INSERTTEXT)
                ++inserts;
        });
        QTest::keyClick(m_editor.get(), 'x');
        QApplication::processEvents();
        QObject::disconnect(connection);
        EXPECT_EQ(Text(), QByteArray(text).replace("line", "linex")) << carets;
        EXPECT_GE(inserts, 1) << carets;
        if (carets > 100) {
            EXPECT_LT(inserts, carets) << "announced per turn of the event loop, not per caret";
        }
        m_editor->Undo();
        EXPECT_EQ(Text(), text) << carets;
        m_editor->Redo();
        EXPECT_EQ(Text(), QByteArray(text).replace("line", "linex")) << carets;
    }
}

} // namespace
