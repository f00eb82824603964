#pragma once

#include "EngineTest.h"
#include "FaultTable.h"
#include "Faults.h"

#include <ostream>

// How far a job is before the request under test is sent.
enum class Stage {
    New,        // not yet submitted
    Registered, // submitted and converted
    Sent,       // all files uploaded
    AskedAgain, // and the first recording wanted once more
};

struct JobRequest
{
    const char* name;  // of the test
    const char* title; // in the document
    Stage stage;
    // Where the job stands still when the request fails; 17 for a request that the job does not wait for.
    int restsAt;
    // COUNT in `where` is the number of result files.
    Request request;
    std::string deliveryOption = "Deposition";
    bool sendsLogs = false;
    bool isPoll = false; // asked again and again, whatever came
    // The service's words are what is wanted, whatever they are: wrong ones cannot be told from good ones.
    bool takesAnyWords = false;
    // Where the service has done what it was asked and only its reply is lost, the job goes on by the next status.
    bool goesOnOnceServed = false;
    // Two result files, one of them in the folder that the demo-disc file goes to: each costs several requests.
    DeliveryFormat deliveryFormat = DeliveryFormatOstrovaXML;
};

// In a list of tests.
inline void PrintTo(const JobRequest& request, std::ostream* stream)
{
    *stream << request.title;
}

// One job of one recording with a service, an engine and a home of its own, and one fault on its way.
class JobRun : public ServiceEngineTest
{
public:
    JobRun(const JobRequest& request, FaultKind kind);

    // Meets the fault, goes on, by itself, when tried again (after a fault met once) or in the next run of the program,
    // and ends with the right files delivered.
    [[nodiscard]] Outcome meet(Faults::Often often);

    // The same with a harm of this machine, which ends, before the work goes on, with `mend`.
    [[nodiscard]] Outcome meet(const std::function<void()>& harm, const std::function<void()>& mend);
    using EngineTest::path;
    using EngineTest::readFile;
    using EngineTest::writeFile;

    void TestBody() override {} // Not a test by itself.

protected:
    void prepareEngine() override;

private:
    [[nodiscard]] std::shared_ptr<Job> jobAtStage();
    void sendToService(const std::shared_ptr<Job>& job, Stage stage);
    void perform(CUrlCommand& command, const QByteArray& expected);
    void start(const std::shared_ptr<Job>& job);
    [[nodiscard]] Outcome concludeAfter(const std::shared_ptr<Job>& job, bool hasHung, bool triesAgain,
                                        const std::function<void()>& mend);
    [[nodiscard]] bool waitForOutcome(const std::shared_ptr<Job>& job, Faults::Often often);
    [[nodiscard]] bool isSaved(const Job& job);
    [[nodiscard]] bool completesInTheNextRun(Outcome& outcome, const std::function<void()>& mend);
    [[nodiscard]] bool completesWhenTriedAgain(const std::shared_ptr<Job>& job);
    [[nodiscard]] bool completesWhenDeliveredAgain(const std::shared_ptr<Job>& job);
    [[nodiscard]] bool hasRightFiles(const Job& job);
    void expectNoHalfFiles(const Job& job);
    [[nodiscard]] QString folder() const { return path(QStringLiteral("temp")); }

    JobRequest m_request;
    const FaultKind m_kind;
    QStringList m_problems;
};
