#include "cli/EngineRun.h"

#include "cli/CliApplication.h"
#include "foundation/MainThread.h"
#include "foundation/NumberReading.h"
#include "foundation/Text.h"

#include <QPointer>

#include <algorithm>

namespace {

constexpr std::chrono::milliseconds blockedCheckRate{1000};

} // namespace

EngineRun::EngineRun(CliApplication& application, const CommandLine& line) : Run(application, line)
{
    connect(&m_blockedCheck, &QTimer::timeout, this, &EngineRun::stopBlockedJobs);
}

void EngineRun::startEngine()
{
    JobModel& model = application().jobModel();
    connect(&model, &JobModel::jobStopped, this, &EngineRun::jobStopped);
    connect(&model, &JobModel::jobRemoved, this, &EngineRun::jobRemoved);
    connect(&model, &JobModel::deliveryHadProblems, this,
            [this](const std::shared_ptr<Job>& job, const QStringList& problems) {
                for (const QString& problem : problems)
                    application().reporter().note(
                        Text::format("Job {}: {}", NumberReading::valueOrZero(job->depoNum()), problem));
            });
    m_follower = std::make_unique<JobFollower>(model, application().reporter());
    connect(&model, &JobModel::jobAdded, this, &EngineRun::jobWasAdded);
    application().setIsSaving(true);
    connect(&model, &JobModel::jobMayBeHeldTwice, this, [this](const std::shared_ptr<Job>& job) {
        application().reporter().note(Text::format(
            "The submission of {} was never confirmed; it is submitted again. The service may now hold it twice: look "
            "for two depositions of this transcript in `quillpost-cli jobs`.",
            job->name()));
    });
    // First: the work that goes on begins as the jobs are read, and the user may be told of a problem meanwhile.
    model.keepState(application().tempFolder());
    model.loadState(application().tempFolder());
    model.startJobProcessing();
    m_blockedCheck.start(blockedCheckRate);
}

void EngineRun::waitFor(const std::shared_ptr<Job>& job)
{
    m_waitedFor.insert(job);
    // Handled in a turn of its own, when the engine is done with the change.
    connect(
        job.get(), &Job::statusChanged, this,
        [run = QPointer(this)] {
            MainThread::post([run] {
                if (run)
                    run->endIfAllEnded();
            });
        },
        Qt::DirectConnection);
}

void EngineRun::jobStopped(const std::shared_ptr<Job>& job, const QString& reason)
{
    if (!m_waitedFor.contains(job) || !m_stopped.insert(job).second)
        return;
    application().reporter().error(
        Text::format("Job {} cannot go on: {}", NumberReading::valueOrZero(job->depoNum()), reason));
    endIfAllEnded();
}

void EngineRun::jobRemoved(const std::shared_ptr<Job>& job)
{
    jobStopped(job, QStringLiteral("the service has withdrawn it (VOID)"));
}

void EngineRun::stopBlockedJobs()
{
    if (!application().jobModel().isUploadGateBlocked())
        return;
    for (const auto& job : std::set(m_waitedFor)) {
        const auto files = job->mediaFiles();
        const bool isWaiting = std::any_of(files.begin(), files.end(),
                                           [](const auto& file) { return file->status() == JobStatusSegmentAdded; });
        if (isWaiting)
            jobStopped(job, QStringLiteral("every upload place is held by an upload that failed"));
    }
}

void EngineRun::reportCompleted(const Job& job)
{
    application().reporter().result(Text::format("Job {} is completed; its files are in {}",
                                                 NumberReading::valueOrZero(job.depoNum()),
                                                 application().jobModel().deliveryFolder()),
                                    {{QStringLiteral("event"), QStringLiteral("completed")},
                                     {QStringLiteral("depo"), NumberReading::valueOrZero(job.depoNum())},
                                     {QStringLiteral("order"), NumberReading::valueOrZero(job.orderNum())},
                                     {QStringLiteral("deliveryFolder"), application().jobModel().deliveryFolder()}});
}

// Behind what waits to be shown already: the line that a job is done comes after those of its last steps.
void EngineRun::endIfAllEnded()
{
    MainThread::post([run = QPointer(this)] {
        if (run)
            run->conclude();
    });
}

void EngineRun::conclude()
{
    if (application().hasEnded())
        return;
    for (const auto& job : std::set(m_waitedFor)) {
        if (job->status() == JobStatusCompleted && m_completed.insert(job).second) {
            m_follower->showNow();
            reportCompleted(*job);
        }
        // The service calls a job done that was delivered. This program did not do it, and will not be asked to.
        if (job->status() == JobStatusOnServer && job->serverStatus() == u"Done")
            jobStopped(job, QStringLiteral("it was delivered already, by another program of this account"));
    }
    const bool areAllEnded = std::all_of(m_waitedFor.begin(), m_waitedFor.end(), [this](const auto& job) {
        return m_completed.contains(job) || m_stopped.contains(job);
    });
    if (areAllEnded)
        allEnded();
}

void EngineRun::allEnded()
{
    m_follower->showNow();
    const JobModel& model = application().jobModel();
    if (std::any_of(m_stopped.begin(), m_stopped.end(), [&](const auto& job) { return model.canRetryJob(job); }))
        application().reporter().note(QStringLiteral("Nothing is lost: `quillpost-cli retry` tries again."));
    if (hasStoppedJobs())
        application().endAfterLogUpload(ExitCode::ServiceError);
    else
        application().end(ExitCode::Done);
}
