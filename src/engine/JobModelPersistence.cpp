// Keeping the unfinished local jobs between runs.

#include "commands/SetMediaFormatCommand.h"
#include "engine/InterruptedWork.h"
#include "engine/JobModel.h"
#include "engine/SavedState.h"
#include "engine/StateKeeper.h"
#include "foundation/Log.h"

#include <QFile>

QString JobModel::stateFilePath(const QString& folder) const
{
    return SavedState::filePath(folder, username());
}

std::optional<Error> JobModel::saveState(const QString& folder)
{
    const bool wasProcessing = m_doFindAndProcessJobs;
    stopJobProcessing();
    const QString path = stateFilePath(folder);
    StateKeeper* const keeper = m_stateKeeper && m_stateKeeper->path() == path ? m_stateKeeper.get() : nullptr;
    if (keeper != nullptr)
        keeper->settle(); // It must not write an older picture over this one.
    auto error = SavedState::write(path, jobs());
    if (error)
        Log::error("Unable to save the jobs: {}", error->localizedDescription);
    if (keeper != nullptr)
        keeper->goOn();
    if (wasProcessing)
        startJobProcessing();
    return error;
}

void JobModel::keepState(const QString& folder)
{
    const QString path = stateFilePath(folder);
    if (m_stateKeeper && m_stateKeeper->path() == path)
        return;
    if (m_stateKeeper)
        m_stateKeeper->finish(); // Somebody may wait for it.
    m_stateKeeper = std::make_unique<StateKeeper>(*this, path);
    connect(m_stateKeeper.get(), &StateKeeper::writingFailed, this,
            [this](const Error& error) { m_services.presentError(error); });
}

void JobModel::loadState(const QString& folder)
{
    if (username().isEmpty())
        return;
    const bool wasProcessing = m_doFindAndProcessJobs;
    stopJobProcessing();
    const std::vector<JobPointer> jobsBefore = jobs();
    const QString path = stateFilePath(folder);
    const SavedState::Contents saved = SavedState::readLastGood(path);
    for (const JobPointer& job : saved.jobs)
        addJobsObject(job);
    for (const JobPointer& job : saved.fromPrevious)
        m_jobsOfFileBefore.insert(job);
    for (const JobPointer& job : saved.submittedPerhaps)
        tellOfPerhapsSubmittedJob(job);
    const auto problems = putDamagedAside(path, saved);
    for (const JobPointer& job : saved.jobs)
        continueInterruptedWork(job);
    for (const JobPointer& job : jobsBefore)
        restartSettledFiles(job);
    if (wasProcessing)
        startJobProcessing();
    // Last: the user may take hours to read it.
    for (const Error& problem : problems)
        m_services.presentError(problem);
}

std::vector<Error> JobModel::putDamagedAside(const QString& path, const SavedState::Contents& saved)
{
    std::vector<Error> problems;
    if (saved.problem)
        problems.push_back(SavedState::keepAside(path, *saved.problem));
    if (saved.problemOfPrevious)
        problems.push_back(SavedState::keepAside(SavedState::previousPath(path), *saved.problemOfPrevious));
    if (problems.empty())
        return problems;
    // What could be read has a file again before anything else is done with it.
    if (const auto error = SavedState::write(path, jobs()))
        Log::error("Unable to save the jobs: {}", error->localizedDescription);
    return problems;
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
    for (const MediaFilePointer& mediaFile : work.toUpload) {
        // Whether the service was told of its streams, which nothing waits for, is not saved.
        post(SetMediaFormatCommand::setMediaFormatCommandWithUser(m_hosts, username(), password(), job, mediaFile));
        uploadMediaFile(mediaFile, job);
    }
    if (work.transcriptToUpload)
        uploadTranscript(job);
}

void JobModel::restartSettledFiles(const JobPointer& job)
{
    if (job->status() > JobStatusUploading)
        return;
    for (const MediaFilePointer& mediaFile : job->mediaFiles()) {
        if (mediaFile->status() == JobStatusConverted)
            startConversion(job, mediaFile);
        else if (mediaFile->status() == JobStatusSegmentAdded)
            uploadMediaFile(mediaFile, job);
    }
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
