#include "foundation/MainThread.h"

#include "support/Waiting.h"

#include <QTimer>
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <numeric>
#include <thread>
#include <vector>

namespace {

// Counts its copies once armed: the queue's copy of a waiting thread's work is made just before the work is queued.
struct Copies
{
    std::atomic<bool> armed{false};
    std::atomic<int> count{0};
};

struct CountedCapture
{
    Copies* copies;
    explicit CountedCapture(Copies* counted) : copies(counted) {}
    CountedCapture(const CountedCapture& other) : copies(other.copies)
    {
        if (copies->armed)
            ++copies->count;
    }
    CountedCapture& operator=(const CountedCapture&) = delete;
    ~CountedCapture() = default;
};

// In a process of its own, because no work is taken afterwards. 0 when all is as it should be.
int shutDownWithThreadsWaiting()
{
    constexpr std::size_t threadCount = 4;
    std::array<Copies, threadCount> copies;
    std::atomic<std::size_t> refused{0};
    std::atomic<bool> anyRan{false};
    std::vector<std::thread> threads;
    for (Copies& copied : copies) {
        threads.emplace_back([&] {
            const std::function<void()> work = [counted = CountedCapture(&copied), &anyRan] { anyRan = true; };
            copied.armed = true;
            if (!MainThread::runAndWait(work))
                ++refused;
        });
    }
    for (const Copies& copied : copies) {
        while (copied.count == 0)
            std::this_thread::yield();
    }
    MainThread::shutDown();
    for (std::thread& thread : threads)
        thread.join();
    MainThread::drain();
    return refused == threadCount && !anyRan ? 0 : 1;
}

int workAfterShutDown()
{
    MainThread::shutDown();
    bool ran = false;
    bool waited = true;
    MainThread::post([&] { ran = true; });
    std::thread([&] { waited = MainThread::runAndWait([&] { ran = true; }); }).join();
    MainThread::drain();
    return !ran && !waited ? 0 : 1;
}

int shutDownInsideWork()
{
    bool ranLater = false;
    MainThread::post([] { MainThread::shutDown(); });
    MainThread::post([&] { ranLater = true; });
    MainThread::drain();
    return ranLater ? 1 : 0;
}

} // namespace

TEST(MainThreadTest, IsCurrentOnTheMainThreadAlone)
{
    EXPECT_TRUE(MainThread::isCurrent());
    bool onWorker = true;
    std::thread([&] { onWorker = MainThread::isCurrent(); }).join();
    EXPECT_FALSE(onWorker);
}

TEST(MainThreadTest, PostedWorkRunsOnTheMainThreadInTheOrderInWhichItWasPosted)
{
    std::vector<int> order; // Touched on the main thread alone.
    std::thread poster([&] {
        for (int i = 0; i < 300; ++i) {
            MainThread::post([&order, i] {
                EXPECT_TRUE(MainThread::isCurrent());
                order.push_back(i);
            });
        }
    });
    EXPECT_TRUE(Waiting::until([&] { return order.size() == 300; }));
    poster.join();
    std::vector<int> expected(300);
    std::iota(expected.begin(), expected.end(), 0);
    EXPECT_EQ(order, expected);
}

TEST(MainThreadTest, PostedWorkIsNotRunInsideThePostingCall)
{
    bool ran = false;
    MainThread::post([&] { ran = true; });
    EXPECT_FALSE(ran);
    EXPECT_TRUE(Waiting::until([&] { return ran; }));
}

TEST(MainThreadTest, RunAndWaitOnTheMainThreadRunsAtOnce)
{
    bool ran = false;
    EXPECT_TRUE(MainThread::runAndWait([&] { ran = true; }));
    EXPECT_TRUE(ran);
}

TEST(MainThreadTest, RunAndWaitReturnsAfterTheWorkHasRunFromSeveralThreads)
{
    int total = 0; // Touched on the main thread alone.
    std::atomic<int> ended{0};
    std::atomic<int> returnedEarly{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int hop = 0; hop < 200; ++hop) {
                bool ran = false;
                const bool said = MainThread::runAndWait([&] {
                    ran = MainThread::isCurrent();
                    ++total;
                });
                if (!ran || !said)
                    ++returnedEarly;
            }
            ++ended;
        });
    }
    EXPECT_TRUE(Waiting::until([&] { return ended == 4; }));
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(total, 800);
    EXPECT_EQ(returnedEarly, 0);
}

