// The workspace's behaviour: where files land, the title and modified mark, the open,
// save and close cycle and its questions, through real files.
#include "explorer/CWorkspace.h"
#include "TestSupport.h"
#include "TreeShape.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

#include <sys/stat.h>

namespace {

class FakePrompts : public IWorkspacePrompts
{
public:
    bool saveBeforeClose = false;
    QString savePath;
    bool confirmDelete = true;
    QStringList messages;
    int closeQuestions = 0;

    bool AskSaveBeforeClose() override { ++closeQuestions; return saveBeforeClose; }
    QString AskSavePath() override { return savePath; }
    bool ConfirmDeleteFolder() override { return confirmDelete; }
    void ShowInformation(const QString& text) override { messages << text; }
    void ShowError(const QString& text) override { messages << text; }
};

class WorkspaceTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_dir = TestSupport::MakeTempDir();
        m_ws.SetPrompts(&m_prompts);
        m_ws.NewWorkspace();
    }
    QString Path(const QString& name) const { return m_dir + QLatin1Char('/') + name; }
    QString TreeShape() const { return Shape(m_ws.Model().Root()); }

    QString m_dir;
    FakePrompts m_prompts;
    CWorkspace m_ws;
};

TEST_F(WorkspaceTest, StartsAsAnUnnamedUnmodifiedProject)
{
    EXPECT_TRUE(m_ws.IsWorkspaceOpen());
    EXPECT_EQ(TreeShape(), "Project");
    EXPECT_FALSE(m_ws.IsModified());
    EXPECT_TRUE(m_ws.GetWorkspacePath().isEmpty());
}

TEST_F(WorkspaceTest, AddedFileLandsUnderTheRootWithNothingSelectedAndMarksModified)
{
    CTreeNode* item = m_ws.AddFile(QStringLiteral("/w/src/a.c"), nullptr, 0, 3);
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(TreeShape(), "Project*[a.c]");
    EXPECT_EQ(item->data, TreeItemData::File("a.c", "/w/src/a.c", 0, 3));
    EXPECT_EQ(item->image, CWorkspace::TextFileImage);
    EXPECT_TRUE(m_ws.IsModified());
    EXPECT_EQ(m_ws.Selected(), m_ws.Root()) << "the folder it went into is selected";
}

TEST_F(WorkspaceTest, FileAddedWhileAFileIsSelectedGoesBesideIt)
{
    CTreeNode* folder = m_ws.AddFolder(m_ws.Root(), QStringLiteral("src"));
    CTreeNode* first = m_ws.AddFile(QStringLiteral("/w/a.c"), folder, 0, 4);
    m_ws.Select(first);
    m_ws.AddFile(QStringLiteral("/w/b.c"), nullptr, 1, 4);
    EXPECT_EQ(TreeShape(), "Project*[src[a.c,b.c]]");
    EXPECT_EQ(folder->children[1]->image, CWorkspace::BinaryFileImage);
}

TEST_F(WorkspaceTest, SamePathInAnotherCaseIsOneItemAndOnlySelectsItsFolder)
{
    CTreeNode* folder = m_ws.AddFolder(m_ws.Root(), QStringLiteral("src"));
    CTreeNode* first = m_ws.AddFile(QStringLiteral("/w/Read.ME"), nullptr, 0, 4);
    m_ws.SetModified(false);
    m_ws.Select(folder);
    EXPECT_EQ(m_ws.AddFile(QStringLiteral("/W/read.me"), nullptr, 0, 4), first);
    EXPECT_EQ(TreeShape(), "Project[src,Read.ME]");
    EXPECT_FALSE(m_ws.IsModified());
    EXPECT_EQ(m_ws.Selected(), folder);
}

TEST_F(WorkspaceTest, AfterCloseAnOpenedFileStartsANewUnnamedWorkspace)
{
    m_ws.CloseWorkspace();
    EXPECT_FALSE(m_ws.IsWorkspaceOpen());
    EXPECT_TRUE(m_ws.Model().IsEmpty());
    m_ws.AddFile(QStringLiteral("/w/a.c"), nullptr, 0, 4);
    EXPECT_TRUE(m_ws.IsWorkspaceOpen());
    EXPECT_EQ(TreeShape(), "Project*[a.c]");
}

TEST_F(WorkspaceTest, NewWorkspaceSavedWithNoFilesHoldsOneNamedNodeAndReplacesAnOldFileWhole)
{
    TestSupport::WriteFile(Path("demo.spf"), QByteArray(4096, 'x'));
    ASSERT_TRUE(m_ws.SaveWorkspace(Path("demo.spf")));
    EXPECT_EQ(TestSupport::ReadFile(Path("demo.spf")),
              R"(<ROOT><NODE label="Project [demo]" pathname="" encoding="4" type="0" folder="1"/></ROOT>)");
    EXPECT_EQ(TreeShape(), "Project [demo]");
    EXPECT_FALSE(m_ws.IsModified());
}

