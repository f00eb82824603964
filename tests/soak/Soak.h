#pragma once

#include "Faults.h"
#include "Figures.h"
#include "ServiceProcess.h"

#include "commands/CUrlCommandProcessor.h"
#include "engine/JobModel.h"
#include "foundation/ApplicationServices.h"
#include "foundation/FileLogger.h"
#include "foundation/UserDefaults.h"

#include <QElapsedTimer>
#include <QHash>
#include <QObject>
#include <QTemporaryDir>
#include <QTimer>

#include <deque>
#include <memory>
#include <optional>
#include <vector>

struct SoakOptions
{
    int jobs = 200;
    double minutes = 8;
    unsigned seed = 1;
    int warmUp = 10; // jobs before the first measure
    bool comparesMemory = true;
};

// One long run of the engine against a service that fails now and then. Jobs are submitted at an even rate, two thirds
// of them without a fault ahead; one that stops is tried again, as its user would; what was delivered is looked at. The
// newest ten completed jobs stay in the list; older ones leave it when the service has forgotten them, so that the
// list, which grows with its jobs by design, is as long at the last measure as at the first. Main thread.
class Soak : public QObject, public ApplicationServices
{
    Q_OBJECT
public:
    explicit Soak(const SoakOptions& options);
    ~Soak() override;
    Soak(const Soak&) = delete;
    Soak& operator=(const Soak&) = delete;

    // The exit code of the program: 0 when all jobs were delivered and nothing piled up.
    [[nodiscard]] int run();

    void presentError(const Error& error) override;
    [[nodiscard]] std::shared_ptr<FileLogger> fileLogger() const override { return m_fileLogger; }

private:
    using JobPointer = std::shared_ptr<Job>;

    [[nodiscard]] bool prepare();
    [[nodiscard]] bool makeFiles();
    void makeEngine();
    void submitUpTo(int number);
    void submitNext();
    [[nodiscard]] JobPointer newJob();
    void watch(const JobPointer& job);
    void jobStopped(const JobPointer& job, const QString& reason);
    void putRight(const JobPointer& job);
    void completed(const JobPointer& job);
    void forgetOldJobs();
    void dropForgotten();
    // Turns the main loop until so many jobs are completed, submitting them at their times. False when one is stuck.
    [[nodiscard]] bool workUntilCompleted(int number);
    [[nodiscard]] bool waitUntilQuiet();
    [[nodiscard]] QString stuckJobs() const;
    [[nodiscard]] bool judge(const Figures& before, const Figures& after) const;
    void fail(const QString& words);

    const SoakOptions m_options;
    Faults m_faults;
    QTemporaryDir m_folder;
    std::unique_ptr<UserDefaults> m_defaults;
    std::shared_ptr<FileLogger> m_fileLogger;
    ServiceProcess m_service;
    std::unique_ptr<JobModel> m_model;
    std::unique_ptr<CUrlCommandProcessor> m_processor; // ends before the model, which observes its commands
    QStringList m_recordings;
    QStringList m_transcripts;

    int m_submitted = 0;
    int m_completed = 0;
    int m_errors = 0;
    int m_putRight = 0;
    int m_faultsOrdered = 0;
    int m_filesOfAJob = 0;
    bool m_hasFailed = false;
    QHash<const Job*, QElapsedTimer> m_underWay;
    std::deque<JobPointer> m_kept;      // completed, in the list
    std::deque<JobPointer> m_forgotten; // no longer listed by the service, to be dropped
    std::deque<JobPointer> m_forgetting;
    std::vector<std::weak_ptr<Job>> m_dropped;
};
