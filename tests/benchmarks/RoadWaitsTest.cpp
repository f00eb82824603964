#include "rows/RoadWaits.h"

#include <gtest/gtest.h>

using RoadWaits::Intervals;
using RoadWaits::Record;
using RoadWaits::Work;

namespace {

constexpr double accuracy = 1e-6;
constexpr Intervals intervals{.tick = 0.1, .finderSleep = 0.5, .poll = 1};

Work transfer(const char* endpoint, double begin, double end)
{
    return {.endpoint = QString::fromLatin1(endpoint), .begin = begin, .end = end};
}

Work nested(const char* endpoint, double begin, double end)
{
    return {.endpoint = QString::fromLatin1(endpoint), .isNested = true, .begin = begin, .end = end};
}

Work ffmpeg(double begin, double end)
{
    return {.kind = Work::Kind::Ffmpeg, .begin = begin, .end = end};
}

} // namespace

TEST(RoadWaitsTest, ACommandWaitsForTheNextTick)
{
    const Record record{.queueStarted = 0,
                        .submitted = 0.02,
                        .completed = 0.15,
                        .finderLooks = {0},
                        .queued = {{QStringLiteral("add_segment.php"), 0.02}},
                        .polls = {}};
    const auto result = RoadWaits::of(record, {transfer("add_segment.php", 0.1, 0.15)}, intervals);
    EXPECT_NEAR(result.idle, 0.08, accuracy);
    EXPECT_NEAR(result.demanded, 0.08, accuracy);
}

TEST(RoadWaitsTest, ATickThatWasMissedIsNoDemand)
{
    const Record record{.queueStarted = 0,
                        .submitted = 0.02,
                        .completed = 0.25,
                        .finderLooks = {0},
                        .queued = {{QStringLiteral("add_segment.php"), 0.02}},
                        .polls = {}};
    const auto result = RoadWaits::of(record, {transfer("add_segment.php", 0.2, 0.25)}, intervals);
    EXPECT_NEAR(result.idle, 0.18, accuracy);
    EXPECT_NEAR(result.demanded, 0.08, accuracy);
}

// One command at each tick.
TEST(RoadWaitsTest, ASecondCommandWaitsForTheTickAfter)
{
    const Record record{.queueStarted = 0,
                        .submitted = 0.02,
                        .completed = 0.21,
                        .finderLooks = {0},
                        .queued = {{QStringLiteral("a.php"), 0.02}, {QStringLiteral("b.php"), 0.02}},
                        .polls = {}};
    const auto result = RoadWaits::of(record, {transfer("a.php", 0.1, 0.11), transfer("b.php", 0.2, 0.21)}, intervals);
    EXPECT_NEAR(result.idle, 0.08 + 0.09, accuracy);
    EXPECT_NEAR(result.demanded, 0.08 + 0.09, accuracy);
}

TEST(RoadWaitsTest, WhatTheFinderHasToFindWaitsForItsLook)
{
    const Record record{
        .queueStarted = 0, .submitted = 0.1, .completed = 0.9, .finderLooks = {0, 0.52}, .queued = {}, .polls = {}};
    const auto result = RoadWaits::of(record, {ffmpeg(0.53, 0.8)}, intervals);
    EXPECT_NEAR(result.idle, 0.43 + 0.1, accuracy); // and nobody says what it did at the end
    EXPECT_NEAR(result.demanded, 0.4, accuracy);
}

TEST(RoadWaitsTest, AfterTheLookComesTheTick)
{
    const Record record{.queueStarted = 0,
                        .submitted = 0.13,
                        .completed = 0.62,
                        .finderLooks = {0.05, 0.551},
                        .queued = {{QStringLiteral("jobdetails.php"), 0.551}},
                        .polls = {}};
    const auto result = RoadWaits::of(record, {transfer("jobdetails.php", 0.601, 0.62)}, intervals);
    EXPECT_NEAR(result.demanded, 0.6 - 0.13, accuracy);
}

TEST(RoadWaitsTest, APollWaitsForItsPeriod)
{
    const Record record{
        .queueStarted = 0,
        .submitted = 0.02,
        .completed = 1.22,
        .finderLooks = {0},
        .queued = {{QStringLiteral("checkstatus.php"), 0.02}, {QStringLiteral("checkstatus.php"), 1.02}},
        .polls = {0.02, 1.02}};
    const auto result = RoadWaits::of(
        record, {transfer("checkstatus.php", 0.1, 0.2), transfer("checkstatus.php", 1.1, 1.22)}, intervals);
    EXPECT_NEAR(result.idle, 0.08 + 0.9, accuracy);
    EXPECT_NEAR(result.demanded, 0.08 + 0.9, accuracy);
}

TEST(RoadWaitsTest, InsideADeliveryNothingIsWaitedFor)
{
    const Record record{.queueStarted = 0,
                        .submitted = 0.02,
                        .completed = 0.15,
                        .finderLooks = {0},
                        .queued = {{QStringLiteral("d.php"), 0.02}},
                        .polls = {}};
    const auto result = RoadWaits::of(record, {transfer("d.php", 0.1, 0.12), nested("d.php", 0.13, 0.15)}, intervals);
    EXPECT_NEAR(result.idle, 0.08 + 0.01, accuracy);
    EXPECT_NEAR(result.demanded, 0.08, accuracy);
}

TEST(RoadWaitsTest, WhatRunsBesideAnotherWorkIsNoWait)
{
    const Record record{.queueStarted = 0,
                        .submitted = 0,
                        .completed = 1,
                        .finderLooks = {0, 0.0},
                        .queued = {{QStringLiteral("add_segment.php"), 0.3}},
                        .polls = {}};
    const auto result =
        RoadWaits::of(record, {ffmpeg(0, 1), ffmpeg(0, 0.3), transfer("add_segment.php", 0.6, 0.7)}, intervals);
    EXPECT_NEAR(result.idle, 0, accuracy);
    EXPECT_NEAR(result.demanded, 0, accuracy);
}
