#include "engine/CountingGate.h"
#include "engine/UploadGate.h"
#include "foundation/Assertion.h"
#include "support/RecordedLog.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

// Threads that each wait at a gate once; how many were let in, and how many were turned away.
template <typename Gate>
class Visitors
{
public:
    explicit Visitors(Gate& gate) : m_gate(gate) {}
    ~Visitors()
    {
        m_gate.giveUp();
        for (std::thread& thread : m_threads)
            thread.join();
    }
    Visitors(const Visitors&) = delete;
    Visitors& operator=(const Visitors&) = delete;

    void send(int number)
    {
        for (int i = 0; i < number; ++i)
            m_threads.emplace_back([this] { m_gate.wait() ? ++in : ++away; });
    }
    // That many are in, and no other follows while the others have every chance.
    [[nodiscard]] bool stays(int number)
    {
        if (!Waiting::until([&] { return in == number; }))
            return false;
        Waiting::turnMainLoopFor(std::chrono::milliseconds(60));
        return in == number;
    }

    std::atomic<int> in = 0;
    std::atomic<int> away = 0;

private:
    Gate& m_gate;
    std::vector<std::thread> m_threads;
};

TEST(CountingGateTest, LetsInAsManyAsTheMaximumAndOneForEachThatLeaves)
{
    CountingGate gate;
    gate.setMaximum(2);
    Visitors visitors(gate);
    visitors.send(5);
    EXPECT_TRUE(visitors.stays(2));
    EXPECT_EQ(gate.count(), 2);
    gate.signal();
    EXPECT_TRUE(visitors.stays(3));
    EXPECT_EQ(gate.count(), 2);
}

TEST(CountingGateTest, ARaisedMaximumReleasesOneWaiterAtOnceAndTheOthersAsVisitorsLeave)
{
    CountingGate gate;
    gate.setMaximum(1);
    Visitors visitors(gate);
    visitors.send(4);
    EXPECT_TRUE(visitors.stays(1));
    gate.setMaximum(3);
    EXPECT_EQ(gate.maximum(), 3);
    EXPECT_TRUE(visitors.stays(2)) << "one waiter is woken by a new limit, however much room it makes";
    gate.signal();
    EXPECT_TRUE(visitors.stays(3));
}

TEST(CountingGateTest, ALoweredMaximumHoldsUntilEnoughHaveLeft)
{
    CountingGate gate;
    gate.setMaximum(2);
    Visitors visitors(gate);
    visitors.send(3);
    EXPECT_TRUE(visitors.stays(2));
    gate.setMaximum(1);
    gate.signal();
    EXPECT_TRUE(visitors.stays(2));
    gate.signal();
    EXPECT_TRUE(visitors.stays(3));
}

TEST(CountingGateTest, GivenUpItReleasesAllWaitersUncountedNowAndLater)
{
    CountingGate gate;
    gate.setMaximum(1);
    Visitors visitors(gate);
    visitors.send(4);
    EXPECT_TRUE(visitors.stays(1));
    gate.giveUp();
    EXPECT_TRUE(Waiting::until([&] { return visitors.away == 3; }));
    EXPECT_EQ(gate.count(), 1);
    gate.signal();
    EXPECT_FALSE(gate.wait());
    EXPECT_EQ(gate.count(), 0);
}

TEST(CountingGateTest, AMaximumBelowOneIsAProgrammingError)
{
    for (const int maximum : {0, -1}) {
        CountingGate gate;
        gate.setMaximum(maximum);
        if constexpr (Assertion::stopsTheProgram) {
            EXPECT_DEATH((void)gate.wait(), "Invalid max number of running ffmpeg procesess");
        } else {
            const RecordedLog log;
            gate.giveUp();
            EXPECT_FALSE(gate.wait());
            EXPECT_TRUE(log.contains(u"Invalid max number of running ffmpeg procesess"_s));
        }
    }
}

