// How late events come to the main thread with the windows open: idle, while recordings are converted, and while files
// are uploaded.
#include "DesktopRun.h"
#include "harness/Report.h"
#include "works/Heartbeat.h"
#include "works/WorkJob.h"

#include "app/QuillpostAppDelegate.h"
#include "engine/JobModel.h"
#include "settings/SettingsKey.h"

#include <QApplication>
#include <QElapsedTimer>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr int conversions = 2;
constexpr int uploads = 4;

QJsonObject figures(Heartbeat& heartbeat)
{
    heartbeat.stop();
    return {{QStringLiteral("beats"), static_cast<double>(heartbeat.beats())},
            {QStringLiteral("late99"), heartbeat.lateBy(0.99)},
            {QStringLiteral("worst"), heartbeat.lateBy(1)}};
}

QJsonObject idle()
{
    constexpr int seconds = 5;
    Heartbeat heartbeat;
    QElapsedTimer since;
    heartbeat.start();
    since.start();
    DesktopRun::turnUntil("a moment", [&] { return since.hasExpired(seconds * 1000); });
    return figures(heartbeat);
}

QJsonObject converting(JobModel& model, const QString& transcript, const QStringList& films)
{
    Heartbeat heartbeat;
    const auto job = workJob(transcript, films, JobStatusInfoExtracted);
    model.addJobsObject(job);
    heartbeat.start();
    DesktopRun::turnUntil("the conversions", [&] { return haveAllFilesReached(*job, JobStatusConverted); });
    const QJsonObject report = figures(heartbeat);
    DesktopRun::turnUntil("their end", [&] { return haveAllFilesReached(*job, JobStatusUploaded); });
    model.removeJobsObject(job);
    return report;
}

QJsonObject uploading(JobModel& model, const QString& transcript, const QStringList& files)
{
    Heartbeat heartbeat;
    const auto job = workJob(transcript, files, JobStatusSegmentAdded);
    for (const auto& file : job->mediaFiles())
        file->setMp3FilePath(file->sourceFilePath());
    model.addJobsObject(job);
    heartbeat.start();
    for (const auto& file : job->mediaFiles())
        model.uploadMediaFile(file, job);
    DesktopRun::turnUntil("the uploads", [&] { return haveAllFilesReached(*job, JobStatusUploaded); });
    const QJsonObject report = figures(heartbeat);
    model.removeJobsObject(job); // The end of the program would delete what it takes for MP3s of its own.
    return report;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const QStringList arguments = QCoreApplication::arguments();
    const auto between = arguments.indexOf(QStringLiteral("--"));
    if (arguments.size() < 6 || between < 0) {
        std::fputs("usage: quillpost-bench-heartbeat SAMPLES SECURE-HOST FILE-HOST FILM… -- FILE…\n", stderr);
        return EXIT_FAILURE;
    }
    const auto hosts = ServiceHosts::fromTexts(arguments.at(2), arguments.at(3));
    DesktopRun run(arguments.at(1), conversions, std::get<ServiceHosts>(hosts));
    run.logIn();
    run.defaults().setValue(SettingsKey::MaxNumberOfFfmpegProcesses, conversions);
    run.defaults().setValue(SettingsKey::MaxNumberOfUploads, uploads);
    const QString transcript = run.transcript(QStringLiteral("Doe-Jane-2026-03-04.txt"));
    JobModel& model = run.delegate().jobModel();
    const QJsonObject quiet = idle();
    const QJsonObject conversion = converting(model, transcript, arguments.mid(4, between - 4));
    const QJsonObject upload = uploading(model, transcript, arguments.mid(between + 1));
    Bench::printReport({{QStringLiteral("idle"), quiet},
                        {QStringLiteral("conversions"), conversion},
                        {QStringLiteral("uploads"), upload}});
    return EXIT_SUCCESS;
}
