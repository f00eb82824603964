// Trying again what stopped. Nothing here happens by itself.

#include "commands/AddJobSegmentsCommand.h"
#include "commands/DownloadJobFilesCommand.h"
#include "commands/SubmitJobDetailsCommand.h"
#include "commands/UploadCommand.h"
#include "engine/InterruptedWork.h"
#include "engine/JobModel.h"
#include "foundation/Log.h"
#include "foundation/NumberReading.h"

#include <curl/curl.h>

#include <algorithm>

namespace {

// Every other failure may have come after the request was read.
bool wasNothingSent(const CUrlCommand& command)
{
    switch (command.result()) {
    case CURLE_COULDNT_RESOLVE_PROXY:
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_CONNECT:
    case CURLE_SSL_CONNECT_ERROR:
        return true;
    default:
        return false;
    }
}

// The service may have got it, and gone on: the reply alone was lost.
bool isTranscriptMissing(const Job& job, const StoppedWork& stopped)
{
    return stopped.isTranscript && !job.transcriptUploaded() && job.status() < JobStatusReadyForDownload;
}

} // namespace

StoppedWork& JobModel::stoppedWorkOf(const JobPointer& job)
{
    if (m_jobSet.contains(job.get()))
        return m_stoppedWork[job];
    m_droppedWork = {}; // Of a job that left the list meanwhile nothing is kept.
    return m_droppedWork;
}

void JobModel::fileStopped(const JobPointer& job, const MediaFilePointer& mediaFile, bool holdsUploadPlace)
{
    stoppedWorkOf(job).files.push_back({mediaFile, holdsUploadPlace});
}

void JobModel::fileGoesOn(const JobPointer& job, const MediaFilePointer& mediaFile)
{
    const auto found = m_stoppedWork.find(job);
    if (found == m_stoppedWork.end())
        return;
    std::erase_if(found->second.files, [&](const StoppedWork::File& file) { return file.mediaFile == mediaFile; });
    if (found->second.isEmpty())
        m_stoppedWork.erase(found);
}

JobModel::JobPointer JobModel::jobStoppedByFailureOf(const CUrlCommand& command)
{
    if (const auto* const submit = dynamic_cast<const SubmitJobDetailsCommand*>(&command)) {
        StoppedWork& stopped = stoppedWorkOf(submit->job());
        stopped.isSubmission = true;
        stopped.mayBeSubmitted = !wasNothingSent(command);
        return submit->job();
    }
    if (const auto* const segment = dynamic_cast<const AddJobSegmentsCommand*>(&command)) {
        fileStopped(segment->job(), segment->mediaFile(), false);
        return segment->job();
    }
    if (const auto* const upload = dynamic_cast<const UploadCommand*>(&command)) {
        if (const auto mediaFile = std::dynamic_pointer_cast<MediaFile>(upload->uploadedObject()))
            fileStopped(upload->job(), mediaFile, true);
        else
            stoppedWorkOf(upload->job()).isTranscript = true;
        return upload->job();
    }
    if (const auto* const download = dynamic_cast<const DownloadJobFilesCommand*>(&command)) {
        stoppedWorkOf(download->job()).isDownload = true;
        return download->job();
    }
    return nullptr;
}

bool JobModel::canRetryJob(const JobPointer& job) const
{
    const auto found = m_stoppedWork.find(job);
    if (found == m_stoppedWork.end())
        return false;
    const StoppedWork& stopped = found->second;
    return (stopped.isSubmission && job->status() <= JobStatusSubmittingDetails) ||
           isTranscriptMissing(*job, stopped) || (stopped.isDownload && job->status() >= JobStatusDownloading) ||
           std::any_of(stopped.files.begin(), stopped.files.end(),
                       [](const StoppedWork::File& file) { return file.mediaFile->status() < JobStatusUploaded; });
}

bool JobModel::retryJob(const JobPointer& job)
{
    if (m_isEnding || !canRetryJob(job))
        return false;
    const auto found = m_stoppedWork.find(job);
    const StoppedWork stopped = std::move(found->second);
    m_stoppedWork.erase(found);
    Log::info("Job = {}, {} is tried again", NumberReading::valueOrZero(job->depoNum()), job->name());
    if (stopped.isSubmission)
        retrySubmission(job, stopped.mayBeSubmitted);
    for (const StoppedWork::File& file : stopped.files)
        retryFile(job, file);
    if (isTranscriptMissing(*job, stopped))
        uploadTranscript(job);
    // At once: of a job that was delivered with problems no status reply says any more that it is to be fetched.
    if (stopped.isDownload && job->status() >= JobStatusDownloading)
        downloadJob(job);
    Q_EMIT jobRetried(job);
    return true;
}

void JobModel::retrySubmission(const JobPointer& job, bool mayBeSubmitted)
{
    if (mayBeSubmitted)
        tellOfPerhapsSubmittedJob(job);
    for (const MediaFilePointer& mediaFile : job->mediaFiles())
        mediaFile->setStatus(settledJobStatus(mediaFile->status())); // The finder takes it from there.
}

void JobModel::retryFile(const JobPointer& job, const StoppedWork::File& file)
{
    if (file.holdsUploadPlace)
        m_uploadGate.giveBack();
    // The service may have gone on with it: a reply was lost, not the upload.
    if (file.mediaFile->status() >= JobStatusUploaded)
        return;
    file.mediaFile->setStatus(settledJobStatus(file.mediaFile->status()));
    switch (InterruptedWork::nextStepOf(*file.mediaFile)) {
    case InterruptedWork::NextStep::Conversion:
        // By this status the conversion knows that the service said how many channels it wants.
        if (job->status() == JobStatusReprocessing)
            file.mediaFile->setStatus(JobStatusReprocessing);
        startConversion(job, file.mediaFile);
        break;
    case InterruptedWork::NextStep::Upload:
        uploadMediaFile(file.mediaFile, job);
        break;
    case InterruptedWork::NextStep::None:
        break;
    }
}

void JobModel::tellOfPerhapsSubmittedJob(const JobPointer& job)
{
    Log::warning(
        "The submission of {} was never confirmed; it is submitted again, and the service may now hold it twice",
        job->name());
    Q_EMIT jobMayBeHeldTwice(job);
}
