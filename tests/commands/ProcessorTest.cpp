#include "CommandsTest.h"

#include "commands/LoginCommand.h"
#include "foundation/MainThread.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>

using namespace Qt::StringLiterals;
using Kind = RecordingObserver::Kind;
using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

namespace {

// Transfers nothing; keeps the time at which it was executed.
class TimedCommand : public CUrlCommand
{
public:
    TimedCommand() : CUrlCommand(u"https://127.0.0.1"_s) {}
    void execute() override
    {
        wasOnMainThread = MainThread::isCurrent();
        m_executedAt = Clock::now().time_since_epoch().count();
    }
    [[nodiscard]] bool wasExecuted() const { return m_executedAt != 0; }
    [[nodiscard]] Clock::time_point executedAt() const { return Clock::time_point(Clock::duration(m_executedAt)); }

    std::atomic<bool> wasOnMainThread{false};

private:
    std::atomic<Clock::rep> m_executedAt{0};
};

std::vector<std::shared_ptr<TimedCommand>> postThree(CUrlCommandProcessor& processor)
{
    std::vector<std::shared_ptr<TimedCommand>> commands;
    for (int i = 0; i < 3; ++i) {
        commands.push_back(std::make_shared<TimedCommand>());
        processor.postCommand(commands.back());
    }
    return commands;
}

bool allExecuted(const std::vector<std::shared_ptr<TimedCommand>>& commands)
{
    return std::ranges::all_of(commands, &TimedCommand::wasExecuted);
}

} // namespace

class ProcessorTest : public CommandsTest
{};

TEST(ProcessorTickTest, ThreeCommandsPostedTogetherStartATenthOfASecondApartOldestFirst)
{
    CUrlCommandProcessor processor;
    processor.setMaxNumOfCommandThreads(0x7fffffff);
    const auto commands = postThree(processor);
    const auto started = Clock::now();
    processor.start();
    ASSERT_TRUE(Waiting::until([&] { return allExecuted(commands); }));
    // A thread may be late by some milliseconds, and then the next one follows it sooner than a tick.
    EXPECT_GE(commands.at(0)->executedAt() - started, milliseconds(90));
    EXPECT_GE(commands.at(1)->executedAt() - commands.at(0)->executedAt(), milliseconds(40));
    EXPECT_GE(commands.at(2)->executedAt() - commands.at(1)->executedAt(), milliseconds(40));
    EXPECT_GE(commands.at(2)->executedAt() - started, milliseconds(290));
    EXPECT_FALSE(commands.at(0)->wasOnMainThread);
}

TEST(ProcessorTickTest, StartingTwiceIsStartingOnce)
{
    CUrlCommandProcessor processor;
    processor.setMaxNumOfCommandThreads(0x7fffffff);
    const auto commands = postThree(processor);
    const auto started = Clock::now();
    processor.start();
    processor.start();
    ASSERT_TRUE(Waiting::until([&] { return allExecuted(commands); }));
    EXPECT_GE(commands.at(2)->executedAt() - started, milliseconds(290));
}

TEST(ProcessorTickTest, TheQueueIsFirstInFirstOut)
{
    CUrlCommandProcessor processor;
    const auto commands = postThree(processor);
    for (const auto& command : commands)
        EXPECT_EQ(processor.getCommandFromQueue(), command);
    EXPECT_EQ(processor.getCommandFromQueue(), nullptr);
}

TEST(ProcessorTickTest, AProcessorThatWasNeverStartedExecutesNothing)
{
    std::vector<std::shared_ptr<TimedCommand>> commands;
    {
        CUrlCommandProcessor processor(milliseconds(1));
        processor.setMaxNumOfCommandThreads(1);
        commands = postThree(processor);
        Waiting::turnMainLoopFor(milliseconds(20));
    }
    EXPECT_TRUE(std::ranges::none_of(commands, &TimedCommand::wasExecuted));
}

