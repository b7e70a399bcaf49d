#include "CFakeShell.h"
#include "TestSupport.h"
#include "TextDocuments.h"
#include "editor/CMFCScintilla.h"
#include "editor/CScrivelDoc.h"
#include "editor/CScrivelFrame.h"
#include "editor/DocumentFormat.h"
#include "framework/CDocTemplate.h"
#include "framework/CommandIds.h"
#include "framework/OpenOptions.h"
#include "DocumentCleanup.h"

#include <QAction>
#include <QDir>
#include <QLabel>
#include <QMenu>
#include <QTest>
#include <gtest/gtest.h>
#include <memory>

namespace {

// The line-end commands and the status panes in a stand-in window, over real files.
class DocumentFormatTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_dir = TestSupport::MakeTempDir();
        m_template = TextDocuments::MakeTemplate(&m_options);
        InstallDocumentFormat(m_shell);
    }
    void TearDown() override
    {
        m_shell.ActivateChild(nullptr);
        DocumentCleanup::DeleteAll(*m_template);
    }
    CScrivelDoc* Open(const QString& name, const QByteArray& bytes)
    {
        const QString path = QDir(m_dir).filePath(name);
        TestSupport::WriteFile(path, bytes);
        m_options = TextDocuments::Probed(path);
        auto* document = static_cast<CScrivelDoc*>(m_template->OpenDocumentFile(path, false));
        if (document) {
            Q_EMIT m_shell.Events().documentCreated(document);
            m_shell.ActivateChild(document->GetFrames().first());
        }
        return document;
    }
    QString Pane(const char* name) const
    {
        auto* label = const_cast<CFakeShell&>(m_shell).Window()->findChild<QLabel*>(QLatin1String(name));
        return label ? label->text() : QStringLiteral("<no pane>");
    }
    bool Checked(int id)
    {
        m_shell.Commands().UpdateAll();
        return m_shell.Commands().Action(id)->isChecked();
    }

    CFakeShell m_shell;
    QString m_dir;
    OpenOptions m_options;
    std::unique_ptr<CDocTemplate> m_template;
};

TEST_F(DocumentFormatTest, StatusPanesFollowTheActiveDocument)
{
    CScrivelDoc* ansi = Open(QStringLiteral("a.txt"), "caf\xE9\r\nx\r\n");
    ASSERT_NE(ansi, nullptr);
    EXPECT_EQ(Pane("EncodingPane"), QStringLiteral("Ansi"));
    EXPECT_EQ(Pane("LineEndingPane"), QStringLiteral("CRLF"));
    CScrivelDoc* wide = Open(QStringLiteral("w.txt"), QByteArray("\xFE\xFF\0a\0\n", 6));
    ASSERT_NE(wide, nullptr);
    EXPECT_EQ(Pane("EncodingPane"), QStringLiteral("Unicode (Big Endian)"));
    EXPECT_EQ(Pane("LineEndingPane"), QStringLiteral("LF"));
    m_shell.ActivateChild(ansi->GetFrames().first());
    EXPECT_EQ(Pane("EncodingPane"), QStringLiteral("Ansi"));
}

TEST_F(DocumentFormatTest, SelectionPaneCountsCharactersAndLines)
{
    CScrivelDoc* document = Open(QStringLiteral("s.txt"), "caf\xC3\xA9 one\ntwo\nthree\n");
    ASSERT_NE(document, nullptr);
    CMFCScintilla* editor = document->GetEditor();
    EXPECT_EQ(Pane("SelectionPane"), QString());
    // From inside the accented word to the middle of the second line: é counts once.
    document->GetFrames().first()->show(); // the control tells of selection changes as it paints
    editor->SetSel(2, 12);
    ASSERT_TRUE(QTest::qWaitFor([this] { return !Pane("SelectionPane").isEmpty(); }, 5000));
    EXPECT_EQ(Pane("SelectionPane"), QStringLiteral("Sel: 9 | 2"));
}

