#include "settings/NavigationHistory.h"

#include <gtest/gtest.h>

namespace {

// Two objects standing in for views.
QObject kViews[2];
QObject* const A = &kViews[0];
QObject* const B = &kViews[1];

using Entry = NavigationHistory::Entry;

NavigationHistory Filled(QObject* view, std::initializer_list<long> positions)
{
    NavigationHistory history;
    for (long position : positions)
        history.Add(view, position);
    return history;
}

TEST(NavigationHistoryTest, EmptyHistoryGoesNowhereAndLeavesTheEntryAlone)
{
    NavigationHistory history;
    Entry entry{B, 99};
    EXPECT_FALSE(history.Back(entry));
    EXPECT_FALSE(history.CanGoForward());
    EXPECT_EQ(entry, (Entry{B, 99}));
    EXPECT_EQ(history.Cursor(), -1);
}

TEST(NavigationHistoryTest, ADuplicatePairIsNotStoredAgainButTheSamePositionElsewhereIs)
{
    NavigationHistory history = Filled(A, {10, 20, 10});
    EXPECT_EQ(history.Count(), 2);
    EXPECT_EQ(history.Cursor(), 1);
    history.Add(B, 10);
    EXPECT_EQ(history.Entries(), (QList<Entry>{{A, 10}, {A, 20}, {B, 10}}));
    EXPECT_EQ(history.Cursor(), 2);
}

TEST(NavigationHistoryTest, TheEchoOfAJumpStaysAndANewPairAfterGoingBackKeepsTheLaterOnes)
{
    NavigationHistory history = Filled(A, {10, 20, 30, 40});
    Entry entry;
    history.Back(entry);
    ASSERT_TRUE(history.Back(entry));
    ASSERT_EQ(entry.position, 20);
    history.Add(entry.view, entry.position); // the view reports the caret it was moved to
    EXPECT_EQ(history.Cursor(), 1);
    // A stored pair other than the current one sends the cursor to the newest.
    history.Add(A, 10);
    EXPECT_EQ(history.Cursor(), 3);
    history.Back(entry);
    history.Add(B, 9);
    EXPECT_EQ(history.Entries(), (QList<Entry>{{A, 10}, {A, 20}, {A, 30}, {A, 40}, {B, 9}}));
    EXPECT_EQ(history.Cursor(), 4);
}

TEST(NavigationHistoryTest, KeepsAtMostTwentyAndADroppedPairIsNewAgain)
{
    NavigationHistory history;
    for (long position = 0; position < 25; ++position)
        history.Add(A, position);
    ASSERT_EQ(history.Count(), 20);
    EXPECT_EQ(history.Entries().first().position, 5);
    EXPECT_EQ(history.Cursor(), 19);
    history.Add(A, 0);
    EXPECT_EQ(history.Count(), 20);
    EXPECT_EQ(history.Entries().first().position, 6);
    EXPECT_EQ(history.Entries().last().position, 0);
}

TEST(NavigationHistoryTest, BackStopsAtTheOldestAndForwardMayStepToTheCount)
{
    NavigationHistory history = Filled(A, {1, 2, 3});
    std::vector<long> visited;
    Entry entry;
    while (history.Back(entry))
        visited.push_back(entry.position);
    EXPECT_EQ(visited, (std::vector<long>{2, 1}));
    EXPECT_EQ(history.Cursor(), 0);

    visited.clear();
    while (history.Forward(entry))
        visited.push_back(entry.position);
    EXPECT_EQ(visited, (std::vector<long>{2, 3}));
    EXPECT_EQ(history.Cursor(), 3) << "the last step went to the count and yielded nothing";
    entry = Entry{B, 77};
    EXPECT_FALSE(history.Forward(entry));
    EXPECT_EQ(history.Cursor(), 3);
    EXPECT_EQ(entry, (Entry{B, 77}));
    ASSERT_TRUE(history.Back(entry));
    EXPECT_EQ(entry.position, 3) << "from the count, one step back is the newest entry";
}

TEST(NavigationHistoryTest, RemoveViewForgetsThatViewOnly)
{
    NavigationHistory history;
    for (const Entry& e : {Entry{A, 1}, Entry{B, 2}, Entry{A, 3}, Entry{B, 4}})
        history.Add(e.view, e.position);
    Entry entry;
    for (int i = 0; i < 3; ++i)
        history.Back(entry);
    history.RemoveView(A);
    EXPECT_EQ(history.Entries(), (QList<Entry>{{B, 2}, {B, 4}}));
    EXPECT_EQ(history.Cursor(), 1);
    history.Back(entry);
    history.RemoveView(A);
    EXPECT_EQ(history.Cursor(), 0) << "a view with nothing stored changes nothing";
    history.RemoveView(B);
    EXPECT_EQ(history.Count(), 0);
    EXPECT_FALSE(history.CanGoBack());
    EXPECT_FALSE(history.Forward(entry));
}

TEST(NavigationHistoryTest, AViewThatIsGoneLeavesNoEntryBehindAndNoDanglingOne)
{
    NavigationHistory history;
    auto* gone = new QObject;
    history.Add(gone, 1);
    history.Add(A, 2);
    history.Add(gone, 3);
    delete gone;
    EXPECT_TRUE(history.Entries().at(0).view.isNull()) << "the entry no longer points anywhere";
    history.RemoveView(nullptr);
    EXPECT_EQ(history.Entries(), (QList<Entry>{{A, 2}}));
    EXPECT_EQ(history.Cursor(), 0);
}

} // namespace
