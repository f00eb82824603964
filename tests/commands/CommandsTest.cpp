#include "CommandsTest.h"

#include "foundation/MainThread.h"

#include <limits>

void RecordingObserver::curlCommandDone(CUrlCommand& command)
{
    add({.kind = Kind::Done, .command = &command});
    if (whenEnded)
        whenEnded(command);
}

void RecordingObserver::curlCommandFailed(CUrlCommand& command)
{
    add({.kind = Kind::Failed, .command = &command});
    if (whenEnded)
        whenEnded(command);
}

void RecordingObserver::curlCommandProgress(CUrlCommand& command, double nowDL, double totalDL, double nowUL,
                                            double totalUL)
{
    add({Kind::Progress, &command, false, nowDL, totalDL, nowUL, totalUL});
}

void RecordingObserver::add(const Call& call)
{
    const std::scoped_lock lock(m_mutex);
    m_calls.push_back(call);
    m_calls.back().onMainThread = MainThread::isCurrent();
}

std::vector<RecordingObserver::Call> RecordingObserver::calls() const
{
    const std::scoped_lock lock(m_mutex);
    return m_calls;
}

std::vector<RecordingObserver::Call> RecordingObserver::calls(Kind kind) const
{
    auto found = calls();
    std::erase_if(found, [kind](const Call& call) { return call.kind != kind; });
    return found;
}

std::vector<RecordingObserver::Call> RecordingObserver::ends() const
{
    auto found = calls();
    std::erase_if(found, [](const Call& call) { return call.kind == Kind::Progress; });
    return found;
}

CommandsTest::CommandsTest(DemoService::Options options)
    : service(std::move(options)),
      hosts(std::get<ServiceHosts>(ServiceHosts::fromTexts(QString::fromStdString(service.secureHost()),
                                                           QString::fromStdString(service.fileHost()))))
{
    processor.setMaxNumOfCommandThreads(std::numeric_limits<int>::max());
    processor.start();
}

CommandsTest::~CommandsTest() = default;

void CommandsTest::run(const std::shared_ptr<CUrlCommand>& command)
{
    const auto before = observer.ends().size();
    command->setObserver(&observer);
    processor.postCommand(command);
    ASSERT_TRUE(Waiting::until([&] { return observer.ends().size() > before; }));
    ASSERT_TRUE(Waiting::until([&] { return processor.currentNumOfCommandThreads() == 0; }));
}

std::string CommandsTest::bodyOf(CUrlCommand& command, const std::string& endpoint)
{
    command.execute();
    EXPECT_EQ(command.result(), 0);
    const auto requests = service.requests(endpoint);
    EXPECT_EQ(requests.size(), 1U);
    if (requests.empty())
        return {};
    EXPECT_EQ(requests.front().method, "POST");
    EXPECT_EQ(requests.front().path, "/saltine/" + endpoint);
    EXPECT_FALSE(requests.front().onFileHost);
    EXPECT_EQ(DemoService::valueOf(requests.front().headers, "Content-Type"), "application/x-www-form-urlencoded");
    return requests.front().body;
}

std::shared_ptr<CUrlCommand> CommandsTest::commandTo(const QString& path) const
{
    return std::make_shared<CUrlCommand>(hosts.secureUrl(path));
}

void CommandsTest::expectOnlyEnd(RecordingObserver::Kind kind) const
{
    const auto calls = observer.calls();
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_EQ(calls.front().kind, kind);
    EXPECT_TRUE(calls.front().onMainThread);
}
