#include "works/ManyJobs.h"

#include "app/QuillpostAppDelegate.h"
#include "engine/JobModel.h"
#include "foundation/Text.h"
#include "ui/main/JobListModel.h"
#include "ui/main/MainWindowController.h"

#include <QApplication>
#include <QFile>
#include <QTreeView>

#include <array>
#include <cstdlib>

namespace Bench {

namespace {

constexpr std::array depositionWords{"Splitting", "SplitDone", "Join", "Joining"};
constexpr std::array segmentWords{"Split", "AutoSplitting", "Joining", "JoinedCMS"};
constexpr std::array names{"Doe-Jane", "Marsh-Ellen", "Okafor-Grace", "de la Cruz-Ana", "Ångström-Åsa", "Smith-Al"};

} // namespace

ManyJobs::ManyJobs(int count, Kind kind) : m_run(QString(), 2) // no transcript is asked for
{
    m_run.logIn();
    JobModel& model = jobModel();
    model.setStatusCheckTimeInterval(1e6);
    model.setInstructionsCheckTimeInterval(1e6);
    DesktopRun::turnUntil("the first polls",
                          [&] { return !model.isCheckingJobStatus() && !model.isGettingInstructions(); });
    // As if they were under way: no other is sent.
    model.setIsCheckingJobStatus(true);
    model.setIsGettingInstructions(true);
    if (kind == Kind::Local)
        addLocalJobs(count);
    else
        model.processCheckJobsStatusOnServerResponse(statusReply(count, 0));
    model.setIsCheckingJobStatus(false);
    DesktopRun::turnUntil(
        "the jobs", [&] { return m_run.delegate().mainWindowController().jobsArrayController().rowCount() == count; });
    turnUntilShown();
}

JobModel& ManyJobs::jobModel()
{
    return m_run.delegate().jobModel();
}

QTreeView& ManyJobs::list()
{
    return *DesktopRun::window("MainWindow").findChild<QTreeView*>(QStringLiteral("jobsOutlineView"));
}

void ManyJobs::turnUntilShown()
{
    // The list announces the changes of a fifth of a second together, in turns of some thousand rows.
    QElapsedTimer sinceAnnouncement;
    sinceAnnouncement.start();
    const auto connection = QObject::connect(&m_run.delegate().mainWindowController().jobsArrayController(),
                                             &QAbstractItemModel::dataChanged, [&] { sinceAnnouncement.start(); });
    DesktopRun::turnUntil("the list", [&] { return sinceAnnouncement.hasExpired(600); });
    QObject::disconnect(connection);
}

void ManyJobs::addLocalJobs(int count)
{
    std::array<QString, filesOfAJob> paths;
    for (QString& path : paths) {
        path = m_run.home().filePath(QStringLiteral("recording%1.wav").arg(&path - paths.data()));
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly))
            std::exit(1);
    }
    for (int number = 1; number <= count; ++number) {
        const auto job = Job::job();
        const auto at = static_cast<std::size_t>(number);
        job->setName(Text::format("{} {}.txt", names[at % names.size()], number * 7919 % count));
        job->setDepoNum(number);
        Job::MediaFiles files;
        for (const QString& path : paths) {
            files.append(MediaFile::mediaFileWithPath(path));
            files.back()->setSourceDuration(static_cast<float>(60 + number * 31 % 7200));
            files.back()->setScoreValue(number % 100);
            files.back()->setStatus(JobStatusOnServer);
            files.back()->setServerStatus(QStringLiteral("Split"));
        }
        job->setMediaFiles(files);
        job->setDeliveryFormat(number % 3);
        job->setStatus(JobStatusOnServer);
        job->setServerStatus(QStringLiteral("Splitting"));
        jobModel().addJobsObject(job);
    }
}

QString ManyJobs::statusReply(int count, int turn)
{
    QString depositions;
    QString segments;
    const auto at = static_cast<std::size_t>(turn);
    for (int number = 1; number <= count; ++number) {
        depositions +=
            Text::format("Depo: {} {} {}.txt {}\n", number, names[static_cast<std::size_t>(number) % names.size()],
                         number * 7919 % count, depositionWords[at % depositionWords.size()]);
        for (int segment = 1; segment <= filesOfAJob; ++segment)
            segments += Text::format("Segment: {} {} {} 247000 {}\n", number, segment,
                                     segmentWords[at % segmentWords.size()], (number + turn) % 100);
    }
    return depositions + segments;
}

} // namespace Bench
