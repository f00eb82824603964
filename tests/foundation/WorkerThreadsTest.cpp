#include "foundation/WorkerThreads.h"

#include "foundation/MainThread.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <future>
#include <memory>
#include <pthread.h>

using namespace std::chrono_literals;

TEST(WorkerThreadsTest, AThreadBearsItsNameAsFarAsTheSystemTakesIt)
{
    std::array<char, 16> name{};
    bool onMain = true;
    WorkerThreads threads;
    threads.start("convert segment 2", [&] {
        pthread_getname_np(pthread_self(), name.data(), name.size());
        onMain = MainThread::isCurrent();
    });
    EXPECT_TRUE(threads.waitUntilAllEnded(30s));
    EXPECT_STREQ(name.data(), "convert segment");
    EXPECT_FALSE(onMain);
}

TEST(WorkerThreadsTest, CountsTheThreadsThatRun)
{
    std::promise<void> gate;
    const std::shared_future<void> opened = gate.get_future().share();
    WorkerThreads threads;
    EXPECT_EQ(threads.count(), 0U);
    for (int i = 0; i < 3; ++i)
        threads.start("waiting", [opened] { opened.wait(); });
    EXPECT_EQ(threads.count(), 3U);
    gate.set_value();
    EXPECT_TRUE(threads.waitUntilAllEnded(30s));
    EXPECT_EQ(threads.count(), 0U);
}

TEST(WorkerThreadsTest, WaitingOnTheMainThreadRunsTheWorkThatThreadsWaitForThere)
{
    int hops = 0; // Touched on the main thread alone.
    WorkerThreads threads;
    for (int i = 0; i < 4; ++i) {
        threads.start("hopping", [&] {
            for (int hop = 0; hop < 25; ++hop)
                MainThread::runAndWait([&] { ++hops; });
        });
    }
    EXPECT_TRUE(threads.waitUntilAllEnded(30s));
    EXPECT_EQ(hops, 100);
}

TEST(WorkerThreadsTest, WaitingOnAnotherThreadEndsWithTheLastThread)
{
    WorkerThreads waitedFor;
    WorkerThreads waiting;
    std::promise<void> gate;
    std::atomic<bool> ended{false};
    std::atomic<bool> sawEnd{false};
    waitedFor.start("waited for", [&, opened = gate.get_future().share()] {
        opened.wait();
        ended = true;
    });
    waiting.start("waiting", [&] { sawEnd = waitedFor.waitUntilAllEnded(30s) && ended; });
    gate.set_value();
    EXPECT_TRUE(waiting.waitUntilAllEnded(30s));
    EXPECT_TRUE(sawEnd);
}

TEST(WorkerThreadsTest, WaitingStopsWhenTheTimeRunsOut)
{
    std::promise<void> gate;
    WorkerThreads threads;
    threads.start("hanging", [opened = gate.get_future().share()] { opened.wait(); });
    EXPECT_FALSE(threads.waitUntilAllEnded(20ms));
    EXPECT_EQ(threads.count(), 1U);
    gate.set_value();
    EXPECT_TRUE(threads.waitUntilAllEnded(30s));
}

TEST(WorkerThreadsTest, WhatTheBodyHeldIsLetGoBeforeTheThreadCountsAsEnded)
{
    std::size_t countAtTheEnd = 0;
    WorkerThreads threads;
    std::shared_ptr<int> held(new int(1), [&](const int* number) {
        delete number;
        countAtTheEnd = threads.count();
    });
    threads.start("holding", [held = std::move(held)] { EXPECT_EQ(*held, 1); });
    EXPECT_TRUE(threads.waitUntilAllEnded(30s));
    EXPECT_EQ(countAtTheEnd, 1U);
}

TEST(WorkerThreadsTest, TheEndOfTheOwnerWaitsForItsThreads)
{
    std::atomic<int> ended{0};
    {
        WorkerThreads threads;
        for (int i = 0; i < 4; ++i) {
            threads.start("short", [&] {
                MainThread::runAndWait([] {});
                ++ended;
            });
        }
    }
    EXPECT_EQ(ended, 4);
}