TEST_F(WorkspaceTest, SaveAndOpenGiveTheSameTreeNamedAfterTheFileOnDisk)
{
    CTreeNode* src = m_ws.AddFolder(m_ws.Root(), QStringLiteral("src"));
    m_ws.AddFolder(src, QStringLiteral("empty"));
    m_ws.AddFile(QStringLiteral("/w/a b&c.c"), src, 0, 1);
    m_ws.AddFile(QStringLiteral("/w/data.bin"), m_ws.Root(), 1, 4);
    ASSERT_TRUE(m_ws.SaveWorkspace(Path("one.spf")));
    const QByteArray saved = TestSupport::ReadFile(Path("one.spf"));
    ASSERT_TRUE(QFile::rename(Path("one.spf"), Path("two.spf")));

    CWorkspace reopened;
    reopened.SetPrompts(&m_prompts);
    ASSERT_TRUE(reopened.OpenWorkspace(Path("two.spf")));
    EXPECT_EQ(Shape(reopened.Model().Root()), "Project [two][src[empty,a b&c.c],data.bin]");
    EXPECT_FALSE(reopened.IsModified());
    const CTreeNode* file = reopened.FindItemByPath(QStringLiteral("/w/a b&c.c"));
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(file->data.encoding, 1);
    EXPECT_EQ(reopened.FindItemByPath(QStringLiteral("/w/data.bin"))->data.type, 1);
    // Saving it again under the first name writes the same bytes.
    ASSERT_TRUE(reopened.SaveWorkspace(Path("one.spf")));
    EXPECT_EQ(TestSupport::ReadFile(Path("one.spf")), saved);
}

TEST_F(WorkspaceTest, UnreadableOrMalformedFileLeavesTheOpenWorkspaceAlone)
{
    m_ws.AddFile(QStringLiteral("/w/keep.c"), nullptr, 0, 4);
    ASSERT_TRUE(m_ws.SaveWorkspace(Path("good.spf")));
    m_ws.AddFile(QStringLiteral("/w/more.c"), nullptr, 0, 4);
    TestSupport::WriteFile(Path("bad.spf"), "<ROOT><NODE label=\"x\"></ROOT>");
    TestSupport::WriteFile(Path("other.spf"), "<PROJECT/>");
    // Things that are no files: a pipe would wait for a writer for ever, a device never
    // ends, a link to itself leads nowhere.
    ASSERT_EQ(::mkfifo(QFile::encodeName(Path("pipe.spf")).constData(), 0600), 0);
    ASSERT_TRUE(QFile::link(Path("loop.spf"), Path("loop.spf")));
    const struct
    {
        QString file;
        const char* reason;
    } cases[] = {
        {Path("missing.spf"), "No such file"},
        {Path("bad.spf"), "offset"},
        {Path("other.spf"), "ROOT"},
        {m_dir, "directory"},
        {Path("pipe.spf"), "pipe"},
        {QStringLiteral("/dev/zero"), "device"},
        {Path("loop.spf"), "symbolic links"},
    };
    for (const auto& c : cases) {
        m_prompts.messages.clear();
        EXPECT_FALSE(m_ws.OpenWorkspace(c.file)) << c.file.toStdString();
        ASSERT_EQ(m_prompts.messages.size(), 1);
        EXPECT_TRUE(m_prompts.messages[0].startsWith(
            QStringLiteral("Cannot open workspace \"%1\": ").arg(QDir::toNativeSeparators(c.file))));
        EXPECT_TRUE(m_prompts.messages[0].contains(QLatin1String(c.reason))) << m_prompts.messages[0].toStdString();
        EXPECT_EQ(m_ws.GetWorkspacePath(), Path("good.spf"));
        EXPECT_EQ(TreeShape(), "Project [good]*[keep.c,more.c]");
        EXPECT_EQ(m_prompts.closeQuestions, 0);
    }
}

TEST_F(WorkspaceTest, SaveThatCannotWriteSaysSoAndStaysModified)
{
    m_ws.AddFile(QStringLiteral("/w/a.c"), nullptr, 0, 4);
    const QString target = Path("no/such/folder/w.spf");
    EXPECT_FALSE(m_ws.SaveWorkspace(target));
    ASSERT_EQ(m_prompts.messages.size(), 1);
    EXPECT_TRUE(m_prompts.messages[0].startsWith(
        QStringLiteral("Failed to save the workspace \"%1\": ").arg(QDir::toNativeSeparators(target))));
    EXPECT_TRUE(m_ws.IsModified());
    EXPECT_FALSE(QFile::exists(target));
}

