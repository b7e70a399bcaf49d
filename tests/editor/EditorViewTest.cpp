// The editor view's commands, notifications and shared views, through real documents,
// frames and controls.
#include "app/CDocTemplate.h"
#include "app/CommandIds.h"
#include "app/OpenOptions.h"
#include "editor/CMFCScintilla.h"
#include "editor/CScrivelDoc.h"
#include "editor/CScrivelFrame.h"
#include "editor/CScrivelView.h"
#include "search/CTextSearch.h"
#include "syntax/CSyntaxParser.h"
#include "syntax/CSyntaxParserList.h"
#include "EditorTestHelpers.h"
#include "TestSupport.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QMenu>
#include <QTest>
#include <gtest/gtest.h>
#include <memory>

namespace {

using Sci = QsciScintillaBase;

class EditorViewTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_template = std::make_unique<CDocTemplate>(
            QStringLiteral("Untitled"), [] { return new CScrivelDoc(); },
            [](CDocument* d) { return new CScrivelFrame(static_cast<CScrivelDoc*>(d)); });
        m_template->SetOpenOptions(&m_options);
        m_document = static_cast<CScrivelDoc*>(m_template->OpenDocumentFile(QString(), false));
        ASSERT_NE(m_document, nullptr);
        m_frame = qobject_cast<CScrivelFrame*>(m_document->GetFrames().first());
        ASSERT_NE(m_frame, nullptr);
        m_view = m_frame->GetView();
        m_editor = m_view->GetEditor();
        m_editor->SetCodePage(Sci::SC_CP_UTF8);
    }

    void TearDown() override
    {
        for (CDocument* document : m_template->GetDocuments()) {
            document->SetModifiedFlag(false);
            const auto frames = document->GetFrames();
            for (CChildFrame* frame : frames)
                delete frame;
            delete document;
        }
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
    CCmdUI State(int id) const
    {
        CCmdUI ui;
        m_frame->OnUpdateCmdUI(id, ui);
        return ui;
    }

    static CSyntaxParser Parser(const QString& comment, bool autoNest)
    {
        CSyntaxParser parser;
        parser.lineComment = comment;
        parser.autoNest = autoNest;
        return parser;
    }

    OpenOptions m_options;
    std::unique_ptr<CDocTemplate> m_template;
    CScrivelDoc* m_document = nullptr;
    CScrivelFrame* m_frame = nullptr;
    CScrivelView* m_view = nullptr;
    CMFCScintilla* m_editor = nullptr;
};

// Enablement ---------------------------------------------------------------------------

TEST_F(EditorViewTest, UndoRedoCutCopyPasteFollowTheControl)
{
    QApplication::clipboard()->clear();
    SetText("abc");
    EXPECT_TRUE(State(Cmd::EditUndo).handled);
    EXPECT_FALSE(State(Cmd::EditUndo).enabled);
    EXPECT_FALSE(State(Cmd::EditRedo).enabled);
    EXPECT_FALSE(State(Cmd::EditCut).enabled);
    EXPECT_FALSE(State(Cmd::EditCopy).enabled);
    EXPECT_FALSE(State(Cmd::EditCopyAppend).enabled);
    EXPECT_FALSE(State(Cmd::EditPaste).enabled) << "nothing on the clipboard";

    m_editor->GotoPos(3);
    QTest::keyClicks(m_editor, QStringLiteral("d"));
    EXPECT_EQ(Text(), "abcd");
    EXPECT_TRUE(State(Cmd::EditUndo).enabled);
    ASSERT_TRUE(Run(Cmd::EditUndo));
    EXPECT_EQ(Text(), "abc");
    EXPECT_FALSE(State(Cmd::EditUndo).enabled);
    EXPECT_TRUE(State(Cmd::EditRedo).enabled);
    ASSERT_TRUE(Run(Cmd::EditRedo));
    EXPECT_EQ(Text(), "abcd");

    m_editor->SetSel(1, 3);
    for (int id : {Cmd::EditCut, Cmd::EditCopy, Cmd::EditCutAppend, Cmd::EditCopyAppend,
                   Cmd::CreateTemplateFromSelection})
        EXPECT_TRUE(State(id).enabled) << id;

    ASSERT_TRUE(Run(Cmd::EditCopy));
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("bc"));
    EXPECT_TRUE(State(Cmd::EditPaste).enabled);
    m_editor->SetReadOnly(true);
    EXPECT_FALSE(State(Cmd::EditPaste).enabled) << "a read-only text takes no paste";
    m_editor->SetReadOnly(false);

    ASSERT_TRUE(Run(Cmd::EditCut));
    EXPECT_EQ(Text(), "ad");
    m_editor->GotoPos(2);
    ASSERT_TRUE(Run(Cmd::EditPaste));
    EXPECT_EQ(Text(), "adbc");
}

