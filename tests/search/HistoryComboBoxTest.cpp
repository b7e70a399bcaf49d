#include "search/CHistoryComboBox.h"

#include "TestSupport.h"
#include "app/CRegistryStore.h"

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

TEST_F(HistoryComboBoxTest, NewestFirstWithoutDuplicates)
{
    CHistoryComboBox box;
    box.setHistorySection(QStringLiteral("SearchHistory"));
    for (const char* text : {"alpha", "beta", "gamma", "alpha"})
        box.addToHistory(QString::fromLatin1(text));
    EXPECT_EQ(box.history(), (QStringList{"alpha", "gamma", "beta"}));
    EXPECT_EQ(box.currentIndex(), 0);
    EXPECT_EQ(box.currentText(), QStringLiteral("alpha"));
}

TEST_F(HistoryComboBoxTest, EmptyTextIsNotRecorded)
{
    CHistoryComboBox box;
    box.setHistorySection(QStringLiteral("SearchHistory"));
    box.addToHistory(QStringLiteral("x"));
    box.addToHistory(QString());
    EXPECT_EQ(box.history(), QStringList{"x"});
}

TEST_F(HistoryComboBoxTest, KeepsTheFiftyNewest)
{
    CHistoryComboBox box;
    box.setHistorySection(QStringLiteral("ReplaceHistory"));
    for (int i = 0; i < 60; ++i)
        box.addToHistory(QStringLiteral("entry %1").arg(i));
    const QStringList history = box.history();
    ASSERT_EQ(history.size(), CHistoryComboBox::MaxEntries);
    EXPECT_EQ(history.first(), QStringLiteral("entry 59"));
    EXPECT_EQ(history.last(), QStringLiteral("entry 10"));
    box.waitForSaved();
    EXPECT_EQ(Stored(QStringLiteral("ReplaceHistory")), history);
}

TEST_F(HistoryComboBoxTest, PersistsAcrossInstancesWithTheSelectedRow)
{
    {
        CHistoryComboBox box;
        box.setHistorySection(QStringLiteral("FindInFilesFolders"));
        box.addToHistory(QStringLiteral("/src/one"));
        box.addToHistory(QStringLiteral("/src/two"));
        box.setCurrentIndex(1);
        box.saveHistory();
    }
    EXPECT_EQ(Stored(QStringLiteral("FindInFilesFolders")), (QStringList{"/src/two", "/src/one"}));
    EXPECT_EQ(CRegistryStore().GetProfileInt(QStringLiteral("FindInFilesFolders"), QStringLiteral("Selected"), -1), 1);

    CHistoryComboBox again;
    again.setHistorySection(QStringLiteral("FindInFilesFolders"));
    again.loadHistory();
    EXPECT_EQ(again.history(), (QStringList{"/src/two", "/src/one"}));
    EXPECT_EQ(again.currentIndex(), 1);
    EXPECT_EQ(again.currentText(), QStringLiteral("/src/one"));
}

TEST_F(HistoryComboBoxTest, ABoxGoingAwayFinishesItsSave)
{
    {
        CHistoryComboBox box;
        box.setHistorySection(QStringLiteral("SearchHistory"));
        for (int i = 0; i < 20; ++i)
            box.addToHistory(QStringLiteral("burst %1").arg(i));
    }
    const QStringList stored = Stored(QStringLiteral("SearchHistory"));
    ASSERT_EQ(stored.size(), 20);
    EXPECT_EQ(stored.first(), QStringLiteral("burst 19"));
    EXPECT_EQ(stored.last(), QStringLiteral("burst 0"));
}

TEST_F(HistoryComboBoxTest, SectionsAreSeparate)
{
    CHistoryComboBox search;
    search.setHistorySection(QStringLiteral("SearchHistory"));
    CHistoryComboBox replace;
    replace.setHistorySection(QStringLiteral("ReplaceHistory"));
    search.addToHistory(QStringLiteral("find me"));
    replace.addToHistory(QStringLiteral("put me"));
    search.waitForSaved();
    replace.waitForSaved();
    EXPECT_EQ(Stored(QStringLiteral("SearchHistory")), QStringList{"find me"});
    EXPECT_EQ(Stored(QStringLiteral("ReplaceHistory")), QStringList{"put me"});
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
    EXPECT_TRUE(box.currentText().isEmpty());

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
    EXPECT_EQ(box.count(), 1 + CHistoryComboBox::MaxEntries);
    EXPECT_EQ(box.currentIndex(), 0);
    box.waitForSaved();
    const QStringList stored = Stored(QStringLiteral("FindInFilesTypes"));
    EXPECT_EQ(stored.size(), CHistoryComboBox::MaxEntries);
    EXPECT_FALSE(stored.contains(QStringLiteral("C++ (*.cpp;*.h)")));
    EXPECT_EQ(stored.first(), QStringLiteral("*.t54"));
}

} // namespace