TEST(UploadGateTest, LetsInAsManyAsTheMaximumAndOneForEachReply)
{
    UploadGate gate;
    gate.setMaximum(2);
    Visitors visitors(gate);
    visitors.send(5);
    EXPECT_TRUE(visitors.stays(2));
    EXPECT_EQ(gate.count(), 2);
    EXPECT_EQ(gate.waiting(), 3);
    gate.signal();
    EXPECT_TRUE(visitors.stays(3));
    EXPECT_EQ(gate.waiting(), 2);
}

TEST(UploadGateTest, ANewMaximumIsSeenByAllThatWait)
{
    UploadGate gate;
    gate.setMaximum(1);
    Visitors visitors(gate);
    visitors.send(3);
    EXPECT_TRUE(visitors.stays(1));
    gate.setMaximum(3);
    EXPECT_EQ(gate.maximum(), 3);
    EXPECT_TRUE(visitors.stays(3));
}

// The transcript's reply counts out, though its upload never counted in.
TEST(UploadGateTest, AfterThreeJobsOfOneFileAndALimitOfOneFourUploadsMayRunAtOnce)
{
    UploadGate gate;
    gate.setMaximum(1);
    for (int job = 0; job < 3; ++job) {
        ASSERT_TRUE(gate.wait());
        gate.signal();
        gate.passBy();
        gate.signal();
    }
    EXPECT_EQ(gate.count(), -3);
    Visitors visitors(gate);
    visitors.send(6);
    EXPECT_TRUE(visitors.stays(4));
}

TEST(UploadGateTest, AnUploadWithoutAReplyKeepsItsPlace)
{
    UploadGate gate;
    gate.setMaximum(1);
    ASSERT_TRUE(gate.wait());
    gate.lose();
    EXPECT_EQ(gate.count(), 1);
    Visitors visitors(gate);
    visitors.send(1);
    EXPECT_TRUE(visitors.stays(0));
}

TEST(UploadGateTest, IsBlockedOnlyWhenThreadsWaitAndNoReplyCanLetThemIn)
{
    UploadGate gate;
    gate.setMaximum(1);
    EXPECT_FALSE(gate.isBlocked());
    ASSERT_TRUE(gate.wait());
    Visitors visitors(gate);
    visitors.send(1);
    ASSERT_TRUE(Waiting::until([&] { return gate.waiting() == 1; }));
    EXPECT_FALSE(gate.isBlocked()) << "the reply to the upload under way may still come";
    gate.passBy();
    gate.lose();
    EXPECT_FALSE(gate.isBlocked()) << "a transcript's reply lets one in as well";
    gate.lose();
    EXPECT_TRUE(gate.isBlocked());
    gate.setMaximum(2);
    ASSERT_TRUE(Waiting::until([&] { return gate.waiting() == 0; }));
    EXPECT_FALSE(gate.isBlocked()) << "nobody waits";
}

TEST(UploadGateTest, GivenUpItReleasesAllWaitersUncountedNowAndLater)
{
    UploadGate gate;
    gate.setMaximum(1);
    Visitors visitors(gate);
    visitors.send(3);
    EXPECT_TRUE(visitors.stays(1));
    gate.giveUp();
    EXPECT_TRUE(Waiting::until([&] { return visitors.away == 2; }));
    EXPECT_EQ(gate.count(), 1);
    gate.signal();
    EXPECT_FALSE(gate.wait());
}

// People who search logs know this text; the gate for uploads has always borrowed it.
TEST(UploadGateTest, AMaximumBelowOneIsAProgrammingErrorWithTheConvertersText)
{
    UploadGate gate;
    if constexpr (Assertion::stopsTheProgram) {
        EXPECT_DEATH((void)gate.wait(), "Invalid max number of running ffmpeg procesess");
    } else {
        const RecordedLog log;
        gate.giveUp();
        EXPECT_FALSE(gate.wait());
        EXPECT_TRUE(log.contains(u"Invalid max number of running ffmpeg procesess"_s));
    }
}

} // namespace