TEST_F(EditorViewTest, FilePathCommandsNeedAPath)
{
    EXPECT_FALSE(State(Cmd::CopyFilePath).enabled);
    EXPECT_FALSE(State(Cmd::OpenContainingFolder).enabled);
    EXPECT_FALSE(Run(Cmd::CopyFilePath));

    const QString path = QDir(TestSupport::MakeTempDir()).filePath(QStringLiteral("named.txt"));
    TestSupport::WriteFile(path, "x");
    m_document->SetPathName(path, false);
    EXPECT_TRUE(State(Cmd::CopyFilePath).enabled);
    EXPECT_TRUE(State(Cmd::OpenContainingFolder).enabled);
    ASSERT_TRUE(Run(Cmd::CopyFilePath));
    EXPECT_EQ(QApplication::clipboard()->text(), QDir::toNativeSeparators(path));
}

TEST_F(EditorViewTest, CommandsOfOtherPartsAreLeftToTheMainFrame)
{
    for (int id : {int(Cmd::FileSave), int(Cmd::EditGoto), int(Cmd::EditFind), int(Cmd::ViewWordWrap)}) {
        EXPECT_FALSE(State(id).handled) << id;
        EXPECT_FALSE(Run(id)) << id;
    }
}

// Commands -----------------------------------------------------------------------------

struct CommandCase
{
    const char* name;
    int id;
    QByteArray text;
    long selStart;
    long selEnd;
    QByteArray expected;
};

std::ostream& operator<<(std::ostream& out, const CommandCase& c)
{
    return out << c.name;
}

class ViewCommandTest : public EditorViewTest, public ::testing::WithParamInterface<CommandCase>
{
};

