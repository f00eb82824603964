// How long an event waits for the main thread: a heartbeat of the event loop with the windows open, first idle, then
// with eight conversions and four uploads under way, then with eight recordings being sent; and how long the end takes
// while uploads hang. Usage: quillpost-benchmark-responsiveness SAMPLES [SECONDS-OF-A-RECORDING]
#include "DesktopRun.h"

#include "app/QuillpostAppDelegate.h"
#include "engine/JobModel.h"
#include "model/Job.h"
#include "settings/SettingsKey.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr int conversions = 8;
constexpr int uploads = 4;

// A timer that is due again and again; how late it comes is how long any event would have waited.
class Heartbeat
{
public:
    Heartbeat()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] {
            const auto now = std::chrono::steady_clock::now();
            m_late.push_back(std::max(0.0, Milliseconds(now - m_before).count() - interval));
            m_before = now;
        });
    }
    void start()
    {
        m_late.clear();
        m_before = std::chrono::steady_clock::now();
        m_timer.start(interval);
    }
    void report(const char* what)
    {
        m_timer.stop();
        std::sort(m_late.begin(), m_late.end());
        if (m_late.empty())
            return;
        std::printf("%-44s %7zu beats, late by (ms): median %5.2f, 99 %% %5.2f, worst %6.2f\n", what, m_late.size(),
                    m_late[m_late.size() / 2], m_late[m_late.size() * 99 / 100], m_late.back());
        std::fflush(stdout);
    }

private:
    static constexpr int interval = 2; // ms
    QTimer m_timer;
    std::chrono::steady_clock::time_point m_before;
    std::vector<double> m_late;
};

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
    heartbeat.report("idle window");

    run.service().addOverride("test_custupload2.php", {.hang = true});
    (void)run.submit(QStringLiteral("Doe-Jane-2026-03-04.txt"), small);
    DesktopRun::turnUntil("uploads", [&] { return run.service().hanging() == uploads; });
    const auto job = run.submit(QStringLiteral("Marsh-Ellen-2026-03-11.txt"), large);
    DesktopRun::turnUntil("conversions",
                          [&] { return run.delegate().jobModel().numberOfRunningFfmpegProcesses() == conversions; });
    heartbeat.start();
    DesktopRun::turnUntil("the end of the conversions", [&] { return haveAll(*job, JobStatusSegmentAdded); });
    heartbeat.report("8 conversions, 4 uploads that wait");

    heartbeat.start();
    run.service().clearOverrides();
    DesktopRun::turnUntil("the results", [&] { return job->status() == JobStatusCompleted; });
    heartbeat.report("8 uploads, 4 at a time, then the download");

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
