#include "search/CHistoryComboBox.h"

#include "TestSupport.h"
#include "settings/CRegistryStore.h"

#include <gtest/gtest.h>

namespace {

class HistoryComboBoxTest : public ::testing::Test
{
protected:
    void SetUp() override { TestSupport::ClearSettings(); }
    static QStringList Stored(const QString& section)
    {
        CRegistryStore store;
        QStringList entries;
        for (int i = 0; store.HasValue(section, QString::number(i)); ++i)
            entries.append(store.GetProfileString(section, QString::number(i)));
        return entries;
    }
};

TEST_F(HistoryComboBoxTest, NewestFirstWithoutDuplicatesOrEmptiesKeepingFifty)
{
    CHistoryComboBox box;
    box.setHistorySection(QStringLiteral("SearchHistory"));
    for (const char* text : {"alpha", "beta", "", "gamma", "alpha"})
        box.addToHistory(QString::fromLatin1(text));
    EXPECT_EQ(box.history(), (QStringList{"alpha", "gamma", "beta"}));
    EXPECT_EQ(box.currentText(), QStringLiteral("alpha"));

    for (int i = 0; i < 60; ++i)
        box.addToHistory(QStringLiteral("entry %1").arg(i));
    const QStringList history = box.history();
    ASSERT_EQ(history.size(), 50);
    EXPECT_EQ(history.first(), QStringLiteral("entry 59"));
    EXPECT_EQ(history.last(), QStringLiteral("entry 10"));
    box.waitForSaved();
    EXPECT_EQ(Stored(QStringLiteral("SearchHistory")), history);
}

TEST_F(HistoryComboBoxTest, PersistsAcrossInstancesWithTheSelectedRow)
{
    {
        CHistoryComboBox box;
        box.setHistorySection(QStringLiteral("FindInFilesFolders"));
        for (int i = 0; i < 20; ++i) // a burst of deferred saves, finished as the box goes away
            box.addToHistory(QStringLiteral("/src/%1").arg(i));
        box.setCurrentIndex(1);
        box.saveHistory();
    }
    CHistoryComboBox again;
    again.setHistorySection(QStringLiteral("FindInFilesFolders"));
    again.loadHistory();
    ASSERT_EQ(again.history().size(), 20);
    EXPECT_EQ(again.history().first(), QStringLiteral("/src/19"));
    EXPECT_EQ(again.currentText(), QStringLiteral("/src/18"));
}

TEST_F(HistoryComboBoxTest, HandEditedStoreLoadsCleanAndShrinksOnSave)
{
    CRegistryStore store;
    const QString section = QStringLiteral("SearchHistory");
    const QStringList raw{"a", "", "b", "a", "c"};
    for (int i = 0; i < raw.size(); ++i)
        store.WriteProfileString(section, QString::number(i), raw[i]);
    store.WriteProfileString(section, QStringLiteral("7"), QStringLiteral("orphan"));
    store.WriteProfileInt(section, QStringLiteral("Selected"), 99);

    CHistoryComboBox box;
    box.setHistorySection(section);
    box.loadHistory();
    EXPECT_EQ(box.history(), (QStringList{"a", "b", "c"}));
    EXPECT_EQ(box.currentIndex(), -1); // a row that isn't there selects nothing
    box.addToHistory(QStringLiteral("d"));
    box.waitForSaved();
    EXPECT_EQ(Stored(section), (QStringList{"d", "a", "b", "c"}));
    EXPECT_FALSE(store.HasValue(section, QStringLiteral("7")));
}

TEST_F(HistoryComboBoxTest, FixedRowsStayOnTopAndAreNeverStored)
{
    CHistoryComboBox box;
    box.setHistorySection(QStringLiteral("FindInFilesTypes"));
    box.addFixedItem(QStringLiteral("C++ (*.cpp;*.h)"), QStringLiteral("*.cpp;*.h"));
    for (int i = 0; i < 55; ++i)
        box.addToHistory(QStringLiteral("*.t%1").arg(i));
    box.addToHistory(QStringLiteral("C++ (*.cpp;*.h)")); // picks the row, adds nothing
    EXPECT_EQ(box.itemText(0), QStringLiteral("C++ (*.cpp;*.h)"));
    EXPECT_EQ(box.count(), 1 + 50);
    EXPECT_EQ(box.currentIndex(), 0);
    box.waitForSaved();
    const QStringList stored = Stored(QStringLiteral("FindInFilesTypes"));
    EXPECT_EQ(stored.size(), 50);
    EXPECT_EQ(stored.first(), QStringLiteral("*.t54"));
}

} // namespace