TEST_P(ViewCommandTest, ChangesTheText)
{
    const CommandCase& c = GetParam();
    SetText(c.text);
    m_editor->SetSel(c.selStart, c.selEnd);
    ASSERT_TRUE(Run(c.id));
    EXPECT_EQ(Text(), c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ViewCommandTest,
    ::testing::Values(
        CommandCase{"upper_case_selection_only", Cmd::EditUpperCase, "abc def", 4, 7, "abc DEF"},
        CommandCase{"upper_case_without_selection_changes_nothing", Cmd::EditUpperCase, "abc def", 2, 2, "abc def"},
        CommandCase{"lower_case_selection_only", Cmd::EditLowerCase, "ABC DEF", 0, 3, "abc DEF"},
        CommandCase{"lower_case_without_selection_changes_nothing", Cmd::EditLowerCase, "ABC", 1, 1, "ABC"},
        CommandCase{"indent_right_without_selection", Cmd::EditIndentRight, "a\nbc", 3, 3, "a\n    bc"},
        CommandCase{"indent_left", Cmd::EditIndentLeft, "        bc", 8, 8, "    bc"},
        CommandCase{"swap_lines", Cmd::EditSwapLines, "one\ntwo", 5, 5, "two\none"},
        CommandCase{"delete_word", Cmd::EditDeleteWord, "hello world", 2, 2, " world"},
        CommandCase{"delete_word_at_its_end", Cmd::EditDeleteWord, "hello world", 11, 11, "hello "},
        CommandCase{"delete_word_with_selection_takes_the_caret_word", Cmd::EditDeleteWord, "one two three", 0, 5,
                    "one  three"},
        CommandCase{"delete_to_end_of_line", Cmd::EditDeleteToEol, "abc\ndef", 1, 1, "a\ndef"},
        CommandCase{"delete_line", Cmd::EditDeleteLine, "abc\ndef\n", 5, 5, "abc\n"},
        CommandCase{"cut_line", Cmd::EditCutLine, "abc\ndef", 1, 1, "def"},
        CommandCase{"tabs_to_spaces", Cmd::EditTabsToSpaces, "a\tb\n\tc\t", 0, 0, "a    b\n    c    "},
        CommandCase{"spaces_to_tabs", Cmd::EditSpacesToTabs, "a    b\n        c  ", 0, 0, "a\tb\n\t\tc  "},
        CommandCase{"trim_trailing", Cmd::EditTrimTrailing, "a  \nb\t \n  c\nd \t", 0, 0, "a\nb\n  c\nd"},
        CommandCase{"trim_crlf", Cmd::EditTrimTrailing, "a \r\nb\r\n", 0, 0, "a\r\nb\r\n"}));

TEST_F(EditorViewTest, WholeDocumentConversionsAreOneUndoStepAndKeepTheCaretLine)
{
    struct Case
    {
        int id;
        QByteArray text;
    };
    for (const Case& c : {Case{Cmd::EditTabsToSpaces, "\ta\n\tb\n\tc\n"}, Case{Cmd::EditSpacesToTabs, "    a\n    b\n    c\n"},
                          Case{Cmd::EditTrimTrailing, "a \nb \nc \n"}}) {
        SetText(c.text);
        m_editor->GotoLine(2);
        ASSERT_TRUE(Run(c.id));
        ASSERT_NE(Text(), c.text) << c.id;
        EXPECT_EQ(m_editor->GetCurrentLine(), 2) << c.id;
        m_editor->Undo();
        EXPECT_EQ(Text(), c.text) << c.id;
        EXPECT_FALSE(m_editor->CanUndo()) << c.id;
    }
}

TEST_F(EditorViewTest, TabsToSpacesUsesTheViewsTabWidth)
{
    ViewSettings settings = m_view->Settings();
    settings.TabWidth = 2;
    m_view->ApplyViewSettings(settings);
    SetText("\tx");
    ASSERT_TRUE(Run(Cmd::EditTabsToSpaces));
    EXPECT_EQ(Text(), "  x");
}

TEST_F(EditorViewTest, EditorSettingsReachTheControl)
{
    m_view->ApplyEditorSettings(true, true, 8, 0x123456, 90);
    EXPECT_EQ(m_editor->SendScintilla(Sci::SCI_GETUSETABS), 1);
    EXPECT_EQ(m_editor->SendScintilla(Sci::SCI_GETTABWIDTH), 8);
    EXPECT_EQ(m_editor->SendScintilla(Sci::SCI_GETINDENT), 8);
    EXPECT_NE(m_editor->SendScintilla(Sci::SCI_GETINDENTATIONGUIDES), 0);
    EXPECT_EQ(m_editor->SendScintilla(Sci::SCI_GETCARETLINEBACK), 0x123456);
    EXPECT_EQ(m_view->Settings().TabWidth, 8);
    EXPECT_EQ(m_view->Settings().TabAsSpaces, 0);
    m_view->ApplyEditorSettings(false, false, 3, 0x123456, 90);
    EXPECT_EQ(m_editor->SendScintilla(Sci::SCI_GETUSETABS), 0);
    EXPECT_EQ(m_editor->SendScintilla(Sci::SCI_GETINDENTATIONGUIDES), 0);
}

TEST_F(EditorViewTest, MatchBracketLightsBracesAsTheCaretMoves)
{
    ViewSettings settings = m_view->Settings();
    settings.MatchBracket = 1;
    m_view->ApplyViewSettings(settings);
    SetText("  {\n  }");
    m_editor->SendScintilla(Sci::SCI_SETHIGHLIGHTGUIDE, 7UL);
    m_editor->GotoPos(3);
    m_view->OnUpdateUi();
    EXPECT_EQ(m_editor->SendScintilla(Sci::SCI_GETHIGHLIGHTGUIDE), 2);

    settings.MatchBracket = 0;
    m_view->ApplyViewSettings(settings);
    EXPECT_EQ(m_editor->SendScintilla(Sci::SCI_GETHIGHLIGHTGUIDE), 0) << "off clears the light";
    m_editor->GotoPos(8);
    m_view->OnUpdateUi();
    EXPECT_EQ(m_editor->SendScintilla(Sci::SCI_GETHIGHLIGHTGUIDE), 0);
}

TEST_F(EditorViewTest, SelectCommands)
{
    SetText("alpha beta\ngamma");
    m_editor->GotoPos(13);
    ASSERT_TRUE(Run(Cmd::EditSelectLine));
    EXPECT_EQ(m_editor->GetSelText(), "gamma") << "the last line to the end of the text";
    m_editor->GotoPos(7);
    ASSERT_TRUE(Run(Cmd::EditSelectWord));
    EXPECT_EQ(m_editor->GetSelText(), "beta");
    ASSERT_TRUE(Run(Cmd::EditSelectAll));
    EXPECT_EQ(m_editor->GetSelectionSize(), m_editor->GetLength());
}

TEST_F(EditorViewTest, FileNameInsertsTheTitleAsItStands)
{
    SetText("");
    const QByteArray title = m_document->GetTitle().toUtf8();
    ASSERT_FALSE(title.isEmpty());
    ASSERT_TRUE(Run(Cmd::EditInsertFileName));
    EXPECT_EQ(Text(), title);
    EXPECT_EQ(m_editor->GetCurrentPos(), 0) << "the caret stays in front";
    EXPECT_TRUE(m_document->IsModified());
    ASSERT_TRUE(m_document->GetTitle().endsWith(QLatin1Char('*')));
    m_editor->GotoPos(m_editor->GetLength());
    const QByteArray before = Text();
    ASSERT_TRUE(Run(Cmd::EditInsertFileName));
    EXPECT_EQ(Text(), before + m_document->GetTitle().toUtf8()) << "with the modified mark";
}

TEST_F(EditorViewTest, BookmarkCommands)
{
    SetText("0\n1\n2\n3\n4");
    m_editor->GotoLine(3);
    ASSERT_TRUE(Run(Cmd::BookmarkToggle));
    m_editor->GotoLine(1);
    ASSERT_TRUE(Run(Cmd::BookmarkToggle));
    ASSERT_TRUE(Run(Cmd::BookmarkNext));
    EXPECT_EQ(m_editor->GetCurrentLine(), 3);
    ASSERT_TRUE(Run(Cmd::BookmarkPrevious));
    EXPECT_EQ(m_editor->GetCurrentLine(), 1);
    ASSERT_TRUE(Run(Cmd::BookmarkClear));
    TestSupport::ModalAnswerer messages;
    ASSERT_TRUE(Run(Cmd::BookmarkNext));
    EXPECT_EQ(messages.Texts(), QStringList{QStringLiteral("No more bookmarks have been found")});
    EXPECT_TRUE(State(Cmd::BookmarkToggle).enabled);
}

// Comment token of the frame's parser -------------------------------------------------------

TEST_F(EditorViewTest, CommentUsesTheFramesParserToken)
{
    SetText("a\nb");
    m_frame->SetParser(0, Parser(QStringLiteral("#"), false));
    m_editor->SelectAll();
    ASSERT_TRUE(Run(Cmd::EditComment));
    EXPECT_EQ(Text(), "# a\n# b");
    m_editor->SelectAll();
    ASSERT_TRUE(Run(Cmd::EditUncomment));
    EXPECT_EQ(Text(), "a\nb");
}

TEST_F(EditorViewTest, WithoutAParserTheCommentTokenIsEmpty)
{
    const QString folder = TestSupport::MakeTempDir();
    CSyntaxParserList empty(folder);
    empty.Load();
    m_frame->SetParserList(&empty);
    m_frame->SetParserIndex(0);
    EXPECT_EQ(m_frame->CommentToken(), QString());
    SetText("a");
    ASSERT_TRUE(Run(Cmd::EditComment));
    EXPECT_EQ(Text(), " a");
}

TEST_F(EditorViewTest, ViewAsChoosesAParserOfTheList)
{
    const QString folder = TestSupport::MakeTempDir();
    const QString definition = QStringLiteral(
        "<?xml version=\"1.0\"?>\n<SYNTAX><PROPERTIES><MENU>%1</MENU><EXTENSION>.x</EXTENSION>"
        "<COMMENT><LINE>%2</LINE></COMMENT><COLOURS><COLOUR STYLE=\"0\" HEXFORE=\"#000000\">Default"
        "</COLOUR></COLOURS></PROPERTIES></SYNTAX>\n");
    TestSupport::WriteFile(QDir(folder).filePath(QStringLiteral("a.config")),
                           definition.arg(QStringLiteral("Alpha"), QStringLiteral("--")).toUtf8());
    TestSupport::WriteFile(QDir(folder).filePath(QStringLiteral("b.config")),
                           definition.arg(QStringLiteral("Beta"), QStringLiteral(";")).toUtf8());
    CSyntaxParserList list(folder);
    list.Load();
    ASSERT_EQ(list.GetCount(), 2);
    m_frame->SetParserList(&list);

    ASSERT_TRUE(Run(Cmd::ViewAsFirst + 1));
    EXPECT_EQ(m_frame->GetParserIndex(), 1);
    EXPECT_EQ(m_frame->CommentToken(), QStringLiteral(";"));
    EXPECT_TRUE(State(Cmd::ViewAsFirst + 1).checked);
    EXPECT_FALSE(State(Cmd::ViewAsFirst).checked);
    EXPECT_FALSE(State(Cmd::ViewAsFirst + 2).enabled);

    ASSERT_TRUE(Run(Cmd::ViewAsFirst + 5)) << "a number past the list is taken and ignored";
    EXPECT_EQ(m_frame->GetParserIndex(), 1);

    // By extension: the first parser that claims it; none leaves the choice alone.
    EXPECT_EQ(m_frame->ApplyParserForExtension(list, QStringLiteral(".X")), 0);
    EXPECT_EQ(m_frame->CommentToken(), QStringLiteral("--"));
    EXPECT_EQ(m_frame->ApplyParserForExtension(list, QStringLiteral(".none")), -1);
    EXPECT_EQ(m_frame->GetParserIndex(), 0);
}

// Notifications ----------------------------------------------------------------------------

TEST_F(EditorViewTest, TypedNewLineIndentsWithTheParsersBraceFlag)
{
    struct Case
    {
        bool autoNest;
        QByteArray expected;
    };
    for (const Case& c : {Case{true, "  if (x) {\n      "}, Case{false, "  if (x) {\n  "}}) {
        m_frame->SetParser(0, Parser(QStringLiteral("//"), c.autoNest));
        SetText("  if (x) {");
        m_editor->SetEOLMode(Sci::SC_EOL_LF);
        m_editor->GotoPos(m_editor->GetLength());
        QTest::keyClick(m_editor, Qt::Key_Return);
        EXPECT_EQ(Text(), c.expected) << c.autoNest;
        EXPECT_EQ(m_editor->GetCurrentPos(), m_editor->GetLength());
    }
}

TEST_F(EditorViewTest, TypedClosingBraceTakesTheIndentOfItsPartner)
{
    m_frame->SetParser(0, Parser(QStringLiteral("//"), true));
    SetText("    {\n        x;\n        ");
    m_editor->GotoPos(m_editor->GetLength());
    QTest::keyClicks(m_editor, QStringLiteral("}"));
    EXPECT_EQ(Text(), "    {\n        x;\n    }");
    // The new line and its indent are separate undo steps.
    m_editor->Undo();
    EXPECT_EQ(Text(), "    {\n        x;\n        }");
}

TEST_F(EditorViewTest, SavePointsSetTheModifiedFlag)
{
    SetText("abc");
    EXPECT_FALSE(m_document->IsModified());
    m_editor->GotoPos(3);
    QTest::keyClicks(m_editor, QStringLiteral("d"));
    EXPECT_TRUE(m_document->IsModified());
    m_editor->Undo();
    EXPECT_FALSE(m_document->IsModified());
}

TEST_F(EditorViewTest, LineNumberMarginFollowsAddedLines)
{
    ViewSettings settings = m_view->Settings();
    settings.LineNumbers = 1;
    settings.FontSize = 16;
    m_view->ApplyViewSettings(settings);
    SetText(QByteArray(9998, '\n'));
    const long four = m_editor->SendScintilla(Sci::SCI_GETMARGINWIDTHN, 1UL);
    m_editor->GotoPos(m_editor->GetLength());
    QTest::keyClick(m_editor, Qt::Key_Return);
    ASSERT_EQ(m_editor->GetLineCount(), 10000);
    const long five = m_editor->SendScintilla(Sci::SCI_GETMARGINWIDTHN, 1UL);
    EXPECT_GT(five, four);
    EXPECT_EQ(five, m_editor->LineNumberMarginWidth());
}

TEST_F(EditorViewTest, UpdateReportsThePositionAndTheSelectionState)
{
    SetText("ab\ncdef");
    QStringList reported;
    QObject::connect(m_view, &CScrivelView::positionChanged, [&](const QString& text) { reported << text; });
    m_editor->SetSel(5, 7);
    m_view->OnUpdateUi();
    ASSERT_FALSE(reported.isEmpty());
    EXPECT_EQ(reported.last(), QStringLiteral("Ln  2 Col  4"));
    EXPECT_TRUE(m_view->HasSelection());
    m_editor->GotoPos(0);
    m_view->OnUpdateUi();
    EXPECT_EQ(reported.last(), QStringLiteral("Ln  1 Col  0"));
    EXPECT_FALSE(m_view->HasSelection());
    EXPECT_EQ(m_frame->StatusText(), QStringLiteral("Ln  1 Col  0"));
}

TEST_F(EditorViewTest, MarginClicksBookmarkAndSelect)
{
    SetText("one\ntwo\nthree");
    const int lineStart = int(m_editor->PositionFromLine(1));
    m_view->OnMarginClick(lineStart, 0, 0);
    EXPECT_TRUE(m_editor->HasBookmark(1));
    m_view->OnMarginClick(lineStart, 0, 0);
    EXPECT_FALSE(m_editor->HasBookmark(1));
    m_view->OnMarginClick(int(m_editor->PositionFromLine(2)), 0, 1);
    EXPECT_EQ(m_editor->GetSelText(), "three");
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
        CSyntaxParser parser = Parser(QStringLiteral("//"), true);
        parser.lexer = QStringLiteral("cpp");
        m_view->ApplyParser(parser);
        SetText("int f() {\n  a;\n  if (b) {\n    c;\n  }\n}\nint g;\n");
        m_editor->SendScintilla(Sci::SCI_COLOURISE, 0UL, -1L);
    }
};

