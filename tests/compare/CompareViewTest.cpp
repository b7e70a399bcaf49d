#include "compare/CCompareCommands.h"
#include "compare/CCompareDoc.h"
#include "compare/CCompareFrame.h"
#include "compare/CCompareView.h"
#include "compare/CComparePane.h"
#include "framework/CommandIds.h"
#include "settings/CRegistryStore.h"
#include "shell/CCommandRegistry.h"
#include "shell/CMenuPlaces.h"

#include "CFakeShell.h"
#include "MenuTexts.h"
#include "TestSupport.h"

#include <QMenu>
#include <QMessageBox>
#include <gtest/gtest.h>

using TestSupport::ReadFile;
using TestSupport::WriteFile;

namespace {

class CompareViewTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        TestSupport::ClearSettings();
        m_dir = TestSupport::MakeTempDir();
        InstallCompare(shell);
    }
    void TearDown() override
    {
        for (CChildFrame* frame : shell.ChildFrames())
            delete frame;
    }
    QString Path(const QString& name) const { return m_dir + QLatin1Char('/') + name; }
    CCompareView* Compare(const QByteArray& left, const QByteArray& right,
                          const QString& leftName = QStringLiteral("a.txt"),
                          const QString& rightName = QStringLiteral("b.txt"))
    {
        WriteFile(Path(leftName), left);
        WriteFile(Path(rightName), right);
        CCompareFrame* frame = OpenCompare(shell, Path(leftName), Path(rightName));
        if (!frame)
            return nullptr;
        frame->View()->WaitForCompare();
        return frame->View();
    }
    static int Rows(CComparePane* pane)
    {
        // Display rows of the whole text, filler rows included.
        return pane->RowOfLine(pane->LineCount());
    }
    static bool HasMarker(CComparePane* pane, int line, int marker)
    {
        return (pane->SendScintilla(QsciScintillaBase::SCI_MARKERGET, static_cast<unsigned long>(line)) >> marker) & 1;
    }

    CFakeShell shell;
    QString m_dir;
};

TEST_F(CompareViewTest, OpensATabTitledByBothNamesWithTheDifferencesLaidOut)
{
    CCompareView* view = Compare("one\ntwo\nthree\nfour\n", "one\nTWO\nthree\nnew 1\nnew 2\nfour\n");
    ASSERT_TRUE(view);
    ASSERT_EQ(shell.ChildFrames().size(), 1);
    EXPECT_EQ(shell.ChildFrames().first()->GetDocument()->GetTitle(), QStringLiteral("a.txt <-> b.txt"));
    EXPECT_EQ(view->DifferenceCount(), 2);
    CComparePane* left = view->Pane(0);
    CComparePane* right = view->Pane(1);
    EXPECT_TRUE(HasMarker(left, 1, CComparePane::ChangedMarker));
    EXPECT_TRUE(HasMarker(right, 1, CComparePane::ChangedMarker));
    EXPECT_TRUE(HasMarker(right, 3, CComparePane::InsertedMarker));
    EXPECT_FALSE(HasMarker(left, 3, CComparePane::ChangedMarker));
    // Two filler rows under "three" keep "four" level on both sides.
    EXPECT_EQ(left->SendScintilla(QsciScintillaBase::SCI_ANNOTATIONGETLINES, 2UL), 2);
    EXPECT_EQ(left->RowOfLine(3), right->RowOfLine(5));
    EXPECT_EQ(Rows(left), Rows(right));
    // The changed letters are marked, the rest of the line is not.
    const long lineStart = right->SendScintilla(QsciScintillaBase::SCI_POSITIONFROMLINE, 1UL);
    EXPECT_NE(right->SendScintilla(QsciScintillaBase::SCI_INDICATORVALUEAT, CComparePane::ChangeIndicator, lineStart), 0);
    EXPECT_EQ(view->StatusText(), QStringLiteral("Difference 1 of 2"));
}

TEST_F(CompareViewTest, EverySideShowsTheSameNumberOfRows)
{
    const std::pair<QByteArray, QByteArray> cases[] = {
        {"a\nb\nc\n", "x\ny\na\nb\nc\n"},    // insertion at the top
        {"a\nb\nc\n", "a\nb\nc\nd\ne\n"},    // at the end
        {"a\nb\nc\nd\n", "d\n"},             // deletion at the top
        {"", "a\nb\n"},                      // one side empty
        {"a\r\nb\r\n", "a\nb\n"},            // CRLF against LF
        {"1\n2\n3\n4\n5\n6\n", "1\n2x\n3\n5\n6\n7\n8\n"},
    };
    for (const auto& [left, right] : cases) {
        CCompareView* view = Compare(left, right);
        ASSERT_TRUE(view);
        EXPECT_EQ(Rows(view->Pane(0)), Rows(view->Pane(1))) << left.constData() << "|" << right.constData();
        EXPECT_GT(view->DifferenceCount(), 0);
    }
}

