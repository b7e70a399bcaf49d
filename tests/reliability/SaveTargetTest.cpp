// What a save finds where the file used to be: a folder, a link, a file with its own
// permissions and owner, a mount that turned read-only.
#include "DocumentFixture.h"
#include "FaultInjector.h"

#include <QFile>
#include <QFileInfo>
#include <QMessageBox>

#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using SaveTarget = DocumentFixture;

struct stat Stat(const QString& path)
{
    struct stat info {};
    EXPECT_EQ(::lstat(QFile::encodeName(path).constData(), &info), 0) << path.toStdString();
    return info;
}

TEST_F(SaveTarget, FolderInThePlaceOfTheFileIsRefusedAndKept)
{
    const QString path = Path(QStringLiteral("was-a-file.txt"));
    TestSupport::WriteFile(path, "old\n");
    CScrivelDoc* document = Open(path);
    ASSERT_NE(document, nullptr);
    Retype(document, "new text\n");
    ASSERT_TRUE(QFile::remove(path));
    ASSERT_TRUE(QDir().mkdir(path));
    TestSupport::WriteFile(QDir(path).filePath(QStringLiteral("inside.txt")), "keep me");

    // Told to go over what is there now, the save still can't replace a folder.
    m_answerer = std::make_unique<TestSupport::ModalAnswerer>(QMessageBox::Yes);
    EXPECT_FALSE(document->DoSave(path));
    EXPECT_TRUE(QFileInfo(path).isDir());
    EXPECT_EQ(TestSupport::ReadFile(QDir(path).filePath(QStringLiteral("inside.txt"))), QByteArray("keep me"));
    EXPECT_TRUE(document->IsModified());
    // The window becoming active again does not ask about the change already put to the
    // user (a "Yes" would reload a folder).
    document->CheckDiskChange();
    ASSERT_EQ(Messages().size(), 2) << Messages().join(QLatin1Char('|')).toStdString();
    EXPECT_TRUE(Messages()[0].contains(QStringLiteral("has been changed by another program")));
    EXPECT_EQ(Messages()[1], QString::fromLatin1(SaveFailed));
}

TEST_F(SaveTarget, LinkIsFollowedAndKept)
{
    QDir(m_dir).mkdir(QStringLiteral("real"));
    const QString target = Path(QStringLiteral("real/target.txt"));
    const QString link = Path(QStringLiteral("link.txt"));
    TestSupport::WriteFile(target, "old\n");
    ASSERT_EQ(::symlink("real/target.txt", QFile::encodeName(link).constData()), 0);

    CScrivelDoc* document = Open(link);
    ASSERT_NE(document, nullptr);
    Retype(document, "through the link\n");
    ASSERT_TRUE(document->DoSave(document->GetPathName()));

    EXPECT_TRUE(S_ISLNK(Stat(link).st_mode)) << "the link was replaced by a file";
    EXPECT_EQ(QFileInfo(link).symLinkTarget(), QFileInfo(target).absoluteFilePath());
    EXPECT_EQ(TestSupport::ReadFile(target), QByteArray("through the link\n"));
    EXPECT_TRUE(Messages().isEmpty());
}

struct ModeCase
{
    const char* name;
    mode_t mode;
};

class SaveKeepsMode : public DocumentFixture, public ::testing::WithParamInterface<ModeCase> {};

TEST_P(SaveKeepsMode, PermissionsSurviveTheSave)
{
    const QString path = Path(QStringLiteral("script"));
    TestSupport::WriteFile(path, "#!/bin/sh\necho old\n");
    ASSERT_EQ(::chmod(QFile::encodeName(path).constData(), GetParam().mode), 0);
    CScrivelDoc* document = Open(path);
    ASSERT_NE(document, nullptr);
    Retype(document, "#!/bin/sh\necho new\n");
    ASSERT_TRUE(document->DoSave(path));
    EXPECT_EQ(Stat(path).st_mode & 07777, GetParam().mode);
    EXPECT_EQ(TestSupport::ReadFile(path), QByteArray("#!/bin/sh\necho new\n"));
}

INSTANTIATE_TEST_SUITE_P(Modes, SaveKeepsMode,
                         ::testing::Values(ModeCase{"Executable", 0755}, ModeCase{"Private", 0600},
                                           ModeCase{"GroupReadable", 0640}, ModeCase{"OddBits", 0751}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(SaveTarget, OwnerSurvivesTheSave)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only the superuser can give a file to another owner";
    const QString path = Path(QStringLiteral("theirs.txt"));
    TestSupport::WriteFile(path, "old\n");
    ASSERT_EQ(::chown(QFile::encodeName(path).constData(), 4321, 8765), 0);
    CScrivelDoc* document = Open(path);
    ASSERT_NE(document, nullptr);
    Retype(document, "new\n");
    ASSERT_TRUE(document->DoSave(path));
    const struct stat info = Stat(path);
    EXPECT_EQ(info.st_uid, 4321u);
    EXPECT_EQ(info.st_gid, 8765u);
    EXPECT_EQ(TestSupport::ReadFile(path), QByteArray("new\n"));
}

TEST_F(SaveTarget, ReadOnlyMountRefusesEveryWriteAndTheFileStays)
{
    const QString path = Path(QStringLiteral("mounted.txt"));
    TestSupport::WriteFile(path, "old\n");
    CScrivelDoc* document = Open(path);
    ASSERT_NE(document, nullptr);
    Retype(document, "new\n");

    // Every open for writing and every rename below the folder fails as on a read-only
    // mount; reads still work, since the file was opened before.
    FaultInjector::Watch(QDir(m_dir).absolutePath().toStdString());
    FaultInjector::Arm(FaultInjector::Call::Open, 1, EROFS, false, true);
    const bool saved = document->DoSave(path);
    FaultInjector::Reset();

    EXPECT_FALSE(saved);
    EXPECT_EQ(TestSupport::ReadFile(path), QByteArray("old\n"));
    EXPECT_TRUE(document->IsModified());
    EXPECT_EQ(Messages(), QStringList{QString::fromLatin1(SaveFailed)});
}

} // namespace