TEST_F(FoldingViewTest, FoldMarginClickFoldsAndRemembersTheLine)
{
    ASSERT_TRUE(m_editor->GetFoldLevel(0) & Sci::SC_FOLDLEVELHEADERFLAG) << "the lexer gave fold levels";
    m_view->OnMarginClick(0, 0, CMFCScintilla::FoldMargin);
    EXPECT_FALSE(m_editor->GetLineVisible(1));
    EXPECT_EQ(m_view->FoldedLines(), QList<long>{0});
    m_view->OnMarginClick(0, 0, CMFCScintilla::FoldMargin);
    EXPECT_TRUE(m_editor->GetLineVisible(1));
    EXPECT_TRUE(m_view->FoldedLines().isEmpty());

    // A line that is no header does nothing.
    m_view->OnMarginClick(int(m_editor->PositionFromLine(1)), 0, CMFCScintilla::FoldMargin);
    EXPECT_TRUE(m_view->FoldedLines().isEmpty());
}

TEST_F(FoldingViewTest, FoldingOffUnfoldsEverything)
{
    m_view->OnMarginClick(int(m_editor->PositionFromLine(2)), 0, CMFCScintilla::FoldMargin);
    m_view->OnMarginClick(0, 0, CMFCScintilla::FoldMargin);
    ASSERT_EQ(m_view->FoldedLines(), (QList<long>{2, 0}));
    m_view->SetFolding(false);
    for (long line = 0; line < m_editor->GetLineCount(); ++line)
        EXPECT_TRUE(m_editor->GetLineVisible(line)) << line;
    EXPECT_TRUE(m_view->FoldedLines().isEmpty());
    EXPECT_EQ(m_editor->SendScintilla(Sci::SCI_GETMARGINSENSITIVEN, 2UL), 0);

    // Clicks on the fold margin are ignored while folding is off.
    m_view->OnMarginClick(0, 0, CMFCScintilla::FoldMargin);
    EXPECT_TRUE(m_editor->GetLineVisible(1));
}

