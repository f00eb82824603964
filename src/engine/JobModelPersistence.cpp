// Keeping the unfinished local jobs between runs.

#include "engine/InterruptedWork.h"
#include "engine/JobModel.h"
#include "foundation/AtomicFile.h"
#include "foundation/Log.h"
#include "foundation/PathText.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

namespace {

constexpr int stateFileVersion = 1;

// A user name is the user's choice and may hold what a file name cannot.
QString asFileNamePart(const QString& username)
{
    QString part = username;
    return part.replace(u'%', QStringLiteral("%25")).replace(u'/', QStringLiteral("%2F")).remove(QChar(u'\0'));
}

} // namespace

QString JobModel::stateFilePath(const QString& folder) const
{
    return PathText::appendingPathComponent(folder, QStringLiteral("State_%1.archive").arg(asFileNamePart(username())));
}

void JobModel::saveState(const QString& folder)
{
    const bool wasProcessing = m_doFindAndProcessJobs;
    stopJobProcessing();
    QJsonArray archivedJobs;
    for (const JobPointer& job : jobs()) {
        if (job->serverJob() || job->status() >= JobStatusDownloaded)
            continue;
        if (const auto archive = job->encode())
            archivedJobs.append(*archive);
    }
    const QJsonObject state{{QStringLiteral("version"), stateFileVersion}, {QStringLiteral("jobs"), archivedJobs}};
    QDir().mkpath(folder);
    if (const auto error = AtomicFile::write(stateFilePath(folder), QJsonDocument(state).toJson()))
        Log::error("Unable to save the jobs: {}", error->localizedDescription);
    if (wasProcessing)
        startJobProcessing();
}

void JobModel::loadState(const QString& folder)
{
    if (username().isEmpty())
        return;
    const bool wasProcessing = m_doFindAndProcessJobs;
    stopJobProcessing();
    QFile file(stateFilePath(folder));
    if (file.open(QIODevice::ReadOnly)) {
        const QJsonObject state = QJsonDocument::fromJson(file.readAll()).object();
        if (!state.contains(QStringLiteral("jobs")))
            Log::error("Unable to read the saved jobs: {}", file.fileName());
        for (const QJsonValue& archive : state.value(QStringLiteral("jobs")).toArray()) {
            if (const JobPointer job = Job::decode(archive.toObject()))
                addJobsObject(job);
        }
    }
    for (const JobPointer& job : jobs())
        continueInterruptedWork(job);
    if (wasProcessing)
        startJobProcessing();
}

void JobModel::continueInterruptedWork(const JobPointer& job)
{
    if (job->serverJob())
        return;
    const InterruptedWork work = InterruptedWork::of(*job);
    if (work.jobStatus)
        job->setStatus(*work.jobStatus);
    for (const MediaFilePointer& mediaFile : work.toConvert)
        startConversion(job, mediaFile);
    for (const MediaFilePointer& mediaFile : work.toUpload)
        uploadMediaFile(mediaFile, job);
    if (work.transcriptToUpload)
        uploadTranscript(job);
}

void JobModel::deleteTempFiles()
{
    for (const JobPointer& job : jobs()) {
        if (job->serverJob() || job->status() < JobStatusUploaded)
            continue;
        for (const MediaFilePointer& mediaFile : job->mediaFiles()) {
            if (const QString path = mediaFile->mp3FilePath(); !path.isEmpty())
                QFile::remove(path);
        }
    }
}
