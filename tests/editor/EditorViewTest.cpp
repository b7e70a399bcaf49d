// The editor view's commands, notifications and shared views, through real documents,
// frames and controls.
#include "framework/CDocTemplate.h"
#include "framework/CommandIds.h"
#include "framework/OpenOptions.h"
#include "editor/CMFCScintilla.h"
#include "editor/CScrivelDoc.h"
#include "editor/CScrivelFrame.h"
#include "editor/CScrivelView.h"
#include "syntax/CSyntaxParser.h"
#include "TestSupport.h"
#include "TextDocuments.h"
#include "DocumentCleanup.h"

#include <QApplication>
#include <QClipboard>
#include <QTest>
#include <algorithm>
#include <gtest/gtest.h>
#include <memory>

namespace {

using Sci = QsciScintillaBase;

class EditorViewTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_template = TextDocuments::MakeTemplate(&m_options);
        m_frame = TextDocuments::NewFrame(*m_template);
        ASSERT_NE(m_frame, nullptr);
        m_document = static_cast<CScrivelDoc*>(m_frame->GetDocument());
        m_view = m_frame->GetView();
        m_editor = m_view->GetEditor();
        m_editor->SetCodePage(Sci::SC_CP_UTF8);
    }

    void TearDown() override
    {
        DocumentCleanup::DeleteAll(*m_template);
    }

    void SetText(const QByteArray& text)
    {
        m_editor->ClearAll();
        m_editor->AddText(text.constData(), text.size());
        m_editor->EmptyUndoBuffer();
        m_editor->SetSavePoint();
    }
    QByteArray Text() const { return m_editor->GetText(); }

    bool Run(int id) { return m_frame->OnCmdMsg(id); }
    bool Enabled(int id) const
    {
        CCmdUI ui;
        m_frame->OnUpdateCmdUI(id, ui);
        EXPECT_TRUE(ui.handled) << id;
        return ui.enabled;
    }
    void UseParser(const QString& comment, bool autoNest)
    {
        CSyntaxParser parser;
        parser.lineComment = comment;
        parser.autoNest = autoNest;
        m_frame->SetParser(0, parser);
    }

    OpenOptions m_options;
    std::unique_ptr<CDocTemplate> m_template;
    CScrivelDoc* m_document = nullptr;
    CScrivelFrame* m_frame = nullptr;
    CScrivelView* m_view = nullptr;
    CMFCScintilla* m_editor = nullptr;
};

TEST_F(EditorViewTest, UndoRedoCutCopyPasteFollowTheControl)
{
    QApplication::clipboard()->clear();
    SetText("abc");
    for (int id : {Cmd::EditUndo, Cmd::EditRedo, Cmd::EditCut, Cmd::EditCopy, Cmd::EditCutAppend, Cmd::EditCopyAppend,
                   Cmd::EditPaste})
        EXPECT_FALSE(Enabled(id)) << id;

    m_editor->GotoPos(3);
    QTest::keyClicks(m_editor, QStringLiteral("d"));
    EXPECT_TRUE(Enabled(Cmd::EditUndo));
    ASSERT_TRUE(Run(Cmd::EditUndo));
    EXPECT_EQ(Text(), "abc");
    EXPECT_FALSE(Enabled(Cmd::EditUndo));
    EXPECT_TRUE(Enabled(Cmd::EditRedo));
    ASSERT_TRUE(Run(Cmd::EditRedo));
    EXPECT_EQ(Text(), "abcd");

    m_editor->SetSel(1, 3);
    for (int id : {Cmd::EditCut, Cmd::EditCopy, Cmd::EditCutAppend, Cmd::EditCopyAppend})
        EXPECT_TRUE(Enabled(id)) << id;
    ASSERT_TRUE(Run(Cmd::EditCopy));
    EXPECT_TRUE(Enabled(Cmd::EditPaste));
    m_editor->SetReadOnly(true);
    EXPECT_FALSE(Enabled(Cmd::EditPaste)) << "a read-only text takes no paste";
    m_editor->SetReadOnly(false);
    ASSERT_TRUE(Run(Cmd::EditCut));
    m_editor->GotoPos(2);
    ASSERT_TRUE(Run(Cmd::EditPaste));
    EXPECT_EQ(Text(), "adbc");

    // Commands of other parts are the main window's to answer.
    for (int id : {int(Cmd::FileSave), int(Cmd::EditFind), int(Cmd::ViewWordWrap)})
        EXPECT_FALSE(Run(id)) << id;
}