// Reopening in another encoding reads the same bytes again: a UTF-8 file read as "Ansi"
// shows its two bytes per accent, and back as UTF-8 the file is unchanged on disk.
TEST_F(DocumentFormatTest, ReopenWithEncodingReadsTheFileAgain)
{
    const QByteArray bytes("caf\xC3\xA9\n");
    CScrivelDoc* document = Open(QStringLiteral("r.txt"), bytes);
    ASSERT_NE(document, nullptr);
    ASSERT_TRUE(document->ReopenWithEncoding(TextEncoding::Utf8));
    EXPECT_EQ(document->GetEditor()->GetText(), bytes);
    ASSERT_TRUE(document->ReopenWithEncoding(TextEncoding::Ansi));
    EXPECT_EQ(Pane("EncodingPane"), QStringLiteral("Ansi"));
    EXPECT_EQ(document->GetEditor()->GetText(), QString::fromLatin1(bytes).toUtf8());
    EXPECT_FALSE(document->IsModified());
    ASSERT_TRUE(document->ReopenWithEncoding(TextEncoding::Utf8));
    EXPECT_EQ(document->GetEditor()->GetText(), bytes);
    EXPECT_EQ(TestSupport::ReadFile(document->GetPathName()), bytes);
}

struct ConvertCase
{
    const char* name;
    int command;
    int mode;
    const char* expected;
    const char* pane;
};

class ConvertCommand : public DocumentFormatTest, public ::testing::WithParamInterface<ConvertCase>
{
};

TEST_P(ConvertCommand, ConvertsTheTextAndShowsTheNewMode)
{
    const ConvertCase& c = GetParam();
    const QByteArray mixed("a\r\nb\nc\rd\r\n\n");
    CScrivelDoc* document = Open(QStringLiteral("mixed.txt"), mixed);
    ASSERT_NE(document, nullptr);
    CMFCScintilla* editor = document->GetEditor();
    EXPECT_TRUE(Checked(Cmd::ConvertToWindows));
    m_shell.Commands().Execute(c.command);
    EXPECT_EQ(editor->GetText(), QByteArray(c.expected));
    EXPECT_EQ(Pane("LineEndingPane"), QString::fromLatin1(c.pane));
    EXPECT_TRUE(Checked(c.command));
    EXPECT_EQ(document->LineEnding, c.mode);
    EXPECT_EQ(editor->GetEOLMode(), c.mode) << "lines typed from now on";
    editor->Undo();
    EXPECT_EQ(editor->GetText(), mixed) << "one undo brings every line end back";
    EXPECT_FALSE(document->IsModified());
    editor->Redo();
    ASSERT_TRUE(document->DoFileSave());
    EXPECT_EQ(TestSupport::ReadFile(document->GetPathName()), QByteArray(c.expected));
}

INSTANTIATE_TEST_SUITE_P(Modes, ConvertCommand, ::testing::Values(
    ConvertCase{"windows", Cmd::ConvertToWindows, CMFCScintilla::SC_EOL_CRLF, "a\r\nb\r\nc\r\nd\r\n\r\n", "CRLF"},
    ConvertCase{"unix", Cmd::ConvertToUnix, CMFCScintilla::SC_EOL_LF, "a\nb\nc\nd\n\n", "LF"},
    ConvertCase{"macintosh", Cmd::ConvertToMacintosh, CMFCScintilla::SC_EOL_CR, "a\rb\rc\rd\r\r", "CR"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(DocumentFormatTest, SubmenuOfEditHoldsTheThreeModes)
{
    QMenu* menu = m_shell.Menus().Menu(QStringLiteral("Edit.LineEndings"));
    ASSERT_NE(menu, nullptr);
    QStringList texts;
    for (QAction* action : menu->actions())
        if (!action->isSeparator())
            texts << action->text();
    EXPECT_EQ(texts, QStringList({QStringLiteral("&Windows (CRLF)"), QStringLiteral("&Unix (LF)"),
                                  QStringLiteral("&Macintosh (CR)")}));
    m_shell.Commands().UpdateAll();
    EXPECT_FALSE(m_shell.Commands().Action(Cmd::ConvertToUnix)->isEnabled()) << "no document";
}

} // namespace
