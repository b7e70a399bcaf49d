#include "app/NavigationHistory.h"

#include <gtest/gtest.h>

namespace {

// Distinct addresses standing in for views.
const int kViewA = 0;
const int kViewB = 0;
const void* const A = &kViewA;
const void* const B = &kViewB;

using Entry = NavigationHistory::Entry;

std::vector<long> Positions(const NavigationHistory& history)
{
    std::vector<long> positions;
    for (const Entry& entry : history.Entries())
        positions.push_back(entry.position);
    return positions;
}

TEST(NavigationHistoryTest, EmptyHistoryGoesNowhere)
{
    NavigationHistory history;
    Entry entry{B, 99};
    EXPECT_FALSE(history.CanGoBack());
    EXPECT_FALSE(history.CanGoForward());
    EXPECT_FALSE(history.Back(entry));
    EXPECT_EQ(entry, (Entry{B, 99})) << "a failed step leaves the entry alone";
    EXPECT_EQ(history.Cursor(), -1);
}

TEST(NavigationHistoryTest, AddPutsTheCursorOnTheNewestEntry)
{
    NavigationHistory history;
    history.Add(A, 10);
    EXPECT_EQ(history.Cursor(), 0);
    history.Add(A, 20);
    history.Add(B, 10);
    EXPECT_EQ(history.Count(), 3);
    EXPECT_EQ(history.Cursor(), 2);
    EXPECT_EQ(history.Entries().last(), (Entry{B, 10}));
}

TEST(NavigationHistoryTest, ADuplicatePairIsNotStoredAgain)
{
    NavigationHistory history;
    history.Add(A, 10);
    history.Add(A, 20);
    history.Add(A, 10);
    EXPECT_EQ(Positions(history), (std::vector<long>{10, 20}));
    EXPECT_EQ(history.Cursor(), 1) << "the cursor goes to the newest entry";

    // The same position in another view is another pair.
    history.Add(B, 10);
    EXPECT_EQ(history.Count(), 3);
}

TEST(NavigationHistoryTest, TheEchoOfAJumpLeavesTheCursorWhereItStands)
{
    NavigationHistory history;
    for (long position : {10, 20, 30, 40})
        history.Add(A, position);
    Entry entry;
    ASSERT_TRUE(history.Back(entry));
    ASSERT_TRUE(history.Back(entry));
    EXPECT_EQ(entry.position, 20);
    // The view reports the caret it was just moved to.
    history.Add(entry.view, entry.position);
    EXPECT_EQ(history.Cursor(), 1);
    ASSERT_TRUE(history.Back(entry));
    EXPECT_EQ(entry.position, 10);
}

TEST(NavigationHistoryTest, KeepsAtMostTwentyAndDropsTheOldest)
{
    NavigationHistory history;
    for (long position = 0; position < 25; ++position)
        history.Add(A, position);
    ASSERT_EQ(history.Count(), NavigationHistory::MaxEntries);
    EXPECT_EQ(history.Entries().first().position, 5);
    EXPECT_EQ(history.Entries().last().position, 24);
    EXPECT_EQ(history.Cursor(), 19);

    // A dropped pair is new again.
    history.Add(A, 0);
    EXPECT_EQ(history.Count(), 20);
    EXPECT_EQ(history.Entries().first().position, 6);
    EXPECT_EQ(history.Entries().last().position, 0);
}

TEST(NavigationHistoryTest, BackWalksToTheOldestAndStops)
{
    NavigationHistory history;
    for (long position : {1, 2, 3})
        history.Add(A, position);
    std::vector<long> visited;
    Entry entry;
    while (history.Back(entry))
        visited.push_back(entry.position);
    EXPECT_EQ(visited, (std::vector<long>{2, 1}));
    EXPECT_EQ(history.Cursor(), 0);
    EXPECT_FALSE(history.CanGoBack());
}

TEST(NavigationHistoryTest, ForwardMayStepOnePastTheNewestWithoutAnEntry)
{
    NavigationHistory history;
    for (long position : {1, 2, 3})
        history.Add(A, position);
    Entry entry;
    history.Back(entry);
    history.Back(entry);
    ASSERT_EQ(history.Cursor(), 0);

    ASSERT_TRUE(history.Forward(entry));
    EXPECT_EQ(entry.position, 2);
    ASSERT_TRUE(history.Forward(entry));
    EXPECT_EQ(entry.position, 3);
    EXPECT_FALSE(history.CanGoForward());

    entry = Entry{B, 77};
    EXPECT_FALSE(history.Forward(entry)) << "the step to the count yields nothing";
    EXPECT_EQ(history.Cursor(), 3);
    EXPECT_EQ(entry, (Entry{B, 77}));
    EXPECT_FALSE(history.Forward(entry));
    EXPECT_EQ(history.Cursor(), 3) << "and goes no further";

    // From there one step back is the newest entry.
    ASSERT_TRUE(history.Back(entry));
    EXPECT_EQ(entry.position, 3);
}

TEST(NavigationHistoryTest, AnAddAfterGoingBackKeepsTheLaterEntries)
{
    NavigationHistory history;
    for (long position : {1, 2, 3})
        history.Add(A, position);
    Entry entry;
    history.Back(entry);
    history.Back(entry);
    history.Add(B, 9);
    EXPECT_EQ(Positions(history), (std::vector<long>{1, 2, 3, 9}));
    EXPECT_EQ(history.Cursor(), 3);
}

TEST(NavigationHistoryTest, RemoveViewForgetsEveryPositionOfThatViewOnly)
{
    NavigationHistory history;
    history.Add(A, 1);
    history.Add(B, 2);
    history.Add(A, 3);
    history.Add(B, 4);
    Entry entry;
    history.Back(entry);
    history.Back(entry);
    history.Back(entry);
    ASSERT_EQ(history.Cursor(), 0);

    history.RemoveView(A);
    EXPECT_EQ(history.Entries(), (QList<Entry>{{B, 2}, {B, 4}}));
    EXPECT_EQ(history.Cursor(), 1);

    // A view with nothing stored changes nothing, the cursor included.
    history.Back(entry);
    history.RemoveView(A);
    EXPECT_EQ(history.Count(), 2);
    EXPECT_EQ(history.Cursor(), 0);

    history.RemoveView(B);
    EXPECT_EQ(history.Count(), 0);
    EXPECT_FALSE(history.CanGoBack());
    EXPECT_FALSE(history.Forward(entry));
}

} // namespace