TEST_F(EditorViewTest, CommandsChangeTheTextInOneUndoStep)
{
    struct Case { int id; QByteArray text; long selStart, selEnd; QByteArray expected; };
    const Case cases[] = {
        {Cmd::EditUpperCase, "abc def", 4, 7, "abc DEF"},
        {Cmd::EditUpperCase, "abc def", 2, 2, "abc def"},
        {Cmd::EditLowerCase, "ABC DEF", 0, 3, "abc DEF"},
        {Cmd::EditIndentRight, "a\nbc", 3, 3, "a\n    bc"},
        {Cmd::EditIndentLeft, "        bc", 8, 8, "    bc"},
        {Cmd::EditSwapLines, "one\ntwo", 5, 5, "two\none"},
        {Cmd::EditDeleteWord, "hello world", 11, 11, "hello "},
        {Cmd::EditDeleteWord, "one two three", 0, 5, "one  three"},
        {Cmd::EditDeleteToEol, "abc\ndef", 1, 1, "a\ndef"},
        {Cmd::EditDeleteLine, "abc\ndef\n", 5, 5, "abc\n"},
        {Cmd::EditCutLine, "abc\ndef", 1, 1, "def"},
        // Whole-text conversions keep the caret on its line.
        {Cmd::EditTabsToSpaces, "a\tb\n\tc\t\n", 5, 5, "a    b\n    c    \n"},
        {Cmd::EditSpacesToTabs, "a    b\n        c  \n", 8, 8, "a\tb\n\t\tc  \n"},
        {Cmd::EditTrimTrailing, "a  \nb\t \n  c\nd \t", 7, 7, "a\nb\n  c\nd"},
        {Cmd::EditTrimTrailing, "a \r\nb\r\n", 0, 0, "a\r\nb\r\n"},
    };
    for (const Case& c : cases) {
        SetText(c.text);
        m_editor->SetSel(c.selStart, c.selEnd);
        const long line = m_editor->GetCurrentLine();
        ASSERT_TRUE(Run(c.id)) << c.id;
        EXPECT_EQ(Text(), c.expected) << c.id;
        if (c.id == Cmd::EditTabsToSpaces || c.id == Cmd::EditSpacesToTabs || c.id == Cmd::EditTrimTrailing) {
            EXPECT_EQ(m_editor->GetCurrentLine(), line) << c.id;
        }
        m_editor->Undo();
        EXPECT_EQ(Text(), c.text) << c.id;
        EXPECT_FALSE(m_editor->CanUndo()) << c.id;
    }

    ViewSettings settings = m_view->Settings();
    settings.TabWidth = 2;
    m_view->ApplyViewSettings(settings);
    SetText("\tx");
    ASSERT_TRUE(Run(Cmd::EditTabsToSpaces));
    EXPECT_EQ(Text(), "  x") << "the view's tab width";
}

TEST_F(EditorViewTest, CommentUsesTheFramesParserToken)
{
    SetText("a\nb");
    UseParser(QStringLiteral("#"), false);
    m_editor->SelectAll();
    ASSERT_TRUE(Run(Cmd::EditComment));
    EXPECT_EQ(Text(), "# a\n# b");
    m_editor->SelectAll();
    ASSERT_TRUE(Run(Cmd::EditUncomment));
    EXPECT_EQ(Text(), "a\nb");
}

TEST_F(EditorViewTest, TypedBracesIndentWithTheParsersFlag)
{
    for (auto [autoNest, expected] : {std::pair<bool, QByteArray>{false, "  if (x) {\n  "}, {true, "  if (x) {\n      "}}) {
        UseParser(QStringLiteral("//"), autoNest);
        SetText("  if (x) {");
        m_editor->SetEOLMode(Sci::SC_EOL_LF);
        m_editor->GotoPos(m_editor->GetLength());
        QTest::keyClick(m_editor, Qt::Key_Return);
        EXPECT_EQ(Text(), expected) << autoNest;
        EXPECT_EQ(m_editor->GetCurrentPos(), m_editor->GetLength());
    }

    SetText("    {\n        x;\n        ");
    m_editor->GotoPos(m_editor->GetLength());
    QTest::keyClicks(m_editor, QStringLiteral("}"));
    EXPECT_EQ(Text(), "    {\n        x;\n    }");
    m_editor->Undo();
    EXPECT_EQ(Text(), "    {\n        x;\n        }") << "the brace and its indent are separate undo steps";
}

TEST_F(EditorViewTest, LineNumberMarginGrowsAFifthDigitAt10000Lines)
{
    ViewSettings settings = m_view->Settings();
    settings.LineNumbers = 1;
    settings.FontSize = 16; // wide enough that five digits clear the 36-pixel floor
    m_view->ApplyViewSettings(settings);
    const auto width = [this](int digits) {
        const long nine = m_editor->SendScintilla(Sci::SCI_TEXTWIDTH, static_cast<unsigned long>(Sci::STYLE_LINENUMBER), "9");
        return std::max(36L, nine * digits + 4);
    };
    SetText(QByteArray(9998, '\n'));
    ASSERT_EQ(m_editor->GetLineCount(), 9999);
    EXPECT_EQ(m_editor->SendScintilla(Sci::SCI_GETMARGINWIDTHN, 1UL), width(4));
    m_editor->GotoPos(m_editor->GetLength());
    QTest::keyClick(m_editor, Qt::Key_Return);
    ASSERT_EQ(m_editor->GetLineCount(), 10000);
    EXPECT_EQ(m_editor->SendScintilla(Sci::SCI_GETMARGINWIDTHN, 1UL), width(5));
    EXPECT_GT(width(5), width(4));

    settings.LineNumbers = 0;
    m_view->ApplyViewSettings(settings);
    EXPECT_EQ(m_editor->SendScintilla(Sci::SCI_GETMARGINWIDTHN, 1UL), 0);
}

