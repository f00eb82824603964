#pragma once

#include "commands/CUrlCommandProcessor.h"
#include "demo-service/Service.h"
#include "engine/JobModel.h"
#include "foundation/ApplicationServices.h"
#include "settings/ServiceHosts.h"
#include "support/RecordedLog.h"
#include "support/TemporaryHome.h"
#include "support/Waiting.h"

#include <QStringList>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

// Keeps the errors that the engine presents. `whenPresented` runs inside the call.
class RecordingServices : public ApplicationServices
{
public:
    explicit RecordingServices(std::shared_ptr<FileLogger> logger) : fileLoggerToGive(std::move(logger)) {}

    void presentError(const Error& error) override;
    [[nodiscard]] std::shared_ptr<FileLogger> fileLogger() const override { return fileLoggerToGive; }
    [[nodiscard]] QStringList descriptions() const;

    QList<Error> errors;
    std::function<void(const Error&)> whenPresented;
    std::shared_ptr<FileLogger> fileLoggerToGive;
};

// The engine as a program puts it together, and what it says to the outside.
struct Engine
{
    Engine(const ServiceHosts& hosts, const std::shared_ptr<FileLogger>& fileLogger);
    ~Engine();
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    struct Stop
    {
        std::shared_ptr<Job> job;
        QString reason;
    };

    RecordingServices services;
    std::vector<Stop> stops;
    JobModel model;
    CUrlCommandProcessor processor{std::chrono::milliseconds(2)}; // ends before the model, which its commands observe
};

// An engine whose commands stay in the queue of a processor that is not started: a test takes them out, looks at them,
// and answers them itself. The polls are slow.
class EngineTest : public TemporaryHome
{
protected:
    EngineTest();
    explicit EngineTest(const ServiceHosts& serviceHosts);

    // Ends the engine and makes another, as a new run of the program would.
    void restartEngine();
    virtual void prepareEngine();

    [[nodiscard]] JobModel& model() { return engine->model; }
    [[nodiscard]] RecordingServices& services() { return engine->services; }
    [[nodiscard]] QStringList errorTexts() const { return engine->services.descriptions(); }

    // A job of a transcript and recordings of these names, none of which need exist. Recordings of names that do not
    // begin with a slash lie below the home.
    [[nodiscard]] std::shared_ptr<Job> jobOf(const QStringList& mediaNames,
                                             const QString& transcript = QStringLiteral("Smith 2 Mar.txt"));
    // The same with numbers, added to the engine, and with every file and the job at `status`.
    std::shared_ptr<Job> addJobAt(int status, const QStringList& mediaNames = {QStringLiteral("clip.mov")},
                                  int depoNum = 883);

    // Everything that waits in the queue, in order.
    [[nodiscard]] std::vector<std::shared_ptr<CUrlCommand>> takeCommands();
    template <typename Command>
    [[nodiscard]] std::vector<std::shared_ptr<Command>> takeCommandsOf()
    {
        std::vector<std::shared_ptr<Command>> found;
        for (const auto& command : takeCommands())
            if (auto wanted = std::dynamic_pointer_cast<Command>(command))
                found.push_back(std::move(wanted));
        return found;
    }
    void answer(CUrlCommand& command, const QByteArray& reply);

    // A line of that level ("info", "error") ends in `line`; how many do.
    [[nodiscard]] qsizetype logLines(const QString& level, const QString& line) const;

    const ServiceHosts hosts;
    RecordedLog log;
    std::unique_ptr<Engine> engine;
};

[[nodiscard]] std::vector<int> fileStatuses(const Job& job);

struct ServiceHolder
{
    explicit ServiceHolder(DemoService::Options options = {}) : service(std::move(options)) {}
    DemoService::Service service;
};

// The engine over TLS against the stand-in service, logged in, with everything that waits shortened.
class ServiceEngineTest : protected ServiceHolder, public EngineTest
{
protected:
    explicit ServiceEngineTest(DemoService::Options options = {});

    void prepareEngine() override;
    // A job of real recordings and a transcript, ordered with the service's product.
    [[nodiscard]] std::shared_ptr<Job> realJob(const QStringList& mediaNames, double seconds = 1);
    [[nodiscard]] std::shared_ptr<Job> orderOf(const QStringList& mediaPaths, const QString& transcriptPath);
    // Each line of a transcript with pages.
    [[nodiscard]] QString transcript(const QString& name = QStringLiteral("Smith 2 Mar.txt"));
    [[nodiscard]] testing::AssertionResult reaches(const std::shared_ptr<Job>& job, int status);
    [[nodiscard]] testing::AssertionResult stops(const std::shared_ptr<Job>& job);
    // The endpoints asked so far, in order, without the polls.
    [[nodiscard]] std::vector<std::string> road() const;
    void expectNoRefusals() const;
};
