#include "settings/CRegistryStore.h"
#include "TestSupport.h"

#include <QFile>
#include <gtest/gtest.h>

namespace {

class RegistryStoreTest : public ::testing::Test
{
protected:
    void SetUp() override { TestSupport::ClearSettings(); }
};

TEST_F(RegistryStoreTest, MissingValuesAndTextWhereANumberIsExpectedGiveTheDefault)
{
    CRegistryStore store;
    EXPECT_EQ(store.GetProfileInt(QStringLiteral("ViewSettings"), QStringLiteral("TabWidth"), 4), 4);
    EXPECT_EQ(store.GetProfileString(QStringLiteral("Settings"), QStringLiteral("DefExt"), QStringLiteral("txt")),
              QStringLiteral("txt"));
    quint32 colour = 7;
    EXPECT_FALSE(store.GetProfileColor(QStringLiteral("ViewSettings"), QStringLiteral("BraceHighlight"), colour));
    EXPECT_EQ(colour, 7u) << "a failed colour read leaves the value to the caller";
    store.WriteProfileString(QStringLiteral("ViewSettings"), QStringLiteral("FontSize"), QStringLiteral("large"));
    EXPECT_EQ(store.GetProfileInt(QStringLiteral("ViewSettings"), QStringLiteral("FontSize"), 10), 10);
}

TEST_F(RegistryStoreTest, ValuesRoundTripThroughTheFile)
{
    {
        CRegistryStore store;
        ASSERT_TRUE(store.WriteProfileInt(QStringLiteral("ViewSettings"), QStringLiteral("TabWidth"), 8));
        ASSERT_TRUE(store.WriteProfileInt(QStringLiteral("Settings"), QStringLiteral("DefFInFExt"), -2));
        ASSERT_TRUE(store.WriteProfileString(QStringLiteral("Settings"), QStringLiteral("DefExt"), QStringLiteral("cpp")));
        ASSERT_TRUE(store.WriteProfileColor(QStringLiteral("ViewSettings"), QStringLiteral("CaretLineColour"), 0xEED2C1));
        ASSERT_TRUE(store.WriteProfileColor(QStringLiteral("ViewSettings"), QStringLiteral("White"), 0xFFFFFFFF));
    }
    CRegistryStore store;
    EXPECT_EQ(store.GetProfileInt(QStringLiteral("ViewSettings"), QStringLiteral("TabWidth"), 0), 8);
    EXPECT_EQ(store.GetProfileInt(QStringLiteral("Settings"), QStringLiteral("DefFInFExt"), 0), -2);
    EXPECT_EQ(store.GetProfileString(QStringLiteral("Settings"), QStringLiteral("DefExt")), QStringLiteral("cpp"));
    quint32 colour = 0;
    ASSERT_TRUE(store.GetProfileColor(QStringLiteral("ViewSettings"), QStringLiteral("CaretLineColour"), colour));
    EXPECT_EQ(colour, 0xEED2C1u);
    ASSERT_TRUE(store.GetProfileColor(QStringLiteral("ViewSettings"), QStringLiteral("White"), colour));
    EXPECT_EQ(colour, 0xFFFFFFFFu);
    EXPECT_TRUE(QFile::exists(store.FileName()));
}

TEST_F(RegistryStoreTest, NullValueDeletesTheValueAndNullNameTheSection)
{
    CRegistryStore store;
    const QString section = QStringLiteral("FilesToOpen");
    store.WriteProfileString(section, QStringLiteral("a"), QStringLiteral("/tmp/a"));
    store.WriteProfileString(section, QStringLiteral("b"), QStringLiteral("/tmp/b"));
    store.WriteProfileString(section, QStringLiteral("a"), QString());
    EXPECT_FALSE(store.HasValue(section, QStringLiteral("a")));
    EXPECT_TRUE(store.HasValue(section, QStringLiteral("b")));
    store.WriteProfileString(section, QString(), QString());
    QMap<QString, int> values;
    EXPECT_EQ(store.EnumValues(section, values), 0);
}

TEST_F(RegistryStoreTest, NamesWithSlashesStayOneName)
{
    // Folder paths are value names in some sections.
    CRegistryStore store;
    const QString section = QStringLiteral("BackupFolders");
    const QStringList names = {QStringLiteral("/home/user/src"), QStringLiteral("C:\\Work\\a%2Fb"),
                               QStringLiteral("100%")};
    int id = 1;
    for (const QString& name : names)
        ASSERT_TRUE(store.WriteProfileInt(section, name, id++));
    QMap<QString, int> values;
    ASSERT_EQ(store.EnumValues(section, values), 3);
    EXPECT_EQ(QStringList(values.keys()), QStringList({QStringLiteral("/home/user/src"), QStringLiteral("100%"),
                                                       QStringLiteral("C:\\Work\\a%2Fb")}));
    EXPECT_EQ(store.GetProfileInt(section, names[1], 0), 2);
    EXPECT_EQ(values.value(names[0]), 0) << "numbers are enumerated as numbers";
}

TEST_F(RegistryStoreTest, DeleteKeyRemovesASubsection)
{
    CRegistryStore store;
    store.WriteProfileInt(QStringLiteral("Outer\\Inner"), QStringLiteral("x"), 1);
    store.WriteProfileInt(QStringLiteral("Outer"), QStringLiteral("y"), 2);
    ASSERT_TRUE(store.DeleteKey(QStringLiteral("Outer"), QStringLiteral("Inner")));
    EXPECT_FALSE(store.HasValue(QStringLiteral("Outer\\Inner"), QStringLiteral("x")));
    EXPECT_EQ(store.GetProfileInt(QStringLiteral("Outer"), QStringLiteral("y"), 0), 2);
}

TEST_F(RegistryStoreTest, MachineAndUserStoresAreSeparate)
{
    CRegistryStore machine(CRegistryStore::LocalMachine);
    CRegistryStore user;
    ASSERT_TRUE(machine.WriteProfileString(QString(), QStringLiteral("MorvanePath"), QStringLiteral("/opt/m")));
    EXPECT_EQ(machine.GetProfileString(QString(), QStringLiteral("MorvanePath")), QStringLiteral("/opt/m"));
    EXPECT_TRUE(user.GetProfileString(QString(), QStringLiteral("MorvanePath")).isEmpty());
    EXPECT_NE(machine.FileName(), user.FileName());
}

TEST(RegistryStoreNames, EscapingRoundTrips)
{
    for (const QString& name : {QStringLiteral("plain"), QStringLiteral("a/b\\c"), QStringLiteral("%2F"),
                                QStringLiteral("50%"), QString()}) {
        EXPECT_EQ(CRegistryStore::UnescapeName(CRegistryStore::EscapeName(name)), name);
        EXPECT_FALSE(CRegistryStore::EscapeName(name).contains(QLatin1Char('/')));
    }
}

} // namespace