TEST_F(ProcessorTest, RequestsReachTheServiceInTheOrderInWhichTheyWerePosted)
{
    CUrlCommandProcessor unhurried;
    unhurried.setMaxNumOfCommandThreads(0x7fffffff);
    for (const QString& path : {u"/a.php"_s, u"/b.php"_s, u"/c.php"_s}) {
        auto command = commandTo(path);
        command->setObserver(&observer);
        unhurried.postCommand(command);
    }
    unhurried.start();
    ASSERT_TRUE(Waiting::until([&] { return observer.ends().size() == 3; }));
    const auto requests = service.requests();
    ASSERT_EQ(requests.size(), 3U);
    EXPECT_EQ(requests.at(0).endpoint, "a.php");
    EXPECT_EQ(requests.at(1).endpoint, "b.php");
    EXPECT_EQ(requests.at(2).endpoint, "c.php");
    EXPECT_GE(requests.at(2).time - requests.at(0).time, milliseconds(100));
}

TEST_F(ProcessorTest, WithALimitOfNothingPostedCommandsStayQueued)
{
    CUrlCommandProcessor other(milliseconds(1));
    EXPECT_EQ(other.maxNumOfCommandThreads(), 0);
    other.start();
    const auto commands = postThree(other);
    Waiting::turnMainLoopFor(milliseconds(50));
    EXPECT_TRUE(std::ranges::none_of(commands, &TimedCommand::wasExecuted));
    EXPECT_EQ(other.currentNumOfCommandThreads(), 0);
    EXPECT_EQ(other.getCommandFromQueue(), commands.at(0));

    other.setMaxNumOfCommandThreads(1);
    EXPECT_TRUE(Waiting::until([&] { return commands.at(1)->wasExecuted() && commands.at(2)->wasExecuted(); }));
    EXPECT_FALSE(commands.at(0)->wasExecuted());
}

TEST_F(ProcessorTest, NoMoreCommandsRunAtOnceThanTheLimitAllows)
{
    processor.setMaxNumOfCommandThreads(1);
    service.addOverride("slow.php", {.reply = "", .hang = true});
    const auto slow = commandTo(u"/slow.php"_s);
    const auto next = commandTo(u"/next.php"_s);
    slow->setObserver(&observer);
    next->setObserver(&observer);
    processor.postCommand(slow);
    processor.postCommand(next);
    ASSERT_TRUE(Waiting::until([&] { return service.hanging() == 1; }));
    Waiting::turnMainLoopFor(milliseconds(60));
    EXPECT_EQ(service.count("next.php"), 0);
    EXPECT_EQ(processor.currentNumOfCommandThreads(), 1);
    service.releaseHangs();
    EXPECT_TRUE(Waiting::until([&] { return observer.ends().size() == 2; }));
    EXPECT_EQ(observer.ends().front().command, slow.get());
}

TEST_F(ProcessorTest, AfterStoppingQueuedCommandsAreNeverExecutedAndTheOneUnderWayStillReports)
{
    processor.setMaxNumOfCommandThreads(1);
    service.addOverride("slow.php", {.reply = "", .hang = true});
    const auto slow = commandTo(u"/slow.php"_s);
    const auto queued = std::make_shared<TimedCommand>();
    slow->setObserver(&observer);
    queued->setObserver(&observer);
    processor.postCommand(slow);
    processor.postCommand(queued);
    ASSERT_TRUE(Waiting::until([&] { return service.hanging() == 1; }));
    processor.stop();
    service.releaseHangs();
    EXPECT_TRUE(processor.waitUntilAllEnded(std::chrono::seconds(30)));
    expectOnlyEnd(Kind::Done);
    EXPECT_EQ(observer.ends().front().command, slow.get());
    EXPECT_FALSE(queued->wasExecuted());
    EXPECT_EQ(processor.getCommandFromQueue(), queued);
}

TEST_F(ProcessorTest, StoppingEndsTheDispatcherWithoutWaitingForItsTick)
{
    CUrlCommandProcessor slow{std::chrono::minutes(10)};
    slow.start();
    slow.stop();
    EXPECT_TRUE(slow.waitUntilAllEnded(std::chrono::seconds(30)));
}

TEST_F(ProcessorTest, ACommandWithoutAnObserverCompletesSilently)
{
    service.addOverride("bad.php", {.status = 500});
    processor.postCommand(commandTo(u"/saltine/bad.php"_s));
    processor.postCommand(LoginCommand::loginCommandWithUser(hosts, u"demo"_s, u"demo1234"_s));
    EXPECT_TRUE(Waiting::until([&] {
        return service.count("bad.php") == 1 && service.count("cauthorize2.php") == 1 &&
               processor.currentNumOfCommandThreads() == 0;
    }));
}

