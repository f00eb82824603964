// One job from its submission to its delivered files, with the waits as they are in the product, and when each of its
// steps was taken.
#include "harness/Report.h"
#include "works/WorkEngine.h"
#include "works/WorkJob.h"

#include <QCoreApplication>
#include <QJsonArray>

#include <cstdio>
#include <cstdlib>
#include <thread>

namespace {

constexpr double pollInterval = 1; // s

double now()
{
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

// Notes the steps as they are taken, on the thread that takes them; all but the uploads' are the main thread.
class Steps
{
public:
    void follow(JobModel& model, const std::shared_ptr<Job>& job)
    {
        QObject::connect(&model, &JobModel::isCheckingJobStatusChanged, &model, [this, &model] {
            if (!model.isCheckingJobStatus())
                return;
            m_polls.append(now());
            queued("checkstatus.php");
        });
        QObject::connect(&model, &JobModel::isGettingInstructionsChanged, &model, [this, &model] {
            if (model.isGettingInstructions())
                queued("get_instructions.php");
        });
        QObject::connect(
            job.get(), &Job::statusChanged, &model, [this, job = job.get()] { jobIsAt(job->status()); },
            Qt::DirectConnection);
        for (const auto& file : job->mediaFiles())
            QObject::connect(
                file.get(), &MediaFile::statusChanged, &model, [this, file = file.get()] { fileIsAt(file->status()); },
                Qt::DirectConnection);
    }
    void look()
    {
        const std::scoped_lock lock(m_mutex);
        m_looks.append(now());
    }
    [[nodiscard]] QJsonObject report(double submitted, double completed) const
    {
        return {{QStringLiteral("submitted"), submitted}, {QStringLiteral("completed"), completed},
                {QStringLiteral("looks"), m_looks},       {QStringLiteral("polls"), m_polls},
                {QStringLiteral("queued"), m_queued},     {QStringLiteral("pollInterval"), pollInterval}};
    }

private:
    void queued(const char* endpoint)
    {
        const std::scoped_lock lock(m_mutex);
        m_queued.append(
            QJsonObject{{QStringLiteral("endpoint"), QLatin1String(endpoint)}, {QStringLiteral("time"), now()}});
    }
    void fileIsAt(int status)
    {
        if (status == JobStatusSubmittingDetails && !std::exchange(m_isSubmitted, true)) {
            look();
            queued("jobdetails.php");
        } else if (status == JobStatusAddingSegment) {
            queued("add_segment.php");
            queued("set_media_format.php");
        } else if (status == JobStatusUploading) {
            queued("test_custupload2.php");
        }
    }
    // A job's status is announced again whenever one of its files' is.
    void jobIsAt(int status)
    {
        if (std::exchange(m_jobStatus, status) == status)
            return;
        if (status == JobStatusUploaded)
            queued("test_custupload2.php"); // the transcript, behind the last recording
        else if (status == JobStatusDownloading)
            queued("test_downloadjob2.php");
        if (status == JobStatusExtractingInfo || status == JobStatusConverting || status == JobStatusDownloading)
            look();
    }

    std::mutex m_mutex; // the lists
    QJsonArray m_looks;
    QJsonArray m_polls;
    QJsonArray m_queued;
    bool m_isSubmitted = false;
    int m_jobStatus = -1;
};

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 7) {
        std::fputs("usage: quillpost-bench-road SECURE-HOST FILE-HOST FOLDER PHASE TRANSCRIPT FILM…\n", stderr);
        return EXIT_FAILURE;
    }
    WorkEngine engine({.secureHost = arguments.at(1),
                       .fileHost = arguments.at(2),
                       .folder = arguments.at(3),
                       .tick = std::chrono::milliseconds(100),
                       .pollInterval = pollInterval});
    const auto job = workJob(arguments.at(5), arguments.mid(6));
    Steps steps;
    steps.follow(engine.model(), job);
    engine.startCommands();
    const double queueStarted = now();
    std::this_thread::sleep_for(std::chrono::milliseconds(arguments.at(4).toInt()));
    engine.model().startJobProcessing();
    steps.look();
    const double submitted = now();
    engine.model().addJobsObject(job);
    engine.turnUntil([&] { return job->status() == JobStatusCompleted; });
    QJsonObject report = steps.report(submitted, now());
    report.insert(QStringLiteral("queueStarted"), queueStarted);
    Bench::printReport(report);
    return EXIT_SUCCESS;
}
