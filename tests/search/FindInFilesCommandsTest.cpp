#include "app/CMainFrame.h"
#include "app/CMorvaneApp.h"
#include "framework/CommandIds.h"
#include "editor/CMFCScintilla.h"
#include "editor/CScrivelDoc.h"
#include "search/CFindInFilesCommands.h"
#include "search/CFindInFilesRunner.h"
#include "tools/COutputBarCommands.h"
#include <QDockWidget>
#include "TestSupport.h"

#include <QAction>
#include <QDir>
#include <QSignalSpy>
#include <QStringEncoder>
#include <QTest>
#include <QThread>
#include <gtest/gtest.h>

namespace {

class FindInFilesCommandsTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        App()->Shutdown();
        TestSupport::ClearSettings();
        m_dir = TestSupport::MakeTempDir();
        ASSERT_TRUE(App()->InitInstance({}));
        m_commands = CFindInFilesCommands::Of(*CMorvaneApp::MainFrame());
        m_bar = COutputBarCommands::Of(*CMorvaneApp::MainFrame())->Dock();
    }
    void TearDown() override { App()->Shutdown(); }
    static CMorvaneApp* App() { return CMorvaneApp::Instance(); }

    // Searches the folder and waits for the end.
    void Search(const QString& text)
    {
        FindInFilesOptions options;
        options.folder = m_dir;
        options.text = text;
        options.subFolders = true;
        QSignalSpy finished(m_commands->Runner(), &CFindInFilesRunner::finished);
        ASSERT_TRUE(m_commands->Runner()->start(options));
        ASSERT_TRUE(finished.wait(10000));
    }

    QString m_dir;
    CFindInFilesCommands* m_commands = nullptr;
    QDockWidget* m_bar = nullptr;
};

TEST_F(FindInFilesCommandsTest, TheOutputBarFollowsItsCommand)
{
    CMainFrame* frame = CMorvaneApp::MainFrame();
    QAction* toggle = frame->Action(Cmd::ViewOutputBar);
    ASSERT_NE(toggle, nullptr);
    const bool before = m_bar->isVisible();
    frame->OnCommand(Cmd::ViewOutputBar);
    EXPECT_NE(m_bar->isVisible(), before);
    frame->UpdateCommandUI();
    EXPECT_EQ(toggle->isChecked(), m_bar->isVisible());
    EXPECT_NE(frame->Action(Cmd::FindInFiles), nullptr);
}

TEST_F(FindInFilesCommandsTest, AResultOpensItsFileAtTheLineAndColumn)
{
    // UTF-16 on disk, so the column must be counted in the decoded text.
    const QString path = QDir(m_dir).filePath(QStringLiteral("sub/wide.txt"));
    QStringEncoder encoder(QStringConverter::Utf16LE, QStringConverter::Flag::WriteBom);
    TestSupport::WriteFile(path, encoder.encode(QString::fromUtf8("first\nsecond\n\xC3\xA9\xC3\xA9 needle here\n")));
    Search(QStringLiteral("needle"));
    m_commands->OpenLocation(path, 3, 3);
    auto* document = qobject_cast<CScrivelDoc*>(CMorvaneApp::MainFrame()->ActiveChild()->GetDocument());
    ASSERT_NE(document, nullptr);
    EXPECT_EQ(document->GetPathName(), path);
    CMFCScintilla* editor = document->GetEditor();
    EXPECT_EQ(editor->GetCurrentLine(), 2);
    EXPECT_EQ(editor->GetColumn(editor->GetSelectionStart()), 3);
    EXPECT_EQ(editor->GetSelText(), QByteArray("needle")) << "the match is selected";

    // The second time the open document is only brought forward, and the caret moves.
    editor->GotoPos(0);
    m_commands->OpenLocation(path, 2, 1);
    EXPECT_EQ(CMorvaneApp::MainFrame()->ChildFrames().size(), 2) << "Untitled1 and the file, no copy";
    EXPECT_EQ(editor->GetCurrentLine(), 1);
    EXPECT_EQ(editor->GetColumn(), 1);
    EXPECT_FALSE(editor->HasSelection()) << "no match starts there";
}

} // namespace

namespace {

// Replace in Files end to end: an open document changes in its editor (undoable), a
// closed UTF-16 file on disk in its own encoding, a file changed after the preview stays.
TEST_F(FindInFilesCommandsTest, ReplaceInFilesReachesOpenAndClosedFiles)
{
    const QDir dir(m_dir);
    const QString openPath = dir.filePath(QStringLiteral("open.txt"));
    const QString widePath = dir.filePath(QStringLiteral("wide.txt"));
    const QString changedPath = dir.filePath(QStringLiteral("changed.txt"));
    TestSupport::WriteFile(openPath, "old one\nold two\n");
    QStringEncoder encoder(QStringConverter::Utf16BE, QStringConverter::Flag::WriteBom);
    TestSupport::WriteFile(widePath, encoder.encode(QStringLiteral("x old\r\n")));
    TestSupport::WriteFile(changedPath, "old\n");
    auto* document = qobject_cast<CScrivelDoc*>(CMorvaneApp::MainFrame()->OpenPath(openPath));
    ASSERT_NE(document, nullptr);

    FindInFilesOptions options;
    options.folder = m_dir;
    options.text = QStringLiteral("old");
    const QList<FindInFilesMatch> matches = m_commands->CollectMatches(options);
    EXPECT_EQ(matches.size(), 4);
    QHash<QString, FileStamp> previewed;
    for (const QString& path : {openPath, widePath, changedPath})
        previewed.insert(path, FileStamp::Of(path));
    QThread::msleep(5);
    TestSupport::WriteFile(changedPath, "old, and changed\n");

    const QList<FindInFilesMatch> rows =
        m_commands->ApplyReplacement(options, QStringLiteral("new"), {openPath, widePath, changedPath}, previewed);
    ASSERT_EQ(rows.size(), 3);
    EXPECT_EQ(rows[0].text, QStringLiteral("2 occurrence(s) replaced in the open document"));
    EXPECT_EQ(rows[1].text, QStringLiteral("1 occurrence(s) replaced"));
    EXPECT_EQ(rows[2].text, QStringLiteral("skipped: the file changed since the preview"));

    CMFCScintilla* editor = document->GetEditor();
    EXPECT_EQ(editor->GetText(), QByteArray("new one\nnew two\n"));
    EXPECT_EQ(TestSupport::ReadFile(openPath), QByteArray("old one\nold two\n")) << "saved only by the user";
    editor->Undo();
    EXPECT_EQ(editor->GetText(), QByteArray("old one\nold two\n")) << "one undo step";
    QStringEncoder again(QStringConverter::Utf16BE, QStringConverter::Flag::WriteBom);
    EXPECT_EQ(TestSupport::ReadFile(widePath), QByteArray(again.encode(QStringLiteral("x new\r\n"))));
    EXPECT_EQ(TestSupport::ReadFile(changedPath), QByteArray("old, and changed\n"));
}

} // namespace
