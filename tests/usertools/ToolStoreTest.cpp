#include "TestSupport.h"
#include "settings/CRegistryStore.h"
#include "usertools/CUserToolStore.h"

#include <gtest/gtest.h>

namespace {

class ToolStoreTest : public ::testing::Test
{
protected:
    void SetUp() override { TestSupport::ClearSettings(); }
};

TEST_F(ToolStoreTest, ToolsRoundTripInOrderWithEveryField)
{
    const QList<UserTool> tools{
        {QStringLiteral("Compile"), QStringLiteral("gcc"), QStringLiteral("-c \"$FileName\""),
         QStringLiteral("$FileDir"), UserTool::OutputBar, true, QStringLiteral("Ctrl+F7")},
        {QStringLiteral("Format/Tidy"), QStringLiteral("/usr/bin/indent"), QString(), QString(),
         UserTool::NewDocument, false, QString()},
        {QStringLiteral("Browse"), QStringLiteral("xdg-open"), QStringLiteral("$FileDir"), QString(),
         UserTool::Launch, false, QStringLiteral("Alt+B")}};
    ASSERT_TRUE(CUserToolStore::Save(tools));
    EXPECT_EQ(CUserToolStore::Load(), tools);
}

TEST_F(ToolStoreTest, SavingFewerToolsLeavesNoOldGroupsBehind)
{
    QList<UserTool> tools;
    for (int i = 0; i < 5; ++i)
        tools << UserTool{QStringLiteral("T%1").arg(i), QStringLiteral("true")};
    ASSERT_TRUE(CUserToolStore::Save(tools));
    ASSERT_TRUE(CUserToolStore::Save(tools.mid(0, 2)));
    EXPECT_EQ(CUserToolStore::Load().size(), 2);
    EXPECT_FALSE(CRegistryStore().HasValue(QStringLiteral("Tools\\3"), QStringLiteral("Name")));
}

TEST_F(ToolStoreTest, DamagedEntriesFallBackQuietly)
{
    CRegistryStore store;
    store.WriteProfileInt(QStringLiteral("Tools"), QStringLiteral("Count"), 3);
    store.WriteProfileString(QStringLiteral("Tools\\1"), QStringLiteral("Name"), QStringLiteral("Odd kind"));
    store.WriteProfileString(QStringLiteral("Tools\\1"), QStringLiteral("Command"), QStringLiteral("ls"));
    store.WriteProfileInt(QStringLiteral("Tools\\1"), QStringLiteral("Kind"), 7);
    // Group 2 is missing altogether.
    store.WriteProfileString(QStringLiteral("Tools\\3"), QStringLiteral("Command"), QStringLiteral("make"));
    const QList<UserTool> tools = CUserToolStore::Load();
    ASSERT_EQ(tools.size(), 2);
    EXPECT_EQ(tools[0].kind, UserTool::OutputBar);
    EXPECT_EQ(tools[1].command, QStringLiteral("make"));
}

TEST_F(ToolStoreTest, NoMoreThanTheCommandRangeHolds)
{
    QList<UserTool> tools(UserTools::MaxTools + 4, UserTool{QStringLiteral("t"), QStringLiteral("true")});
    ASSERT_TRUE(CUserToolStore::Save(tools));
    EXPECT_EQ(CUserToolStore::Load().size(), 251);
}

} // namespace