TEST_F(WorkspaceTest, UnnamedSaveAsksForAPathAndCancelChangesNothing)
{
    m_ws.AddFile(QStringLiteral("/w/a.c"), nullptr, 0, 4);
    m_prompts.savePath.clear();
    EXPECT_FALSE(m_ws.SaveWorkspace());
    EXPECT_TRUE(m_ws.IsModified());
    EXPECT_TRUE(m_ws.GetWorkspacePath().isEmpty());

    m_prompts.savePath = Path("asked.spf");
    EXPECT_TRUE(m_ws.SaveWorkspace());
    EXPECT_EQ(m_ws.GetWorkspacePath(), Path("asked.spf"));
    EXPECT_TRUE(QFile::exists(Path("asked.spf")));
}

TEST_F(WorkspaceTest, CloseAsksOnlyWhenModifiedAndSavesOnYes)
{
    m_ws.CloseWorkspace();
    EXPECT_EQ(m_prompts.closeQuestions, 0);

    m_ws.NewWorkspace();
    m_ws.AddFile(QStringLiteral("/w/a.c"), nullptr, 0, 4);
    m_prompts.saveBeforeClose = true;
    m_prompts.savePath = Path("closing.spf");
    m_ws.CloseWorkspace();
    EXPECT_EQ(m_prompts.closeQuestions, 1);
    EXPECT_TRUE(TestSupport::ReadFile(Path("closing.spf")).contains("pathname=\"/w/a.c\""));
    EXPECT_FALSE(m_ws.IsWorkspaceOpen());
    EXPECT_TRUE(m_ws.GetWorkspacePath().isEmpty());
}

TEST_F(WorkspaceTest, DeleteFolderRefusesTheRootAndAsksForAFolderWithContent)
{
    m_ws.Select(m_ws.Root());
    m_ws.DeleteFolder();
    EXPECT_EQ(m_prompts.messages, QStringList{"The project folder cannot be deleted."});

    CTreeNode* full = m_ws.AddFolder(m_ws.Root(), QStringLiteral("full"));
    m_ws.AddFile(QStringLiteral("/w/a.c"), full, 0, 4);
    m_ws.SetModified(false);
    m_ws.Select(full);
    m_prompts.confirmDelete = false;
    m_ws.DeleteFolder();
    EXPECT_EQ(TreeShape(), "Project[full[a.c]]");
    m_prompts.confirmDelete = true;
    m_ws.DeleteFolder();
    EXPECT_EQ(TreeShape(), "Project*");
    EXPECT_EQ(m_ws.FindItemByPath(QStringLiteral("/w/a.c")), nullptr) << "the index forgets removed items";
    // The same path may then come back.
    EXPECT_NE(m_ws.AddFile(QStringLiteral("/w/a.c"), nullptr, 0, 4), nullptr);
}

TEST_F(WorkspaceTest, RemoveTakesTheItemAndItsSubtreeButNeverTheRoot)
{
    CTreeNode* folder = m_ws.AddFolder(m_ws.Root(), QStringLiteral("f"));
    m_ws.AddFile(QStringLiteral("/w/x.c"), folder, 0, 4);
    m_ws.SetModified(false);
    m_ws.Select(m_ws.Root());
    m_ws.RemoveSelected();
    EXPECT_EQ(TreeShape(), "Project[f[x.c]]");
    m_ws.Select(folder);
    m_ws.RemoveSelected();
    EXPECT_EQ(TreeShape(), "Project*");
    EXPECT_EQ(m_ws.Selected(), nullptr);
}

TEST_F(WorkspaceTest, NewFolderCommandGoesUnderTheSelectedFolderAndAsksForItsName)
{
    CTreeNode* editing = nullptr;
    QObject::connect(&m_ws, &CWorkspace::editRequested, [&](CTreeNode* n) { editing = n; });
    CTreeNode* made = m_ws.AddNewFolder();
    EXPECT_EQ(editing, made);
    EXPECT_EQ(made->Parent(), m_ws.Root()) << "nothing selected: under the root, not beside it";
    EXPECT_EQ(made->data, TreeItemData::Folder("New Folder"));
    EXPECT_TRUE(m_ws.IsModified());

    CTreeNode* file = m_ws.AddFile(QStringLiteral("/w/a.c"), made, 0, 4);
    m_ws.Select(file);
    EXPECT_EQ(m_ws.AddNewFolder()->Parent(), made);
}

TEST_F(WorkspaceTest, LabelChangeKeepsTheRestOfTheRecord)
{
    CTreeNode* folder = m_ws.AddFolder(m_ws.Root(), QStringLiteral("old"));
    m_ws.SetItemLabel(folder, QStringLiteral("new"), false);
    EXPECT_EQ(folder->text, "new");
    EXPECT_EQ(folder->data.label, "old");
    m_ws.SetItemLabel(folder, QStringLiteral("newer"), true);
    EXPECT_EQ(folder->data, TreeItemData::Folder("newer"));
}

} // namespace