TEST_F(CompareViewTest, CopyingEveryDifferenceAcrossAndSavingGivesTheSameBytes)
{
    const std::pair<QByteArray, QByteArray> cases[] = {
        {"one\ntwo\nthree\n", "one\n2\nthree\nfour\n"},
        {"a\r\nb\r\nc\r\n", "a\r\nB\r\nc\r\nd\r\n"},
        {"x\ny", "x\nz\nw"},                        // no final line end
        {"head\n", "head\ntail without end"},
        {"a\nb\nc\n", ""},
        {"", "a\nb\n"},
        {"same\nsame\nsame\n", "same\nother\nsame\nsame\nsame\n"},
    };
    for (int target : {0, 1}) {
        for (const auto& [left, right] : cases) {
            CCompareView* view = Compare(left, right);
            ASSERT_TRUE(view);
            for (int guard = 0; guard < 20 && view->DifferenceCount() > 0; ++guard) {
                view->GoToDifference(0);
                ASSERT_TRUE(view->CanCopyTo(target));
                view->CopyTo(target);
                view->WaitForCompare();
            }
            EXPECT_EQ(view->DifferenceCount(), 0);
            EXPECT_TRUE(shell.ChildFrames().last()->GetDocument()->IsModified());
            ASSERT_TRUE(view->SaveModifiedSides());
            EXPECT_EQ(ReadFile(Path(QStringLiteral("a.txt"))), ReadFile(Path(QStringLiteral("b.txt"))))
                << "to " << target << ": " << left.constData() << "|" << right.constData();
            EXPECT_EQ(ReadFile(Path(target == 0 ? QStringLiteral("b.txt") : QStringLiteral("a.txt"))),
                      target == 0 ? right : left);
        }
    }
}

TEST_F(CompareViewTest, SavesAnEditedSideInItsOwnEncoding)
{
    struct Case
    {
        QByteArray before, after;
    };
    // The first line reads the same on both sides once decoded: only the second differs.
    const Case cases[] = {
        {QByteArray("\xff\xfe" "c\0a\0f\0\xe9\0\n\0b\0\n\0", 16),
         QByteArray("\xff\xfe" "c\0a\0f\0\xe9\0\n\0c\0\n\0\xac\x20\n\0", 20)},
        {QByteArray("caf\xe9\nb\n"), QByteArray("caf\xe9\nc\n\x80\n")}, // "Ansi", windows-1252
    };
    for (const Case& c : cases) {
        CCompareView* view = Compare(c.before, "caf\xc3\xa9\nc\n\xe2\x82\xac\n", QStringLiteral("left.txt"),
                                     QStringLiteral("b.txt"));
        ASSERT_TRUE(view);
        EXPECT_EQ(view->DifferenceCount(), 1) << c.before.toStdString();
        view->GoToDifference(0);
        view->CopyTo(0);
        view->WaitForCompare();
        ASSERT_TRUE(view->SaveModifiedSides());
        EXPECT_EQ(ReadFile(Path(QStringLiteral("left.txt"))), c.after);
    }
}

TEST_F(CompareViewTest, EditsAreComparedAgainAfterAPause)
{
    CCompareView* view = Compare("a\nb\n", "a\nb\n");
    ASSERT_TRUE(view);
    EXPECT_EQ(view->DifferenceCount(), 0);
    EXPECT_EQ(view->StatusText(), QStringLiteral("The files are identical."));
    EXPECT_TRUE(shell.statusMessages.contains(QStringLiteral("The files are identical.")));
    view->Pane(1)->SendScintilla(QsciScintillaBase::SCI_INSERTTEXT, 0UL, "new\n");
    view->WaitForCompare();
    EXPECT_EQ(view->DifferenceCount(), 1);
    EXPECT_TRUE(shell.ChildFrames().first()->GetDocument()->GetTitle().endsWith(QLatin1Char('*')));
}

TEST_F(CompareViewTest, StepsThroughDifferencesWithTheCommands)
{
    CCompareView* view = Compare("1\n2\n3\n4\n5\n6\n7\n", "1\nX\n3\n4\nY\n6\n7\nZ\n");
    ASSERT_TRUE(view);
    ASSERT_EQ(view->DifferenceCount(), 3);
    EXPECT_EQ(view->CurrentDifference(), 0);
    CCommandRegistry& commands = shell.Commands();
    commands.Execute(Cmd::CompareNextDifference);
    EXPECT_EQ(view->CurrentDifference(), 1);
    commands.Execute(Cmd::CompareNextDifference);
    EXPECT_EQ(view->CurrentDifference(), 2);
    EXPECT_FALSE(commands.State(Cmd::CompareNextDifference).enabled);
    commands.Execute(Cmd::ComparePreviousDifference);
    EXPECT_EQ(view->CurrentDifference(), 1);
    EXPECT_EQ(view->Pane(1)->CaretLine(), 4);
    EXPECT_EQ(commands.Shortcut(Cmd::CompareNextDifference), QKeySequence(Qt::Key_F8));
}