TEST_F(FoldingViewTest, FoldingOffUnfoldsBlocksThatMovedSinceTheyWereFolded)
{
    m_view->OnMarginClick(int(m_editor->PositionFromLine(2)), 0, CMFCScintilla::FoldMargin);
    ASSERT_FALSE(m_editor->GetLineVisible(3));
    m_editor->SendScintilla(Sci::SCI_INSERTTEXT, 0UL, "// one\n// two\n");
    m_editor->SendScintilla(Sci::SCI_COLOURISE, 0UL, -1L);
    ASSERT_FALSE(m_editor->GetLineVisible(5)) << "the folded block moved down two lines";
    m_view->SetFolding(false);
    for (long line = 0; line < m_editor->GetLineCount(); ++line)
        EXPECT_TRUE(m_editor->GetLineVisible(line)) << line;
}

TEST_F(FoldingViewTest, RemovingAFoldedHeaderShowsItsBlock)
{
    m_view->OnMarginClick(0, 0, CMFCScintilla::FoldMargin);
    ASSERT_FALSE(m_editor->GetLineVisible(1));
    // Turning the header into a plain line takes its block away.
    m_editor->SetTargetStart(8);
    m_editor->SetTargetEnd(9);
    m_editor->ReplaceTarget(";");
    m_editor->SendScintilla(Sci::SCI_COLOURISE, 0UL, -1L);
    EXPECT_FALSE(m_editor->GetFoldLevel(0) & Sci::SC_FOLDLEVELHEADERFLAG);
    for (long line = 0; line < m_editor->GetLineCount(); ++line)
        EXPECT_TRUE(m_editor->GetLineVisible(line)) << line;
}

