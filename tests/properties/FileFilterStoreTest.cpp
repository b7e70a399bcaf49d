#include "properties/DesktopIntegration.h"
#include "properties/FileFilterStore.h"
#include "settings/CRegistryStore.h"
#include "TestSupport.h"

#include <QXmlStreamReader>
#include <QFile>
#include <QFileInfo>
#include <gtest/gtest.h>

using FileFilterStore::Filter;

namespace {

class FileFilterStoreTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        TestSupport::ClearSettings();
        CRegistryStore(CRegistryStore::LocalMachine).DeleteKey(QStringLiteral("FileFilter"), QString());
    }
};

struct StringCase
{
    QList<Filter> filters;
    QString expected;
};

class FilterStringTest : public ::testing::TestWithParam<StringCase> {};

TEST_P(FilterStringTest, EachRowThenAllFiles)
{
    EXPECT_EQ(FileFilterStore::FilterString(GetParam().filters), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, FilterStringTest,
    ::testing::Values(
        StringCase{{}, QStringLiteral("All Files (*.*)|*.*||")},
        StringCase{{{QStringLiteral("C Files"), QStringLiteral("*.c;*.h")}},
                   QStringLiteral("C Files (*.c;*.h)|*.c;*.h|All Files (*.*)|*.*||")},
        StringCase{{{QStringLiteral("A"), QStringLiteral("*.a")}, {QStringLiteral("B"), QStringLiteral("*.b")}},
                   QStringLiteral("A (*.a)|*.a|B (*.b)|*.b|All Files (*.*)|*.*||")},
        // Labels and patterns holding "%" stay as typed.
        StringCase{{{QStringLiteral("100% %1"), QStringLiteral("*.%1")}},
                   QStringLiteral("100% %1 (*.%1)|*.%1|All Files (*.*)|*.*||")}));

TEST(DialogFilters, PatternsAreSpaceSeparatedAndAllFilesComesLast)
{
    const QStringList filters = FileFilterStore::DialogFilters(
        {{QStringLiteral("C Files"), QStringLiteral("*.c;*.h")}, {QString(), QStringLiteral("*.x")}});
    ASSERT_EQ(filters.size(), 3);
    EXPECT_EQ(filters[0], QStringLiteral("C Files (*.c *.h)"));
    EXPECT_EQ(filters[1], QStringLiteral("*.x (*.x)"));
    EXPECT_TRUE(filters[2].contains(QStringLiteral("(*)")));
}

TEST_F(FileFilterStoreTest, TheFirstStartSeedsTheUserListOnceAndAnEmptiedListStaysEmpty)
{
    const QList<Filter> first = FileFilterStore::Load();
    EXPECT_EQ(first.size(), FileFilterStore::Defaults().size());
    EXPECT_TRUE(CRegistryStore().HasValue(QStringLiteral("FileFilter"), QStringLiteral("*.java")));
    ASSERT_TRUE(FileFilterStore::Save({}));
    EXPECT_TRUE(FileFilterStore::Load().isEmpty());
}

TEST_F(FileFilterStoreTest, SavedFiltersComeBackInPatternOrder)
{
    FileFilterStore::Load();
    const QList<Filter> saved{{QStringLiteral("Zig"), QStringLiteral("*.zig")},
                              {QStringLiteral("Ada"), QStringLiteral("*.adb;*.ads")},
                              {QStringLiteral("Paths"), QStringLiteral("dir/*.x")}};
    ASSERT_TRUE(FileFilterStore::Save(saved));
    const QList<Filter> loaded = FileFilterStore::Load();
    ASSERT_EQ(loaded.size(), 3);
    EXPECT_EQ(loaded[0], saved[1]);
    EXPECT_EQ(loaded[1], saved[0]);
    EXPECT_EQ(loaded[2], saved[2]) << "a \"/\" in a pattern survives the store";
}

TEST_F(FileFilterStoreTest, TheMachineListIsReadFirstAndTheUsersLabelWins)
{
    CRegistryStore machine(CRegistryStore::LocalMachine);
    if (!machine.WriteProfileString(QStringLiteral("FileFilter"), QStringLiteral("*.m"), QStringLiteral("Machine M")))
        GTEST_SKIP() << "the machine scope is not writable here";
    machine.WriteProfileString(QStringLiteral("FileFilter"), QStringLiteral("*.n"), QStringLiteral("Machine N"));
    // With a machine list present nothing is seeded.
    EXPECT_EQ(FileFilterStore::Load().size(), 2);
    ASSERT_TRUE(FileFilterStore::Save({{QStringLiteral("Machine M"), QStringLiteral("*.m")},
                                       {QStringLiteral("Mine"), QStringLiteral("*.n")}}));
    const QList<Filter> loaded = FileFilterStore::Load();
    ASSERT_EQ(loaded.size(), 2);
    EXPECT_EQ(loaded[0], (Filter{QStringLiteral("Machine M"), QStringLiteral("*.m")}));
    EXPECT_EQ(loaded[1], (Filter{QStringLiteral("Mine"), QStringLiteral("*.n")}));

    // Deleting a machine filter hides it for this user; adding it back shows it again.
    ASSERT_TRUE(FileFilterStore::Save({loaded[1]}));
    EXPECT_EQ(FileFilterStore::Load(), (QList<Filter>{loaded[1]}));
    EXPECT_TRUE(machine.HasValue(QStringLiteral("FileFilter"), QStringLiteral("*.m")));
    ASSERT_TRUE(FileFilterStore::Save(loaded));
    EXPECT_EQ(FileFilterStore::Load(), loaded);
    machine.DeleteKey(QStringLiteral("FileFilter"), QString());
}

TEST(DesktopIntegration, InstallAndRemoveForThisUserOnly)
{
    DesktopIntegration::Remove();
    EXPECT_FALSE(DesktopIntegration::IsInstalled());
    EXPECT_TRUE(DesktopIntegration::EntryPath().startsWith(TestSupport::IsolatedRoot()));
    QString error;
    ASSERT_TRUE(DesktopIntegration::Install(QStringLiteral("/opt/morvane/bin/morvane"), &error))
        << error.toStdString();
    EXPECT_TRUE(DesktopIntegration::IsInstalled());
    const QString entry = QString::fromUtf8(TestSupport::ReadFile(DesktopIntegration::EntryPath()));
    EXPECT_TRUE(entry.contains(QStringLiteral("\nExec=/opt/morvane/bin/morvane --reuse %F\n")));
    EXPECT_TRUE(entry.contains(QStringLiteral("text/plain;")));
    EXPECT_TRUE(entry.contains(QLatin1String(DesktopIntegration::WorkspaceMimeType)));

    QXmlStreamReader mime(TestSupport::ReadFile(DesktopIntegration::MimePackagePath()));
    QStringList globs;
    while (!mime.atEnd()) {
        if (mime.readNext() == QXmlStreamReader::StartElement && mime.name() == QLatin1String("glob"))
            globs << mime.attributes().value(QLatin1String("pattern")).toString();
    }
    EXPECT_FALSE(mime.hasError()) << mime.errorString().toStdString();
    EXPECT_EQ(globs, QStringList{QStringLiteral("*.spf")});

    ASSERT_TRUE(DesktopIntegration::Remove(&error));
    EXPECT_FALSE(DesktopIntegration::IsInstalled());
    EXPECT_FALSE(QFileInfo::exists(DesktopIntegration::MimePackagePath()));
    EXPECT_TRUE(DesktopIntegration::Remove(&error)) << "removing twice is no failure";
}

TEST(DesktopIntegration, ExecQuotesPathsTheEntryFormatTreatsSpecially)
{
    struct Case { const char* path; const char* exec; };
    for (const Case c : {Case{"/usr/bin/morvane", "Exec=/usr/bin/morvane --reuse %F"},
                         Case{"/home/a b/morvane", "Exec=\"/home/a b/morvane\" --reuse %F"},
                         Case{"/x/$y/morvane", "Exec=\"/x/\\\\$y/morvane\" --reuse %F"}}) {
        const QString text = DesktopIntegration::EntryText(QString::fromUtf8(c.path));
        EXPECT_TRUE(text.contains(QString::fromUtf8(c.exec) + QLatin1Char('\n'))) << c.path << "\n" << text.toStdString();
    }
}

} // namespace
