#include "harness/Row.h"

#include <gtest/gtest.h>

#include <string>

using Bench::Goal;
using Bench::Row;

TEST(BenchmarkRowTest, TheMedianIsTheMiddleOfTheValues)
{
    EXPECT_EQ(Bench::median({}), 0);
    EXPECT_EQ(Bench::median({3}), 3);
    EXPECT_EQ(Bench::median({9, 1, 5}), 5);
    EXPECT_EQ(Bench::median({4, 1, 2, 9}), 3);
}

// Not the ratio of the medians: what slowed the machine down slowed both of a pair.
TEST(BenchmarkRowTest, TheRatioIsTheMedianOfThePairs)
{
    const Row row{.ours = {2, 40, 6}, .others = {1, 40, 2}};
    EXPECT_EQ(row.ratios(), (std::vector<double>{2, 1, 3}));
    EXPECT_EQ(row.ratio(), 2);
    EXPECT_EQ(row.spread(), (std::pair<double, double>{1, 3}));
    EXPECT_EQ(row.oursMedian(), 6);
    EXPECT_EQ(row.othersMedian(), 2);
}

TEST(BenchmarkRowTest, AWorkThatStandsAloneHasNoRatio)
{
    const Row row{.goal = Goal::OursAtMost, .limit = 4, .ours = {5, 3, 4}};
    EXPECT_FALSE(row.ratio());
    EXPECT_EQ(row.spread(), (std::pair<double, double>{3, 5}));
    EXPECT_EQ(row.isMet(), true);
}

TEST(BenchmarkRowTest, AGoalIsMissedAboveItsLimit)
{
    Row row{.goal = Goal::RatioAtMost, .limit = 1.02, .ours = {1.02}, .others = {1}};
    EXPECT_EQ(row.isMet(), true);
    row.ours = {1.03};
    EXPECT_EQ(row.isMet(), false);
    row.goal = Goal::None;
    EXPECT_FALSE(row.isMet());
}

TEST(BenchmarkRowTest, WhoBeginsChangesFromPairToPair)
{
    std::string order;
    Bench::inTurn(
        3, [&] { order += 'o'; }, [&] { order += 't'; });
    EXPECT_EQ(order, "ottoot");
}