TEST_F(FoldingViewTest, ExpandRangeWithForceShowsOnlyTheGivenLevels)
{
    long line = 0;
    m_view->ExpandRange(line, true, true, 1);
    EXPECT_EQ(line, 6) << "stops behind the block";
    EXPECT_TRUE(m_editor->GetLineVisible(2));
    EXPECT_FALSE(m_editor->GetLineVisible(3)) << "the inner block is closed";
    EXPECT_FALSE(m_editor->GetFoldExpanded(2));
}

// Second view ----------------------------------------------------------------------------

TEST_F(EditorViewTest, SecondWindowSharesTextUndoAndBookmarks)
{
    m_frame->SetParser(0, Parser(QStringLiteral("#"), false));
    SetText("shared\n");
    CScrivelFrame* second = m_frame->OpenNewWindow();
    ASSERT_NE(second, nullptr);
    ASSERT_NE(second, m_frame);
    EXPECT_EQ(m_document->GetFrames().size(), 2);
    CMFCScintilla* other = second->GetView()->GetEditor();
    EXPECT_EQ(other->GetText(), "shared\n");
    EXPECT_EQ(second->GetParserIndex(), 0);
    EXPECT_EQ(second->CommentToken(), QStringLiteral("#"));

    m_editor->GotoPos(6);
    QTest::keyClicks(m_editor, QStringLiteral("!"));
    EXPECT_EQ(other->GetText(), "shared!\n");
    EXPECT_TRUE(other->CanUndo());
    other->Undo();
    EXPECT_EQ(Text(), "shared\n");

    other->ToggleBookmark(1);
    EXPECT_TRUE(m_editor->HasBookmark(1));
    ASSERT_TRUE(Run(Cmd::BookmarkClear));
    EXPECT_FALSE(other->HasBookmark(1));

    // The text outlives the window that goes first.
    delete m_frame;
    m_frame = nullptr;
    EXPECT_EQ(other->GetText(), "shared\n");
    EXPECT_EQ(m_document->GetEditor(), other);
}

