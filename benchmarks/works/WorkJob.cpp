#include "works/WorkJob.h"

#include <algorithm>

std::shared_ptr<Job> workJob(const QString& transcript, const QStringList& media, std::optional<int> status)
{
    auto job = Job::job();
    job->setTranscriptFile(transcript);
    job->setDeponentFirstName(QStringLiteral("Jane"));
    job->setDeponentLastName(QStringLiteral("Doe"));
    job->setShortCaption(QStringLiteral("Doe v. Roe"));
    job->setAutoSyncProdID(11);
    job->setMan24ProdID(24);
    for (const QString& path : media)
        job->insertObject(MediaFile::mediaFileWithPath(path), job->mediaFiles().size());
    if (!status)
        return job;
    job->setOrderNum(5120);
    job->setDepoNum(883);
    for (const auto& file : job->mediaFiles())
        file->setStatus(*status);
    job->setStatus(*status);
    return job;
}

bool haveAllFilesReached(const Job& job, int status)
{
    const auto files = job.mediaFiles();
    return std::all_of(files.begin(), files.end(), [&](const auto& file) { return file->status() >= status; });
}
