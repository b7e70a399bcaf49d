#include "SyntaxTestFiles.h"
#include "TestSupport.h"
#include "app/AppPaths.h"
#include "app/CRegistryStore.h"
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
    void SetUp() override
    {
        TestSupport::ClearSettings();
        folder = TestSupport::MakeTempDir();
    }
    void TearDown() override { TestSupport::ClearSettings(); }

    QString folder;
};

TEST_F(SyntaxParserList, LoadsInFileNameOrderIgnoringCase)
{
    // Written out of order so that creation order can't pass for name order.
    Write(folder, QStringLiteral("delta.config"), Simple("Delta", ".d"));
    Write(folder, QStringLiteral("Bravo.config"), Simple("Bravo", ".b"));
    Write(folder, QStringLiteral("charlie.config"), Simple("Charlie", ".c"));
    Write(folder, QStringLiteral("alpha.config"), Simple("Alpha", ".a"));
    CSyntaxParserList list(folder);
    EXPECT_TRUE(list.Load());
    EXPECT_EQ(list.MenuNames(), (QStringList{"Alpha", "Bravo", "Charlie", "Delta"}));
}

TEST_F(SyntaxParserList, SkipsBadFilesQuietly)
{
    Write(folder, QStringLiteral("a-good.config"), Simple("Good", ".g"));
    Write(folder, QStringLiteral("b-malformed.config"), "<SYNTAX><PROPERTIES><MENU>Broken");
    Write(folder, QStringLiteral("c-nocolour.config"), SyntaxTestFiles::Definition("<MENU>NoColour</MENU>"));
    Write(folder, QStringLiteral("d-noproperties.config"), "<SYNTAX/>");
    Write(folder, QStringLiteral("e-binary.config"), QByteArray(300, '\xff'));
    Write(folder, QStringLiteral("f-other.xml"), Simple("NotAConfig", ".x"));
    Write(folder, QStringLiteral("g-backup.config.bak"), Simple("Backup", ".x"));
    QDir(folder).mkdir(QStringLiteral("h-folder.config"));
    Write(folder, QStringLiteral("z-good.config"), Simple("Last", ".l"));
    CSyntaxParserList list(folder);
    EXPECT_TRUE(list.Load());
    EXPECT_EQ(list.MenuNames(), (QStringList{"Good", "Last"}));
}

TEST_F(SyntaxParserList, LoadTellsWhetherAnyDefinitionFileWasFound)
{
    CSyntaxParserList missing(QDir(folder).filePath(QStringLiteral("absent")));
    EXPECT_FALSE(missing.Load());
    EXPECT_EQ(missing.GetCount(), 0);

    CSyntaxParserList empty(folder);
    EXPECT_FALSE(empty.Load());

    // Found but unusable still counts as found.
    Write(folder, QStringLiteral("broken.config"), "not xml");
    CSyntaxParserList broken(folder);
    EXPECT_TRUE(broken.Load());
    EXPECT_EQ(broken.GetCount(), 0);
}

TEST_F(SyntaxParserList, LoadEmptiesTheListAndANullFolderKeepsTheCurrentOne)
{
    Write(folder, QStringLiteral("one.config"), Simple("One", ".1"));
    const QString other = TestSupport::MakeTempDir();
    Write(other, QStringLiteral("two.config"), Simple("Two", ".2"));
    Write(other, QStringLiteral("three.config"), Simple("Three", ".3"));

    CSyntaxParserList list(folder);
    list.Load();
    list.Load();
    EXPECT_EQ(list.GetCount(), 1);
    list.Load(other);
    EXPECT_EQ(list.GetFolder(), other);
    EXPECT_EQ(list.MenuNames(), (QStringList{"Three", "Two"}));
    list.Load(QString());
    EXPECT_EQ(list.GetFolder(), other);
    EXPECT_EQ(list.GetCount(), 2);
}

TEST_F(SyntaxParserList, GetParserOutsideTheListGivesTheStandByRecord)
{
    CSyntaxParserList list(folder);
    list.Load();
    for (int index : {-1, 0, 1, 50}) {
        const CSyntaxParser parser = list.GetParser(index);
        EXPECT_FALSE(parser.fromFile) << index;
        EXPECT_EQ(parser.menuName, QStringLiteral("Text"));
        EXPECT_EQ(parser.extensions, QStringLiteral(".*"));
        EXPECT_EQ(parser.lineComment, QStringLiteral("//"));
        EXPECT_EQ(parser.groupStart, QStringLiteral("/"));
        EXPECT_EQ(parser.groupEnd, QStringLiteral("/"));
        EXPECT_EQ(parser.lexer, QString());
        ASSERT_EQ(parser.colourCount, 1);
        EXPECT_EQ(parser.colours[0].name, QStringLiteral("Default"));
        EXPECT_EQ(parser.colours[0].style, 0);
        EXPECT_EQ(parser.colours[0].fore, 0x000000u);
        EXPECT_EQ(parser.colours[0].back, 0xFFFFFFu);
    }

    Write(folder, QStringLiteral("a.config"), Simple("A", ".a"));
    Write(folder, QStringLiteral("b.config"), Simple("B", ".b"));
    list.Load();
    EXPECT_EQ(list.GetParser(1).menuName, QStringLiteral("B"));
    EXPECT_TRUE(list.GetParser(1).fromFile);
    // A frame may still hold a number from before a reload with fewer files.
    EXPECT_FALSE(list.GetParser(2).fromFile);
    EXPECT_FALSE(list.GetParser(3).fromFile);
}