TEST_F(ProcessorTest, AnObserverMayPostTheNextCommand)
{
    service.addOverride("bad.php", {.status = 500});
    const auto second = commandTo(u"/saltine/bad.php"_s);
    const auto third = LoginCommand::loginCommandWithUser(hosts, u"demo"_s, u"demo1234"_s);
    second->setObserver(&observer);
    third->setObserver(&observer);
    observer.whenEnded = [&](const CUrlCommand& ended) {
        if (&ended == second.get())
            processor.postCommand(third);
        else if (&ended != third.get())
            processor.postCommand(second);
    };
    const auto first = std::make_shared<TimedCommand>();
    first->setObserver(&observer);
    processor.postCommand(first);
    ASSERT_TRUE(Waiting::until([&] { return observer.ends().size() == 3; }));
    EXPECT_EQ(observer.ends().at(0).kind, Kind::Done);
    EXPECT_EQ(observer.ends().at(1).kind, Kind::Failed);
    EXPECT_EQ(observer.ends().at(2).kind, Kind::Done);
    EXPECT_TRUE(std::ranges::all_of(observer.ends(), &RecordingObserver::Call::onMainThread));
}

TEST_F(ProcessorTest, AThreadWaitsUntilItsObserverHasReturned)
{
    processor.setMaxNumOfCommandThreads(1);
    int runningInside = -1;
    bool nextStartedInside = true;
    const auto next = std::make_shared<TimedCommand>();
    observer.whenEnded = [&](CUrlCommand&) {
        // No turn of the main loop here: the time passes inside the observer.
        std::this_thread::sleep_for(milliseconds(30));
        runningInside = processor.currentNumOfCommandThreads();
        nextStartedInside = next->wasExecuted();
    };
    const auto first = std::make_shared<TimedCommand>();
    first->setObserver(&observer);
    processor.postCommand(first);
    processor.postCommand(next);
    ASSERT_TRUE(Waiting::until([&] { return next->wasExecuted(); }));
    EXPECT_EQ(runningInside, 1);
    EXPECT_FALSE(nextStartedInside);
}

TEST_F(ProcessorTest, ACommandLivesUntilItsObserverHasReturnedAndNoLonger)
{
    std::weak_ptr<CUrlCommand> watched;
    bool livedInside = false;
    observer.whenEnded = [&](CUrlCommand&) { livedInside = !watched.expired(); };
    {
        const auto command = std::make_shared<TimedCommand>();
        command->setObserver(&observer);
        watched = command;
        processor.postCommand(command);
    }
    ASSERT_TRUE(Waiting::until([&] { return watched.expired(); }));
    EXPECT_TRUE(livedInside);
}

TEST_F(ProcessorTest, AProcessorThatGoesAwayEndsAHangingTransferAndReportsIt)
{
    service.addOverride("slow.php", {.hang = true});
    const auto command = commandTo(u"/saltine/slow.php"_s);
    command->setObserver(&observer);
    {
        CUrlCommandProcessor shortLived(milliseconds(1));
        shortLived.setMaxNumOfCommandThreads(1);
        shortLived.start();
        shortLived.postCommand(command);
        ASSERT_TRUE(Waiting::until([&] { return service.hanging() == 1; }));
    }
    EXPECT_EQ(service.hanging(), 1);
    expectOnlyEnd(Kind::Failed);
}

TEST_F(ProcessorTest, ManyCommandsAtOnceAreEachReportedOnce)
{
    constexpr std::size_t commands = 40;
    for (std::size_t i = 0; i < commands; ++i) {
        auto command = LoginCommand::loginCommandWithUser(hosts, u"demo"_s, u"demo1234"_s);
        command->setObserver(&observer);
        processor.postCommand(command);
    }
    ASSERT_TRUE(Waiting::until([&] { return observer.ends().size() >= commands; }));
    ASSERT_TRUE(Waiting::until([&] { return processor.currentNumOfCommandThreads() == 0; }));
    EXPECT_EQ(observer.calls(Kind::Done).size(), commands);
    EXPECT_EQ(observer.calls().size(), commands);
    EXPECT_EQ(service.count("cauthorize2.php"), static_cast<int>(commands));
}
