// One stretch of a job's road, done by the engine and measured. What it is beside does the same to the same files.
#include "harness/Report.h"
#include "works/WorkEngine.h"
#include "works/WorkJob.h"

#include <QCoreApplication>

#include <cstdio>
#include <cstdlib>

namespace {

struct Arguments
{
    QString secureHost;
    QString fileHost;
    QString folder;
    QString transcript;
    QStringList files;
};

WorkEngine::Setting settingOf(const Arguments& given)
{
    return {.secureHost = given.secureHost, .fileHost = given.fileHost, .folder = given.folder};
}

// Every recording from its film to the MP3 that goes to the service. The commands that follow stay in their queue.
void convert(const Arguments& given)
{
    WorkEngine engine(settingOf(given));
    const auto job = workJob(given.transcript, given.files, JobStatusInfoExtracted);
    engine.model().addJobsObject(job);
    const Usage usage;
    engine.model().convertToMP3AndUpload(job);
    engine.turnUntil([&] { return haveAllFilesReached(*job, JobStatusConverted); });
    Bench::printReport(usage.sinceThen());
}

// Files that are there already, as MP3s of a job.
void upload(const Arguments& given)
{
    WorkEngine engine(settingOf(given));
    const auto job = workJob(given.transcript, given.files, JobStatusSegmentAdded);
    for (const auto& file : job->mediaFiles())
        file->setMp3FilePath(file->sourceFilePath());
    engine.startCommands();
    engine.model().addJobsObject(job);
    const Usage usage;
    for (const auto& file : job->mediaFiles())
        engine.model().uploadMediaFile(file, job);
    engine.turnUntil([&] { return haveAllFilesReached(*job, JobStatusUploaded); });
    Bench::printReport(usage.sinceThen());
}

void deliver(const Arguments& given)
{
    WorkEngine engine(settingOf(given));
    const auto job = workJob(given.transcript, given.files, JobStatusReadyForDownload);
    engine.startCommands();
    engine.model().addJobsObject(job);
    const Usage usage;
    engine.model().downloadJob(job);
    engine.turnUntil([&] { return job->status() == JobStatusCompleted; });
    Bench::printReport(usage.sinceThen());
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 6) {
        std::fputs("usage: quillpost-bench-engine convert|upload|deliver SECURE-HOST FILE-HOST FOLDER TRANSCRIPT "
                   "[FILE…]\n",
                   stderr);
        return EXIT_FAILURE;
    }
    const QString& work = arguments.at(1);
    const Arguments given{.secureHost = arguments.at(2),
                          .fileHost = arguments.at(3),
                          .folder = arguments.at(4),
                          .transcript = arguments.at(5),
                          .files = arguments.mid(6)};
    if (work == u"convert")
        convert(given);
    else if (work == u"upload")
        upload(given);
    else if (work == u"deliver")
        deliver(given);
    else
        return EXIT_FAILURE;
    return EXIT_SUCCESS;
}