TEST_F(SyntaxParserList, SetParserReplacesInPlaceAndIgnoresBadIndexes)
{
    Write(folder, QStringLiteral("a.config"), Simple("A", ".a"));
    Write(folder, QStringLiteral("b.config"), Simple("B", ".b"));
    Write(folder, QStringLiteral("c.config"), Simple("C", ".c"));
    CSyntaxParserList list(folder);
    list.Load();
    CSyntaxParser changed = list.GetParser(1);
    changed.colours[0].fore = 0x123456;
    changed.modified = true;
    list.SetParser(1, changed);
    EXPECT_EQ(list.MenuNames(), (QStringList{"A", "B", "C"}));
    EXPECT_EQ(list.GetParser(1), changed);

    list.SetParser(3, changed);
    list.SetParser(-1, changed);
    EXPECT_EQ(list.GetCount(), 3);
    EXPECT_EQ(list.GetParser(2).menuName, QStringLiteral("C"));
}

TEST_F(SyntaxParserList, FindByExtensionTakesTheFirstMatch)
{
    Write(folder, QStringLiteral("a-c.config"), Simple("C", ".c;.h"));
    Write(folder, QStringLiteral("b-cpp.config"), Simple("C++", ".cpp;.H"));
    Write(folder, QStringLiteral("c-text.config"), Simple("Text", ".*;.txt"));
    CSyntaxParserList list(folder);
    list.Load();
    EXPECT_EQ(list.FindByExtension(QStringLiteral(".h")), 0);
    EXPECT_EQ(list.FindByExtension(QStringLiteral(".CPP")), 1);
    EXPECT_EQ(list.FindByExtension(QStringLiteral(".*")), 2);
    EXPECT_EQ(list.FindByExtension(QStringLiteral(".txt")), 2);
    EXPECT_EQ(list.FindByExtension(QStringLiteral(".rs")), -1);
    EXPECT_EQ(list.FindByExtension(QString()), -1);
}

TEST_F(SyntaxParserList, ReloadAfterSavingColoursKeepsTheOrder)
{
    for (const char* name : {"m", "b", "x", "a"})
        Write(folder, QString::fromLatin1(name) + QStringLiteral(".config"), Simple(name, ".q"));
    CSyntaxParserList list(folder);
    list.Load();
    const QStringList before = list.MenuNames();
    CSyntaxParser parser = list.GetParser(2);
    parser.colours[0].fore = 0xABCDEF;
    ASSERT_TRUE(parser.SaveColours());
    list.Load();
    EXPECT_EQ(list.MenuNames(), before);
    EXPECT_EQ(list.GetParser(2).colours[0].fore, 0xABCDEFu);
}

TEST_F(SyntaxParserList, TheFolderComesFromConfigPath)
{
    Write(folder, QStringLiteral("mine.config"), Simple("Mine", ".mine"));
    ASSERT_TRUE(CRegistryStore().WriteProfileString(QStringLiteral("Settings"), QStringLiteral("ConfigPath"), folder));
    CSyntaxParserList list;
    EXPECT_EQ(list.GetFolder(), folder);
    EXPECT_EQ(CSyntaxParserList::ConfiguredFolder(), folder);
    EXPECT_EQ(list.GetCount(), 0); // nothing is read before Load
    EXPECT_TRUE(list.Load());
    EXPECT_EQ(list.MenuNames(), QStringList{"Mine"});
    // An explicit folder is never filled from the shipped definitions.
    EXPECT_FALSE(QFile::exists(QDir(folder).filePath(QStringLiteral("C.config"))));
}

TEST_F(SyntaxParserList, WithoutConfigPathTheDefaultFolderIsFilledFromTheShippedFiles)
{
    QDir(AppPaths::DefaultSyntaxFolder()).removeRecursively();
    CSyntaxParserList list;
    EXPECT_EQ(list.GetFolder(), AppPaths::DefaultSyntaxFolder());
    EXPECT_TRUE(list.Load());
    const QStringList shipped = QDir(SyntaxTestFiles::ShippedSyntaxFolder())
                                    .entryList({QStringLiteral("*.config")}, QDir::Files);
    ASSERT_FALSE(shipped.isEmpty());
    EXPECT_EQ(list.GetCount(), shipped.size());
    EXPECT_GE(list.FindByExtension(QStringLiteral(".cpp")), 0);

    // The user's own changes are never overwritten by a later start.
    const QString cFile = QDir(AppPaths::DefaultSyntaxFolder()).filePath(QStringLiteral("C.config"));
    TestSupport::WriteFile(cFile, Simple("My C", ".c"));
    CSyntaxParserList again;
    again.Load();
    EXPECT_EQ(again.GetParser(again.FindByExtension(QStringLiteral(".c"))).menuName, QStringLiteral("My C"));
    QDir(AppPaths::DefaultSyntaxFolder()).removeRecursively();
}

} // namespace
