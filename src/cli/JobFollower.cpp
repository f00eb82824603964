#include "cli/JobFollower.h"

#include "foundation/MainThread.h"

namespace {

constexpr std::chrono::milliseconds steadyRate{200};

} // namespace

JobFollower::JobFollower(JobModel& jobModel, Reporter& reporter) : m_jobModel(jobModel), m_reporter(reporter)
{
    connect(&jobModel, &JobModel::jobAdded, this, &JobFollower::follow);
    connect(&jobModel, &JobModel::jobRemoved, this, [this](const std::shared_ptr<Job>& job) {
        m_followed.erase(job.get());
        for (const auto& mediaFile : job->mediaFiles())
            m_followed.erase(mediaFile.get());
    });
    for (const auto& job : jobModel.jobs())
        follow(job);
    connect(&m_steady, &QTimer::timeout, this, &JobFollower::showNow);
    m_steady.start(steadyRate);
}

void JobFollower::follow(const std::shared_ptr<Job>& job)
{
    if (!m_followed.insert(job.get()).second)
        return;
    const std::weak_ptr<Job> weakJob = job;
    // The row is read on the thread that made the change, so that no state is missed, and reported on the main one.
    connect(
        job.get(), &Job::statusChanged, this,
        [&reporter = m_reporter, weakJob] {
            if (const auto changed = weakJob.lock())
                MainThread::post([&reporter, row = ProgressRow::ofJob(*changed)] { reporter.rowChanged(row); });
        },
        Qt::DirectConnection);
    connect(job.get(), &Job::mediaFilesChanged, this, [this, weakJob] {
        if (const auto changed = weakJob.lock())
            followMediaFiles(changed);
    });
    m_reporter.rowChanged(ProgressRow::ofJob(*job));
    followMediaFiles(job);
}

void JobFollower::followMediaFiles(const std::shared_ptr<Job>& job)
{
    int segment = 0;
    for (const auto& mediaFile : job->mediaFiles()) {
        ++segment;
        if (!m_followed.insert(mediaFile.get()).second)
            continue;
        const std::weak_ptr<Job> weakJob = job;
        const std::weak_ptr<MediaFile> weakFile = mediaFile;
        connect(
            mediaFile.get(), &MediaFile::statusChanged, this,
            [&reporter = m_reporter, weakJob, weakFile, segment] {
                const auto owner = weakJob.lock();
                const auto changed = weakFile.lock();
                if (owner && changed)
                    MainThread::post([&reporter, row = ProgressRow::ofMediaFile(*owner, *changed, segment)] {
                        reporter.rowChanged(row);
                    });
            },
            Qt::DirectConnection);
        m_reporter.rowChanged(ProgressRow::ofMediaFile(*job, *mediaFile, segment));
    }
}

void JobFollower::showNow()
{
    std::vector<ProgressRow> rows;
    for (const auto& job : m_jobModel.jobs()) {
        if (job->serverJob())
            continue;
        rows.push_back(ProgressRow::ofJob(*job));
        int segment = 0;
        for (const auto& mediaFile : job->mediaFiles())
            rows.push_back(ProgressRow::ofMediaFile(*job, *mediaFile, ++segment));
    }
    m_reporter.rowsAre(rows);
}
