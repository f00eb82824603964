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

} // namespace

void JobModel::fileStopped(const JobPointer& job, const MediaFilePointer& mediaFile, bool holdsUploadPlace)
{
    m_stoppedWork[job].files.push_back({mediaFile, holdsUploadPlace});
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
        StoppedWork& stopped = m_stoppedWork[submit->job()];
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
            m_stoppedWork[upload->job()].isTranscript = true;
        return upload->job();
    }
    if (const auto* const download = dynamic_cast<const DownloadJobFilesCommand*>(&command)) {
        m_stoppedWork[download->job()].isDownload = true;
        return download->job();
    }
    return nullptr;
}

bool JobModel::canRetryJob(const JobPointer& job) const
{
    return m_stoppedWork.contains(job);
}

bool JobModel::retryJob(const JobPointer& job)
{
    const auto found = m_stoppedWork.find(job);
    if (found == m_stoppedWork.end() || m_isEnding)
        return false;
    const StoppedWork stopped = std::move(found->second);
    m_stoppedWork.erase(found);
    Log::info("Job = {}, {} is tried again", NumberReading::valueOrZero(job->depoNum()), job->name());
    if (stopped.isSubmission)
        retrySubmission(job, stopped.mayBeSubmitted);
    for (const StoppedWork::File& file : stopped.files)
        retryFile(job, file);
    if (stopped.isTranscript && !job->transcriptUploaded())
        uploadTranscript(job);
    if (stopped.isDownload && job->status() == JobStatusDownloading) {
        // The next status reply finds it ready again.
        job->setStatus(settledJobStatus(JobStatusDownloading));
        checkJobsStatusOnServer();
    }
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
