#pragma once

#include "commands/CUrlCommand.h"
#include "commands/CUrlCommandProcessor.h"
#include "demo-service/Service.h"
#include "settings/ServiceHosts.h"
#include "support/RecordedLog.h"
#include "support/TemporaryHome.h"
#include "support/Waiting.h"

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

// Keeps every call it gets, with its thread. `whenEnded` runs inside the call that ends a command.
class RecordingObserver : public CUrlCommandResultObserver
{
public:
    enum class Kind { Done, Failed, Progress };
    struct Call
    {
        Kind kind = Kind::Done;
        const CUrlCommand* command = nullptr;
        bool onMainThread = false;
        double nowDL = 0;
        double totalDL = 0;
        double nowUL = 0;
        double totalUL = 0;
    };

    void curlCommandDone(CUrlCommand& command) override;
    void curlCommandFailed(CUrlCommand& command) override;
    void curlCommandProgress(CUrlCommand& command, double nowDL, double totalDL, double nowUL, double totalUL) override;

    [[nodiscard]] std::vector<Call> calls() const;
    [[nodiscard]] std::vector<Call> calls(Kind kind) const;
    // The calls that ended a command.
    [[nodiscard]] std::vector<Call> ends() const;

    std::function<void(CUrlCommand&)> whenEnded;

private:
    void add(const Call& call);

    mutable std::mutex m_mutex;
    std::vector<Call> m_calls; // guarded by m_mutex
};

// A home, a service that records what it is asked, a log, and a processor that starts a command every few milliseconds.
class CommandsTest : public TemporaryHome
{
protected:
    explicit CommandsTest(DemoService::Options options = {});
    ~CommandsTest() override;

    // Posts the command and turns the main loop until its thread has ended: no observer call can come after that.
    void run(const std::shared_ptr<CUrlCommand>& command);
    // Executes the command here and now and returns the only body that the endpoint then has received.
    [[nodiscard]] std::string bodyOf(CUrlCommand& command, const std::string& endpoint);
    // A command whose URL is that path on the secure host.
    [[nodiscard]] std::shared_ptr<CUrlCommand> commandTo(const QString& path) const;

    // The command ended, was reported once and on the main thread, and nothing else was reported.
    void expectOnlyEnd(RecordingObserver::Kind kind) const;

    DemoService::Service service;
    const ServiceHosts hosts;
    const RecordedLog log;
    RecordingObserver observer;
    CUrlCommandProcessor processor{std::chrono::milliseconds(2)};
};
