#include "codelibrary/TemplateFiles.h"
#include "codelibrary/TemplateName.h"
#include "settings/AppPaths.h"
#include "settings/CRegistryStore.h"

#include "TestSupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>
#include <unistd.h>

namespace {

using namespace TemplateFiles;

TEST(TemplateFilesTest, ReadsUpToTheLimitAndTheFirstNul)
{
    const struct
    {
        const char* what;
        QByteArray onDisk;
        QByteArray read;
    } cases[] = {{"plain", "int main() {}\n", "int main() {}\n"},
                 {"empty", "", ""},
                 {"cut at NUL", QByteArray("head\0tail", 9), "head"},
                 {"exactly the limit", QByteArray(250000, 'a'), QByteArray(250000, 'a')},
                 {"beyond the limit", QByteArray(250001, 'b'), QByteArray(250000, 'b')},
                 {"CRLF kept", "a\r\nb", "a\r\nb"}};
    const QString path = TestSupport::MakeTempDir() + QStringLiteral("/template");
    for (const auto& c : cases) {
        TestSupport::WriteFile(path, c.onDisk);
        EXPECT_EQ(ReadTemplate(path), c.read) << c.what;
        EXPECT_EQ(TestSupport::ReadFile(path), c.onDisk) << c.what << ": reading never changes the file";
    }
}

TEST(TemplateFilesTest, ReadingWhatIsNotThereGivesNothing)
{
    const QString dir = TestSupport::MakeTempDir();
    EXPECT_TRUE(ReadTemplate(dir + QStringLiteral("/missing")).isEmpty());
    EXPECT_TRUE(ReadTemplate(dir).isEmpty()) << "a folder reads as empty";
}

TEST(TemplateFilesTest, WriteReplacesTheFileWithExactlyTheBytes)
{
    const QString dir = TestSupport::MakeTempDir();
    const QString path = dir + QStringLiteral("/t");
    TestSupport::WriteFile(path, QByteArray(1000, 'x'));
    ASSERT_TRUE(WriteTemplate(path, "short"));
    EXPECT_EQ(TestSupport::ReadFile(path), QByteArray("short"));
    EXPECT_EQ(QDir(dir).entryList(QDir::Files | QDir::Hidden), QStringList{QStringLiteral("t")})
        << "nothing is left beside it";
}

TEST(TemplateFilesTest, WriteThatCannotFinishLeavesWhatWasThere)
{
    const QString dir = TestSupport::MakeTempDir();
    QDir().mkpath(dir + QStringLiteral("/folder"));
    EXPECT_FALSE(WriteTemplate(dir + QStringLiteral("/folder"), "text")) << "a folder is never replaced";
    EXPECT_TRUE(QFileInfo(dir + QStringLiteral("/folder")).isDir());
    EXPECT_FALSE(WriteTemplate(dir + QStringLiteral("/missing/t"), "text"));
}

TEST(TemplateFilesTest, TextThatIsNotUtf8KeepsEveryByte)
{
    const QByteArray latin1("caf\xe9 \xff", 6);
    const Text text = Decode(latin1);
    EXPECT_FALSE(text.utf8);
    EXPECT_EQ(Encode(text), latin1);
    const Text utf8 = Decode("caf\xc3\xa9");
    EXPECT_TRUE(utf8.utf8);
    EXPECT_EQ(utf8.text, QStringLiteral("caf\u00e9"));
    EXPECT_EQ(Encode(utf8), QByteArray("caf\xc3\xa9"));
    // A character Latin-1 can't hold, typed into such a template, is not lost.
    EXPECT_EQ(Encode(Text{QStringLiteral("\u20ac"), false}), QByteArray("\xe2\x82\xac"));
}

TEST(TemplateFilesTest, DeleteTakesAFolderWithAllItHolds)
{
    const QString dir = TestSupport::MakeTempDir();
    TestSupport::WriteFile(dir + QStringLiteral("/f/g/deep"), "d");
    TestSupport::WriteFile(dir + QStringLiteral("/f/top"), "t");
    EXPECT_TRUE(DeleteFromDisk(dir + QStringLiteral("/f")));
    EXPECT_FALSE(QFileInfo::exists(dir + QStringLiteral("/f")));
    EXPECT_FALSE(DeleteFromDisk(dir + QStringLiteral("/f"))) << "nothing there to delete";
    EXPECT_FALSE(DeleteFromDisk(QString()));
}

TEST(TemplateFilesTest, DeleteOfALinkLeavesWhatItPointsTo)
{
    const QString dir = TestSupport::MakeTempDir();
    TestSupport::WriteFile(dir + QStringLiteral("/real/keep"), "k");
    ASSERT_EQ(symlink(qPrintable(dir + QStringLiteral("/real")), qPrintable(dir + QStringLiteral("/link"))), 0);
    EXPECT_TRUE(DeleteFromDisk(dir + QStringLiteral("/link")));
    EXPECT_EQ(TestSupport::ReadFile(dir + QStringLiteral("/real/keep")), QByteArray("k"));
}

struct RenameCase
{
    const char* what;
    const char* from;
    const char* to;
    bool ok;
};

using RenameTest = ::testing::TestWithParam<RenameCase>;

TEST_P(RenameTest, NeverReplacesWhatIsThere)
{
    const RenameCase& c = GetParam();
    const QString dir = TestSupport::MakeTempDir();
    TestSupport::WriteFile(dir + QStringLiteral("/a"), "A");
    TestSupport::WriteFile(dir + QStringLiteral("/b"), "B");
    TestSupport::WriteFile(dir + QStringLiteral("/emptyfolder/.keep"), "");
    QFile::remove(dir + QStringLiteral("/emptyfolder/.keep"));
    TestSupport::WriteFile(dir + QStringLiteral("/folder/x"), "X");
    const QString from = dir + QLatin1Char('/') + QString::fromLatin1(c.from);
    const QString to = dir + QLatin1Char('/') + QString::fromLatin1(c.to);
    const QByteArray fromBytes = TestSupport::ReadFile(from);

    EXPECT_EQ(RenameNoReplace(from, to), c.ok) << c.what;
    EXPECT_EQ(TestSupport::ReadFile(dir + QStringLiteral("/b")), QByteArray("B")) << c.what;
    EXPECT_EQ(TestSupport::ReadFile(dir + QStringLiteral("/folder/x")), QByteArray("X")) << c.what;
    if (c.ok) {
        EXPECT_EQ(TestSupport::ReadFile(to), fromBytes) << c.what;
    }
}

INSTANTIATE_TEST_SUITE_P(Cases, RenameTest,
                         ::testing::Values(RenameCase{"to a free name", "a", "c", true},
                                           RenameCase{"onto another template", "a", "b", false},
                                           RenameCase{"a folder onto an empty folder", "folder", "emptyfolder", false},
                                           RenameCase{"to itself", "a", "a", true},
                                           RenameCase{"into a missing folder", "a", "nowhere/a", false},
                                           RenameCase{"what isn't there", "missing", "d", false},
                                           RenameCase{"into a folder", "a", "folder/a", true}));

TEST(TemplateFilesTest, TreeListsEveryLevelInFileNameOrder)
{
    const QString dir = TestSupport::MakeTempDir();
    for (const char* name : {"b", "A", "c.txt", "Sub/z", "Sub/Inner/y", "sub2/.hidden", "empty/"}) {
        const QString path = dir + QLatin1Char('/') + QString::fromLatin1(name);
        if (path.endsWith(QLatin1Char('/')))
            QDir().mkpath(path);
        else
            TestSupport::WriteFile(path, "x");
    }
    QList<Entry> entries;
    ASSERT_TRUE(ReadTree(dir, entries));
    QStringList flat;
    std::function<void(const QList<Entry>&, const QString&)> walk = [&](const QList<Entry>& level,
                                                                         const QString& indent) {
        for (const Entry& entry : level) {
            flat << indent + entry.name + (entry.folder ? QStringLiteral("/") : QString());
            EXPECT_EQ(entry.path, QFileInfo(entry.path).absoluteFilePath());
            walk(entry.children, indent + QStringLiteral("  "));
        }
    };
    walk(entries, QString());
    EXPECT_EQ(flat, (QStringList{QStringLiteral("A"), QStringLiteral("b"), QStringLiteral("c.txt"),
                                 QStringLiteral("empty/"), QStringLiteral("Sub/"), QStringLiteral("  Inner/"),
                                 QStringLiteral("    y"), QStringLiteral("  z"), QStringLiteral("sub2/"),
                                 QStringLiteral("  .hidden")}));
}

TEST(TemplateFilesTest, TreeOfNothingOrOfALoop)
{
    QList<Entry> entries;
    EXPECT_FALSE(ReadTree(QString(), entries));
    EXPECT_TRUE(ReadTree(TestSupport::MakeTempDir() + QStringLiteral("/missing"), entries));
    EXPECT_TRUE(entries.isEmpty());

    const QString dir = TestSupport::MakeTempDir();
    TestSupport::WriteFile(dir + QStringLiteral("/f/t"), "x");
    ASSERT_EQ(symlink(qPrintable(dir), qPrintable(dir + QStringLiteral("/f/up"))), 0);
    ASSERT_TRUE(ReadTree(dir, entries));
    ASSERT_EQ(entries.size(), 1);
    ASSERT_EQ(entries[0].children.size(), 2);
    EXPECT_EQ(entries[0].children[1].name, QStringLiteral("up"));
    EXPECT_TRUE(entries[0].children[1].children.isEmpty()) << "a folder already entered is not entered again";
}

TEST(TemplateFilesTest, LibraryFolderFromTheUserThenTheMachineThenTheDefault)
{
    TestSupport::ClearSettings();
    const QString section = QStringLiteral("TemplateSettings");
    const QString name = QStringLiteral("Directory");
    CRegistryStore machine(CRegistryStore::LocalMachine);
    CRegistryStore user;
    machine.DeleteValue(section, name);
    EXPECT_EQ(LibraryFolder(), AppPaths::DefaultTemplatesFolder());
    machine.WriteProfileString(section, name, QStringLiteral("/opt/templates"));
    EXPECT_EQ(LibraryFolder(), QStringLiteral("/opt/templates"));
    user.WriteProfileString(section, name, QStringLiteral("/home/me/snippets"));
    EXPECT_EQ(LibraryFolder(), QStringLiteral("/home/me/snippets"));
    user.DeleteValue(section, name);
    machine.DeleteValue(section, name);
}

struct NameCase
{
    const char* stored;
    const char* edited;
    const char* kept;
    bool revert;
};

using TemplateNameTest = ::testing::TestWithParam<NameCase>;

TEST_P(TemplateNameTest, RefusesWhatCannotEndAFileName)
{
    const NameCase& c = GetParam();
    const TemplateName::Edit edit =
        TemplateName::Apply(QString::fromUtf8(c.stored), QString::fromUtf8(c.edited));
    EXPECT_EQ(edit.stored, QString::fromUtf8(c.kept)) << c.edited;
    EXPECT_EQ(edit.revert, c.revert) << c.edited;
}

INSTANTIATE_TEST_SUITE_P(Cases, TemplateNameTest,
                         ::testing::Values(NameCase{"main", "main?", "main", true},
                                           NameCase{"a", "a/", "a", true},
                                           NameCase{"a", "a\\", "a", true},
                                           NameCase{"a", "a:", "a", true},
                                           NameCase{"a", "a*", "a", true},
                                           NameCase{"a", "a<", "a", true},
                                           NameCase{"a", "a>", "a", true},
                                           NameCase{"a", "a|", "a", true},
                                           NameCase{"", "?", "", true},
                                           // Only the end is looked at: a paste passes.
                                           NameCase{"", "wh?at", "wh?at", false},
                                           NameCase{"say", "say\"", "say\"", false},
                                           NameCase{"main", "main.cpp", "main.cpp", false},
                                           NameCase{"main", "", "", false}));

} // namespace

namespace {

TEST(ShippedTemplatesTest, FirstStartCopiesThemIntoTheDefaultFolder)
{
    const QString target = TemplateFiles::LibraryFolder();
    QDir(target).removeRecursively();
    ASSERT_TRUE(AppPaths::FillFromShipped(target, QStringLiteral("templates")));
    QList<TemplateFiles::Entry> folders;
    ASSERT_TRUE(TemplateFiles::ReadTree(target, folders));
    ASSERT_GE(folders.size(), 5);
    int templates = 0;
    int withMarker = 0;
    for (const TemplateFiles::Entry& folder : folders) {
        EXPECT_TRUE(folder.folder) << folder.name.toStdString();
        for (const TemplateFiles::Entry& entry : folder.children) {
            const QByteArray text = TemplateFiles::ReadTemplate(entry.path);
            EXPECT_FALSE(text.isEmpty()) << entry.name.toStdString();
            EXPECT_EQ(text, TestSupport::ReadFile(entry.path)) << "shipped templates are read whole";
            ++templates;
            withMarker += text.contains(TemplateFiles::ReplaceMarker) ? 1 : 0;
        }
    }
    EXPECT_GE(templates, 8);
    EXPECT_GE(withMarker, 5);
}

} // namespace
