// How long an event waits for the main thread: a heartbeat of the event loop with the windows open, first idle, then
// with eight conversions and four uploads under way, then with eight recordings being sent; and how long the end takes
// while uploads hang. Usage: quillpost-benchmark-responsiveness SAMPLES [SECONDS-OF-A-RECORDING]
#include "DesktopRun.h"
#include "works/Heartbeat.h"

#include "app/QuillpostAppDelegate.h"
#include "engine/JobModel.h"
#include "model/Job.h"
#include "settings/SettingsKey.h"

#include <QApplication>
#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>

namespace {

constexpr int conversions = 8;
constexpr int uploads = 4;

void report(Heartbeat& heartbeat, const char* what)
{
    heartbeat.stop();
    std::printf("%-44s %7zu beats, late by (ms): median %5.2f, 99 %% %5.2f, worst %6.2f\n", what, heartbeat.beats(),
                heartbeat.lateBy(0.5), heartbeat.lateBy(0.99), heartbeat.lateBy(1));
    std::fflush(stdout);
}

void turnFor(std::chrono::milliseconds time)
{
    QElapsedTimer since;
    since.start();
    DesktopRun::turnUntil("a moment", [&] { return since.hasExpired(time.count()); });
}

bool haveAll(const Job& job, JobStatus status)
{
    const auto files = job.mediaFiles();
    return std::all_of(files.begin(), files.end(), [&](const auto& file) { return file->status() >= status; });
}

void measure(DesktopRun& run, const QString& seconds)
{
    run.logIn();
    run.defaults().setValue(SettingsKey::MaxNumberOfFfmpegProcesses, conversions);
    run.defaults().setValue(SettingsKey::MaxNumberOfUploads, uploads);
    QStringList small;
    QStringList large;
    for (int i = 0; i < uploads; ++i)
        small << run.recording(QStringLiteral("small%1.wav").arg(i), QStringLiteral("2"));
    for (int i = 0; i < conversions; ++i)
        large << run.recording(QStringLiteral("large%1.wav").arg(i), seconds);
    Heartbeat heartbeat;

    heartbeat.start();
    turnFor(std::chrono::seconds(5));
    report(heartbeat, "idle window");

    run.service().addOverride("test_custupload2.php", {.hang = true});
    (void)run.submit(QStringLiteral("Doe-Jane-2026-03-04.txt"), small);
    DesktopRun::turnUntil("uploads", [&] { return run.service().hanging() == uploads; });
    const auto job = run.submit(QStringLiteral("Marsh-Ellen-2026-03-11.txt"), large);
    DesktopRun::turnUntil("conversions",
                          [&] { return run.delegate().jobModel().numberOfRunningFfmpegProcesses() == conversions; });
    heartbeat.start();
    DesktopRun::turnUntil("the end of the conversions", [&] { return haveAll(*job, JobStatusSegmentAdded); });
    report(heartbeat, "8 conversions, 4 uploads that wait");

    heartbeat.start();
    run.service().clearOverrides();
    DesktopRun::turnUntil("the results", [&] { return job->status() == JobStatusCompleted; });
    report(heartbeat, "8 uploads, 4 at a time, then the download");

    run.service().addOverride("test_custupload2.php", {.hang = true});
    (void)run.submit(QStringLiteral("Okafor-Grace-2026-03-18.txt"), small);
    DesktopRun::turnUntil("uploads", [&] { return run.service().hanging() == uploads; });
    QElapsedTimer since;
    since.start();
    run.delegate().terminate();
    const bool areAllEnded = run.delegate().endAllWork();
    std::printf("end while %d uploads hang: %lld ms%s\n", uploads, static_cast<long long>(since.elapsed()),
                areAllEnded ? "" : " (transfers are left to the end of the process)");
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 2) {
        std::fputs("usage: quillpost-benchmark-responsiveness SAMPLES [SECONDS-OF-A-RECORDING]\n", stderr);
        return 1;
    }
    DesktopRun run(arguments.at(1), conversions);
    measure(run, arguments.value(2, QStringLiteral("1200")));
    return 0;
}