class FoldingViewTest : public EditorViewTest
{
protected:
    void SetUp() override
    {
        EditorViewTest::SetUp();
        ViewSettings settings = m_view->Settings();
        settings.CodeFolding = 1;
        m_view->ApplyViewSettings(settings);
        CSyntaxParser parser;
        parser.lexer = QStringLiteral("cpp");
        m_view->ApplyParser(parser);
        SetText("int f() {\n  a;\n  if (b) {\n    c;\n  }\n}\nint g;\n");
        Colourise();
    }
    void Colourise() { m_editor->SendScintilla(Sci::SCI_COLOURISE, 0UL, -1L); }
    void Fold(long line) { m_view->OnMarginClick(int(m_editor->PositionFromLine(line)), 0, CMFCScintilla::FoldMargin); }
    void ExpectAllVisible()
    {
        for (long line = 0; line < m_editor->GetLineCount(); ++line)
            EXPECT_TRUE(m_editor->GetLineVisible(line)) << line;
    }
};

TEST_F(FoldingViewTest, FoldingOffOpensEveryFoldEvenOnesThatMoved)
{
    Fold(2);
    Fold(0);
    ASSERT_EQ(m_view->FoldedLines(), (QList<long>{2, 0}));
    Fold(0);
    ASSERT_TRUE(m_editor->GetLineVisible(1));
    ASSERT_FALSE(m_editor->GetLineVisible(3));
    m_editor->SendScintilla(Sci::SCI_INSERTTEXT, 0UL, "// one\n// two\n");
    Colourise();
    ASSERT_FALSE(m_editor->GetLineVisible(5)) << "the folded block moved down two lines";

    m_view->SetFolding(false);
    ExpectAllVisible();
    EXPECT_TRUE(m_view->FoldedLines().isEmpty());
    Fold(2);
    EXPECT_TRUE(m_editor->GetLineVisible(3)) << "the fold margin is dead while folding is off";
}

TEST_F(FoldingViewTest, ABookmarkIsDrawnInOneMarginWithFoldingOnOrOff)
{
    for (const bool on : {true, false}) {
        m_view->SetFolding(on);
        int showing = 0;
        for (unsigned long margin = 0; margin < 5; ++margin) {
            if (m_editor->SendScintilla(Sci::SCI_GETMARGINWIDTHN, margin) > 0 &&
                (m_editor->SendScintilla(Sci::SCI_GETMARGINMASKN, margin) & (1L << CMFCScintilla::BookmarkMarker)))
                ++showing;
        }
        EXPECT_EQ(showing, 1) << "folding " << on;
    }
}

TEST_F(FoldingViewTest, RemovingAFoldedHeaderShowsItsBlock)
{
    Fold(0);
    ASSERT_FALSE(m_editor->GetLineVisible(1));
    m_editor->SetTargetStart(8);
    m_editor->SetTargetEnd(9);
    m_editor->ReplaceTarget(";"); // "{" of the header goes
    Colourise();
    ASSERT_FALSE(m_editor->GetFoldLevel(0) & Sci::SC_FOLDLEVELHEADERFLAG);
    ExpectAllVisible();
}

TEST_F(EditorViewTest, SecondWindowSharesTextUndoAndBookmarks)
{
    UseParser(QStringLiteral("#"), false);
    SetText("shared\n");
    ASSERT_TRUE(Run(Cmd::WindowNew));
    ASSERT_EQ(m_document->GetFrames().size(), 2);
    auto* second = qobject_cast<CScrivelFrame*>(m_document->GetFrames().last());
    ASSERT_NE(second, m_frame);
    CMFCScintilla* other = second->GetView()->GetEditor();
    EXPECT_EQ(other->GetText(), "shared\n");
    EXPECT_EQ(second->CommentToken(), QStringLiteral("#"));

    m_editor->GotoPos(6);
    QTest::keyClicks(m_editor, QStringLiteral("!"));
    EXPECT_EQ(other->GetText(), "shared!\n");
    other->Undo();
    EXPECT_EQ(Text(), "shared\n");

    other->ToggleBookmark(1);
    EXPECT_TRUE(m_editor->HasBookmark(1));
    ASSERT_TRUE(Run(Cmd::BookmarkClear));
    EXPECT_FALSE(other->HasBookmark(1));

    delete m_frame; // the text outlives the window that goes first
    m_frame = nullptr;
    EXPECT_EQ(other->GetText(), "shared\n");
    EXPECT_EQ(m_document->GetEditor(), other);
}

} // namespace