TEST(MainThreadTest, ALoopNestedInOneItemGoesOnWithTheNext)
{
    bool nestedEnded = false;
    bool nextRan = false;
    MainThread::post([&] { nestedEnded = Waiting::until([&] { return nextRan; }, std::chrono::seconds(10)); });
    MainThread::post([&] { nextRan = true; });
    EXPECT_TRUE(Waiting::until([&] { return nestedEnded; }));
    EXPECT_TRUE(nextRan);
}

TEST(MainThreadTest, DrainRunsWhatIsQueuedWithoutATurnOfTheLoop)
{
    std::vector<int> order;
    MainThread::post([&] {
        order.push_back(1);
        MainThread::post([&] { order.push_back(3); });
    });
    MainThread::post([&] { order.push_back(2); });
    MainThread::drain();
    EXPECT_EQ(order, (std::vector{1, 2, 3}));
}

TEST(MainThreadTest, AFloodOfWorkLeavesTimersTheirTurn)
{
    constexpr int floodLimit = 200000;
    bool timerFired = false;
    int runs = 0;
    const std::function<void()> again = [&] {
        if (runs == 0)
            QTimer::singleShot(0, [&] { timerFired = true; });
        if (!timerFired && ++runs < floodLimit)
            MainThread::post(again);
    };
    MainThread::post(again);
    EXPECT_TRUE(Waiting::until([&] { return timerFired; }));
    MainThread::drain();
    EXPECT_LT(runs, floodLimit);
}

TEST(MainThreadTest, WhatPostedWorkHeldIsLetGoOnTheMainThread)
{
    bool letGo = false; // Touched on the main thread alone.
    std::thread([&] {
        std::shared_ptr<int> held(new int(1), [&](const int* number) {
            EXPECT_TRUE(MainThread::isCurrent());
            delete number;
            letGo = true;
        });
        MainThread::post([held = std::move(held)] { EXPECT_EQ(*held, 1); });
    }).join();
    EXPECT_TRUE(Waiting::until([&] { return letGo; }));
}

TEST(MainThreadTest, TheQueueHasLetGoOfTheWorkBeforeItsWaiterGoesOn)
{
    struct Counted
    {
        std::atomic<int>* alive;
        explicit Counted(std::atomic<int>* count) : alive(count) { ++*alive; }
        Counted(const Counted& other) : alive(other.alive) { ++*alive; }
        Counted& operator=(const Counted&) = delete;
        ~Counted() { --*alive; }
    };
    std::atomic<int> keptTooLong{0};
    std::atomic<bool> ended{false};
    std::thread waiter([&] {
        std::atomic<int> alive{0};
        const std::function<void()> work = [counted = Counted(&alive)] {};
        for (int hop = 0; hop < 500; ++hop) {
            MainThread::runAndWait(work);
            if (alive != 1)
                ++keptTooLong;
        }
        // The count must not go while the queue could still hold on to the work.
        while (alive != 1)
            std::this_thread::yield();
        ended = true;
    });
    EXPECT_TRUE(Waiting::until([&] { return ended.load(); }));
    waiter.join();
    EXPECT_EQ(keptTooLong, 0);
}

TEST(MainThreadTest, ShuttingDownReleasesEveryWaiterWithoutRunningItsWork)
{
    EXPECT_EXIT(std::_Exit(shutDownWithThreadsWaiting()), testing::ExitedWithCode(0), "");
}

TEST(MainThreadTest, NoWorkIsTakenAfterShuttingDown)
{
    EXPECT_EXIT(std::_Exit(workAfterShutDown()), testing::ExitedWithCode(0), "");
}

TEST(MainThreadTest, ShuttingDownInsideWorkDropsWhatWasQueuedBehindIt)
{
    EXPECT_EXIT(std::_Exit(shutDownInsideWork()), testing::ExitedWithCode(0), "");
}