TEST_F(CompareViewTest, SwapPutsTheRightFileOnTheLeft)
{
    CCompareView* view = Compare("left\n", "right\n");
    ASSERT_TRUE(view);
    shell.Commands().Execute(Cmd::CompareSwapSides);
    view->WaitForCompare();
    EXPECT_EQ(shell.ChildFrames().first()->GetDocument()->GetTitle(), QStringLiteral("b.txt <-> a.txt"));
    EXPECT_EQ(view->Pane(0)->Text(), QByteArray("right\n"));
}

TEST_F(CompareViewTest, OptionsAreRememberedAndRecompareEveryTab)
{
    CCompareView* view = Compare("Hello  World\n", "hello world\n");
    ASSERT_TRUE(view);
    EXPECT_EQ(view->DifferenceCount(), 1);
    shell.Commands().Execute(Cmd::CompareIgnoreWhitespace);
    shell.Commands().Execute(Cmd::CompareIgnoreCase);
    view->WaitForCompare();
    EXPECT_EQ(view->DifferenceCount(), 0);
    EXPECT_TRUE(shell.Commands().State(Cmd::CompareIgnoreCase).checked);
    Q_EMIT shell.Events().saveSettings();
    CRegistryStore store;
    EXPECT_EQ(store.GetProfileInt(QStringLiteral("Compare"), QStringLiteral("IgnoreWhitespace"), 0), 1);
    EXPECT_EQ(store.GetProfileInt(QStringLiteral("Compare"), QStringLiteral("IgnoreCase"), 0), 1);
}

TEST_F(CompareViewTest, BinaryFilesAreComparedAsBytesAndOfferedToTheHexView)
{
    WriteFile(Path(QStringLiteral("a.bin")), QByteArray("\x7f" "ELF\0\0\x01\x02\x03", 9));
    WriteFile(Path(QStringLiteral("b.bin")), QByteArray("\x7f" "ELF\0\0\x01\x09\x03", 9));
    TestSupport::ModalAnswerer yes(QMessageBox::Yes);
    EXPECT_EQ(OpenCompare(shell, Path(QStringLiteral("a.bin")), Path(QStringLiteral("b.bin"))), nullptr);
    ASSERT_EQ(yes.Texts().size(), 1);
    EXPECT_TRUE(yes.Texts().first().contains(QStringLiteral("0x7"))) << yes.Texts().first().toStdString();
    ASSERT_EQ(shell.openedOptions.size(), 2);
    EXPECT_EQ(shell.openedOptions[0].mode, int(OpenOptions::Hex));
    EXPECT_TRUE(shell.ChildFrames().isEmpty());
}

TEST_F(CompareViewTest, AMissingFileIsNamedAndOpensNothing)
{
    WriteFile(Path(QStringLiteral("a.txt")), "x\n");
    TestSupport::ModalAnswerer ok;
    EXPECT_EQ(OpenCompare(shell, Path(QStringLiteral("a.txt")), Path(QStringLiteral("gone.txt"))), nullptr);
    ASSERT_EQ(ok.Texts().size(), 1);
    EXPECT_TRUE(ok.Texts().first().contains(QStringLiteral("gone.txt")));
    EXPECT_TRUE(shell.ChildFrames().isEmpty());
}

TEST_F(CompareViewTest, CompareWithSavedShowsTheUnsavedTextBesideTheFile)
{
    // Both compares sit in the File menu; without a document there is nothing to compare.
    const QStringList file = MenuTexts(shell.Menus().Menu(MenuId::File)->actions());
    EXPECT_TRUE(file.contains(QStringLiteral("Compare &Files...")));
    EXPECT_TRUE(file.contains(QStringLiteral("Co&mpare with Saved")));
    EXPECT_FALSE(shell.Commands().State(Cmd::CompareWithSaved).enabled);
    const QString path = Path(QStringLiteral("doc.txt"));
    WriteFile(path, "saved line\nsecond\n");
    auto* document = new CDocument;
    document->SetPathName(path, false);
    auto* frame = new CChildFrame(document);
    auto* control = new QsciScintillaBase(frame);
    frame->setWidget(control);
    control->SendScintilla(QsciScintillaBase::SCI_SETCODEPAGE, static_cast<unsigned long>(QsciScintillaBase::SC_CP_UTF8));
    control->SendScintilla(QsciScintillaBase::SCI_SETTEXT, "typed line\nsecond\n");
    shell.AddChildFrame(frame);
    EXPECT_TRUE(shell.Commands().State(Cmd::CompareWithSaved).enabled);
    shell.Commands().Execute(Cmd::CompareWithSaved);
    auto* compare = qobject_cast<CCompareFrame*>(shell.ActiveChild());
    ASSERT_TRUE(compare);
    compare->View()->WaitForCompare();
    EXPECT_EQ(compare->View()->DifferenceCount(), 1);
    EXPECT_EQ(compare->View()->Pane(0)->Text(), QByteArray("saved line\nsecond\n"));
    // The unsaved side is the editor's text, not a file: it can't be written from here.
    EXPECT_TRUE(compare->View()->Pane(1)->IsReadOnly());
    EXPECT_FALSE(compare->View()->CanCopyTo(1));
    document->setParent(frame); // goes with the frame at the end
}

} // namespace
