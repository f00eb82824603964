#pragma once

#include "cli/Reporter.h"
#include "engine/JobModel.h"

#include <QObject>
#include <QTimer>

#include <memory>
#include <unordered_set>
#include <vector>

// Tells the reporter how the engine's jobs come on: each change of status as it happens, from whatever thread, and the
// state of all local jobs at a steady rate. Main thread; the reporter must outlive the main thread's queue.
class JobFollower : public QObject
{
    Q_OBJECT
public:
    JobFollower(JobModel& jobModel, Reporter& reporter);

    // The last state of the rows.
    void showNow();

private:
    void follow(const std::shared_ptr<Job>& job);
    void followMediaFiles(const std::shared_ptr<Job>& job);

    JobModel& m_jobModel;
    Reporter& m_reporter;
    QTimer m_steady;
    std::unordered_set<const MediaObject*> m_followed;
};
