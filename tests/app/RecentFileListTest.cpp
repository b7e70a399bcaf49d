#include "settings/RecentFileList.h"
#include "TestSupport.h"

#include <QDir>
#include <gtest/gtest.h>

namespace {

class RecentFileListTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        TestSupport::ClearSettings();
        m_dir = TestSupport::MakeTempDir();
        for (const char* name : {"a.txt", "b.txt", "c.txt", "d.txt", "e.txt"})
            TestSupport::WriteFile(QDir(m_dir).filePath(QString::fromLatin1(name)), "x");
    }
    QString Path(const char* name) const { return QDir(m_dir).filePath(QString::fromLatin1(name)); }
    QString m_dir;
};

TEST_F(RecentFileListTest, KeepsFourNewestFirst)
{
    RecentFileList list(4);
    for (const char* name : {"a.txt", "b.txt", "c.txt", "d.txt", "e.txt"})
        list.Add(Path(name));
    EXPECT_EQ(list.Files(), QStringList({Path("e.txt"), Path("d.txt"), Path("c.txt"), Path("b.txt")}));
}

TEST_F(RecentFileListTest, TheSameFileUnderAnotherSpellingStaysOnce)
{
    RecentFileList list(4);
    list.Add(Path("a.txt"));
    list.Add(Path("b.txt"));
    list.Add(m_dir + QStringLiteral("/./sub/../a.txt"));
    ASSERT_EQ(list.Files().size(), 2);
    EXPECT_EQ(QDir::cleanPath(list.Files().first()), Path("a.txt"));
}

TEST_F(RecentFileListTest, SurvivesTheNextStart)
{
    RecentFileList list(4);
    list.Add(Path("a.txt"));
    list.Add(Path("b.txt"));
    list.Save();
    RecentFileList next(4);
    next.Load();
    EXPECT_EQ(next.Files(), list.Files());
    // A shorter list afterwards leaves no stale entries behind.
    next.Remove(Path("a.txt"));
    next.Save();
    RecentFileList third(4);
    third.Load();
    EXPECT_EQ(third.Files(), QStringList({Path("b.txt")}));
}

} // namespace
