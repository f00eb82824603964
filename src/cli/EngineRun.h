#pragma once

#include "cli/JobFollower.h"
#include "cli/Runs.h"
#include "engine/JobModel.h"

#include <QStringList>
#include <QTimer>

#include <memory>
#include <set>

// What the runs share that set the engine to work: start and follow it, notice jobs that cannot go on, and end when
// every job that the run waits for has come to its end.
class EngineRun : public Run
{
    Q_OBJECT
public:
    EngineRun(CliApplication& application, const CommandLine& line);

protected:
    // After the login: loads the saved jobs and starts processing, as the desktop program does.
    void startEngine();
    // The run ends when all of these are completed or cannot go on.
    void waitFor(const std::shared_ptr<Job>& job);
    // Called for every job that the engine takes in, after the reporter knows it.
    virtual void jobWasAdded(const std::shared_ptr<Job>& /*job*/) {}
    // Called when every job waited for is completed or has stopped.
    virtual void allEnded();
    void endIfAllEnded();
    [[nodiscard]] bool hasStoppedJobs() const { return !m_stopped.empty(); }

private:
    void conclude();
    void jobStopped(const std::shared_ptr<Job>& job, const QString& reason);
    void jobRemoved(const std::shared_ptr<Job>& job);
    void stopBlockedJobs();
    void reportCompleted(const Job& job);

    std::unique_ptr<JobFollower> m_follower;
    std::set<std::shared_ptr<Job>> m_waitedFor;
    std::set<std::shared_ptr<Job>> m_completed;
    std::set<std::shared_ptr<Job>> m_stopped;
    QTimer m_blockedCheck;
};
