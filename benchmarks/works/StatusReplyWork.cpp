// Applies the service's reply to a status request to as many known jobs, with the list of jobs shown: once with every
// word changed, once with the same words again. How long the main thread is taken up by it, and how long an event waits
// at most until the list shows it all. Usage: quillpost-bench-statusreply DEPOSITIONS local|server [FILE-FOR-THE-REPLY]
#include "harness/Report.h"
#include "works/Heartbeat.h"
#include "works/ManyJobs.h"

#include "engine/JobModel.h"

#include <QApplication>
#include <QFile>
#include <QJsonObject>

#include <cstdio>
#include <ctime>

namespace {

using Clock = std::chrono::steady_clock;

double millisecondsSince(Clock::time_point begin)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
}

// Of this thread.
double processorMilliseconds()
{
    timespec time{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

struct Figures
{
    double applied; // ms
    double processor;
    double longestTurn;
};

Figures apply(Bench::ManyJobs& jobs, const QString& reply)
{
    jobs.jobModel().setIsCheckingJobStatus(true);
    const double processorBefore = processorMilliseconds();
    const auto begin = Clock::now();
    jobs.jobModel().processCheckJobsStatusOnServerResponse(reply);
    const double applied = millisecondsSince(begin);
    const double processor = processorMilliseconds() - processorBefore;
    Heartbeat heartbeat;
    heartbeat.start();
    jobs.turnUntilShown();
    heartbeat.stop();
    return {applied, processor, heartbeat.lateBy(1)};
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const QStringList arguments = QCoreApplication::arguments();
    const int count = arguments.value(1).toInt();
    const QString kind = arguments.value(2);
    if (count < 1 || (kind != QStringLiteral("local") && kind != QStringLiteral("server"))) {
        std::fputs("usage: quillpost-bench-statusreply DEPOSITIONS local|server [FILE-FOR-THE-REPLY]\n", stderr);
        return EXIT_FAILURE;
    }
    const QString reply = Bench::ManyJobs::statusReply(count, 1);
    if (arguments.size() > 3) {
        QFile file(arguments.at(3));
        if (!file.open(QIODevice::WriteOnly) || file.write(reply.toUtf8()) < 0)
            return EXIT_FAILURE;
    }
    Bench::ManyJobs jobs(count, kind == QStringLiteral("local") ? Bench::ManyJobs::Kind::Local
                                                                : Bench::ManyJobs::Kind::Server);
    const Figures changed = apply(jobs, reply);
    const Figures unchanged = apply(jobs, reply);
    const QJsonObject figures{{QStringLiteral("changedMilliseconds"), changed.applied},
                              {QStringLiteral("changedProcessor"), changed.processor},
                              {QStringLiteral("changedLongestTurn"), changed.longestTurn},
                              {QStringLiteral("unchangedMilliseconds"), unchanged.applied},
                              {QStringLiteral("unchangedProcessor"), unchanged.processor},
                              {QStringLiteral("unchangedLongestTurn"), unchanged.longestTurn}};
    Bench::printReport(figures);
    std::_Exit(EXIT_SUCCESS); // The end of thousands of jobs is none of what is measured.
}