TEST_F(EditorViewTest, NewWindowCommandOpensASecondFrame)
{
    ASSERT_TRUE(Run(Cmd::WindowNew));
    EXPECT_EQ(m_document->GetFrames().size(), 2);
}

// Context menu ---------------------------------------------------------------------------

QStringList MenuTexts(const QMenu* menu)
{
    QStringList texts;
    for (QAction* action : menu->actions()) {
        if (action->isSeparator())
            continue;
        if (action->menu())
            texts << action->text() + QStringLiteral(" >") + MenuTexts(action->menu()).join(QLatin1Char(','));
        else
            texts << action->text();
    }
    return texts;
}

TEST_F(EditorViewTest, ContextMenuHoldsTheEditEntries)
{
    SetText("abc");
    std::unique_ptr<QMenu> menu(m_view->CreateContextMenu());
    const QStringList expected{QStringLiteral("Undo"), QStringLiteral("Redo"), QStringLiteral("Cut"),
                               QStringLiteral("Copy"), QStringLiteral("Paste"), QStringLiteral("Delete"),
                               QStringLiteral("Cut Append"), QStringLiteral("Copy Append"),
                               QStringLiteral("Upper Case"), QStringLiteral("Lower Case"),
                               QStringLiteral("Insert >Date,Time,File Name"), QStringLiteral("Select All"),
                               QStringLiteral("Create template from Selection")};
    EXPECT_EQ(MenuTexts(menu.get()), expected);

    // Without a selection the selection commands are greyed.
    for (QAction* action : menu->actions()) {
        if (action->data().toInt() == Cmd::EditCut) {
            EXPECT_FALSE(action->isEnabled());
        }
        if (action->data().toInt() == Cmd::EditSelectAll) {
            EXPECT_TRUE(action->isEnabled());
        }
    }
}

TEST_F(EditorViewTest, ContextMenuEntriesRunTheirCommands)
{
    SetText("abc");
    m_editor->SetSel(0, 3);
    std::unique_ptr<QMenu> menu(m_view->CreateContextMenu());
    for (QAction* action : menu->actions()) {
        if (action->data().toInt() == Cmd::EditUpperCase)
            action->trigger();
    }
    EXPECT_EQ(Text(), "ABC");
}

TEST_F(EditorViewTest, GotoPositionMovesAndShowsTheCaret)
{
    SetText(QByteArray(2000, '\n'));
    m_view->GotoPosition(1500);
    EXPECT_EQ(m_editor->GetCurrentPos(), 1500);
    EXPECT_FALSE(m_editor->HasSelection());
}

} // namespace
