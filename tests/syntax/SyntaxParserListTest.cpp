#include "SyntaxTestFiles.h"
#include "TestSupport.h"
#include "settings/AppPaths.h"
#include "settings/CRegistryStore.h"
#include "syntax/CSyntaxParserList.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

using SyntaxTestFiles::Simple;
using SyntaxTestFiles::Write;

namespace {

class SyntaxParserList : public ::testing::Test
{
protected:
    void SetUp() override { TestSupport::ClearSettings(); }
    void TearDown() override { TestSupport::ClearSettings(); }

    QString folder = TestSupport::MakeTempDir();
};

// Name order ignoring case, whatever the order of creation; bad files skipped quietly.
TEST_F(SyntaxParserList, LoadsGoodFilesInNameOrderAndSkipsTheRest)
{
    EXPECT_FALSE(CSyntaxParserList(folder + QStringLiteral("/absent")).Load());
    EXPECT_FALSE(CSyntaxParserList(folder).Load());
    Write(folder, QStringLiteral("d.config"), Simple("Delta", ".d;.h"));
    Write(folder, QStringLiteral("B.config"), Simple("Bravo", ".b;.H"));
    Write(folder, QStringLiteral("a.config"), Simple("Alpha", ".*;.a"));
    Write(folder, QStringLiteral("c-malformed.config"), "<SYNTAX><PROPERTIES><MENU>Broken");
    Write(folder, QStringLiteral("c-nocolour.config"), SyntaxTestFiles::Definition("<MENU>NoColour</MENU>"));
    Write(folder, QStringLiteral("c-binary.config"), QByteArray(300, '\xff'));
    Write(folder, QStringLiteral("c-other.xml"), Simple("NotAConfig", ".x"));
    Write(folder, QStringLiteral("c-backup.config.bak"), Simple("Backup", ".x"));
    QDir(folder).mkdir(QStringLiteral("c-folder.config"));
    CSyntaxParserList list(folder);
    EXPECT_TRUE(list.Load());
    EXPECT_EQ(list.MenuNames(), (QStringList{"Alpha", "Bravo", "Delta"}));
    EXPECT_EQ(list.FindByExtension(QStringLiteral(".h")), 1);
    EXPECT_EQ(list.FindByExtension(QStringLiteral(".*")), 0);
    EXPECT_EQ(list.FindByExtension(QStringLiteral(".rs")), -1);

    // A frame may still hold a number from before a reload with fewer files.
    for (int index : {-1, 3}) {
        EXPECT_EQ(list.GetParser(index), CSyntaxParser::StandBy()) << index;
        EXPECT_FALSE(list.GetParser(index).fromFile);
    }
    // Saved colours come back in the same place.
    CSyntaxParser parser = list.GetParser(2);
    parser.colours[0].fore = 0xABCDEF;
    ASSERT_TRUE(parser.SaveColours());
    list.Load();
    EXPECT_EQ(list.GetParser(2).colours[0].fore, 0xABCDEFu);
}

TEST_F(SyntaxParserList, TheFolderComesFromConfigPathElseIsFilledFromTheShippedFiles)
{
    Write(folder, QStringLiteral("mine.config"), Simple("Mine", ".mine"));
    ASSERT_TRUE(CRegistryStore().WriteProfileString(QStringLiteral("Settings"), QStringLiteral("ConfigPath"), folder));
    CSyntaxParserList mine;
    EXPECT_TRUE(mine.Load());
    EXPECT_EQ(mine.MenuNames(), QStringList{"Mine"});
    EXPECT_FALSE(QFile::exists(QDir(folder).filePath(QStringLiteral("C.config"))));

    TestSupport::ClearSettings();
    QDir(AppPaths::DefaultSyntaxFolder()).removeRecursively();
    CSyntaxParserList list;
    EXPECT_EQ(list.GetFolder(), AppPaths::DefaultSyntaxFolder());
    EXPECT_TRUE(list.Load());
    EXPECT_EQ(list.GetCount(), QDir(SyntaxTestFiles::ShippedSyntaxFolder())
                                   .entryList({QStringLiteral("*.config")}, QDir::Files).size());
    // The user's own changes are never overwritten by a later start.
    TestSupport::WriteFile(QDir(AppPaths::DefaultSyntaxFolder()).filePath(QStringLiteral("C.config")),
                           Simple("My C", ".c"));
    CSyntaxParserList again;
    again.Load();
    EXPECT_EQ(again.GetParser(again.FindByExtension(QStringLiteral(".c"))).menuName, QStringLiteral("My C"));
    QDir(AppPaths::DefaultSyntaxFolder()).removeRecursively();
}

} // namespace
