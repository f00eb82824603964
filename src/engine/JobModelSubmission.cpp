// Registering a job with the service and sending its files.

#include "commands/AddJobSegmentsCommand.h"
#include "commands/SetMediaFormatCommand.h"
#include "commands/SubmitJobDetailsCommand.h"
#include "commands/UploadCommand.h"
#include "engine/DestinationFileName.h"
#include "engine/JobModel.h"
#include "engine/StateKeeper.h"
#include "foundation/Assertion.h"
#include "foundation/Log.h"
#include "foundation/MainThread.h"
#include "foundation/NumberReading.h"
#include "foundation/ShownText.h"
#include "foundation/Text.h"

#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>

namespace {

int depoNum(const Job& job)
{
    return NumberReading::valueOrZero(job.depoNum());
}

QString submissionError(const Job& job, const QString& response)
{
    return Text::format("Possible error with job({}) submission, response({})", depoNum(job), ShownText::of(response));
}

// Two zeros, and nothing that may be half of something else.
bool isRefusal(const QString& response)
{
    static const QRegularExpression zeros(QStringLiteral("^0+ 0+\\s*$"));
    return zeros.match(response).hasMatch();
}

} // namespace

void JobModel::submitJobDetails(const JobPointer& job)
{
    const auto command = SubmitJobDetailsCommand::submitJobDetailsCommandWithUser(m_hosts, username(), password(), job);
    for (const MediaFilePointer& mediaFile : job->mediaFiles())
        mediaFile->setStatus(JobStatusSubmittingDetails);
    // The saved jobs tell of a submission before it leaves: a run after a crash knows that the service may hold the
    // job.
    postWhenSaved(command);
}

void JobModel::processJobSubmitJobDetailsResponse(const JobPointer& job, const QString& response)
{
    Log::info("SubmitJobDetails command response = {}", response);
    const qsizetype blank = response.indexOf(u' ');
    const int orderNum = NumberReading::intValue(blank < 0 ? response : response.left(blank));
    const int number = blank < 0 ? 0 : NumberReading::intValue(response.mid(blank + 1));
    job->setOrderNum(orderNum);
    job->setDepoNum(number);
    if (orderNum != 0 && number != 0) {
        for (const MediaFilePointer& mediaFile : job->mediaFiles())
            mediaFile->setStatus(JobStatusDetailsSubmitted);
        // At once: a run that ends before the number is saved has the job submitted twice.
        if (m_stateKeeper)
            m_stateKeeper->whenSaved([] {});
    } else {
        StoppedWork& stopped = stoppedWorkOf(job);
        stopped.isSubmission = true;
        stopped.mayBeSubmitted = !isRefusal(response);
        presentErrorAndStop(job, submissionError(*job, response));
    }
    Log::info("Job status after submitting details: {}", job->status());
}

void JobModel::addMediaFileSegment(const MediaFilePointer& mediaFile, const JobPointer& job)
{
    MainThread::runAndWait([&] { mediaFile->setStatus(JobStatusAddingSegment); });
    post(AddJobSegmentsCommand::addJobSegmentsCommandWithUser(m_hosts, username(), password(), job, mediaFile));
    // Nothing waits for this one's reply.
    post(SetMediaFormatCommand::setMediaFormatCommandWithUser(m_hosts, username(), password(), job, mediaFile));
}

void JobModel::processJobAddMediaFileSegmentResponse(const JobPointer& job, const MediaFilePointer& mediaFile,
                                                     const QString& response)
{
    Log::info("addMediaFileSegment command response = {}", response);
    if (response.isEmpty()) {
        mediaFile->setStatus(JobStatusSegmentAdded);
        uploadMediaFile(mediaFile, job);
    } else {
        fileStopped(job, mediaFile, false);
        presentErrorAndStop(job, submissionError(*job, response));
    }
}

void JobModel::processJobSetMediaFileFormatResponse(const JobPointer& /*job*/, const MediaFilePointer& /*mediaFile*/,
                                                    const QString& response)
{
    Log::info("setMediaFileFormat command response = {}", response);
}

QString JobModel::transcriptDestFileNameForJob(const Job& job) const
{
    return DestinationFileName::ofTranscript(job);
}

QString JobModel::mediaDestFileNameForJob(const Job& job, int segment) const
{
    return DestinationFileName::ofSegment(job, segment);
}

void JobModel::uploadMediaFile(const MediaFilePointer& mediaFile, const JobPointer& job)
{
    m_threads.start("upload", [this, job, mediaFile] { uploadMediaFileThreadProc(job, mediaFile); });
}

void JobModel::uploadMediaFileThreadProc(const JobPointer& job, const MediaFilePointer& mediaFile)
{
    if (!threadWaitForUploadCondition())
        return;
    const QString mp3Path = mediaFile->mp3FilePath();
    Log::info("Will upload media file: {}", mp3Path);
    const QFileInfo mp3(mp3Path);
    mediaFile->setMp3TotalFileSize(mp3.exists() ? std::optional<qint64>(mp3.size()) : std::nullopt);

    const auto files = job->mediaFiles();
    const auto found = std::find_if(files.begin(), files.end(),
                                    [&](const auto& file) { return file == mediaFile || file->isEqual(*mediaFile); });
    if (!Assertion::check(found != files.end(), "Invalid media file")) {
        m_uploadGate.lose();
        return;
    }
    const int segment = static_cast<int>(found - files.begin()) + 1;

    mediaFile->startAccessingBookmarkedURL();
    const auto command = UploadCommand::uploadCommandWithUser(m_hosts, username(), password(), job, mp3Path,
                                                              mediaDestFileNameForJob(*job, segment));
    mediaFile->stopAccessingBookmarkedURL();
    if (!command) {
        m_uploadGate.lose();
        const QString reason =
            Text::format("No audio could be made of {}: {} cannot be read", mediaFile->sourceFilePath(), mp3Path);
        postToMainThread([this, job, mediaFile, reason] {
            fileStopped(job, mediaFile, true);
            Q_EMIT jobStopped(job, reason);
        });
        return;
    }
    command->setUploadedObject(mediaFile);
    // Set before it is posted: the reply's status must be the later one.
    mediaFile->setStatus(JobStatusUploading);
    post(command);
}

void JobModel::uploadTranscript(const JobPointer& job)
{
    job->startAccessingBookmarkedURL();
    const auto command = UploadCommand::uploadCommandWithUser(
        m_hosts, username(), password(), job, job->transcriptFile(), transcriptDestFileNameForJob(*job));
    job->stopAccessingBookmarkedURL();
    if (!command) {
        stoppedWorkOf(job).isTranscript = true;
        Q_EMIT jobStopped(job, Text::format("The transcript {} cannot be read", job->transcriptFile()));
        return;
    }
    command->setUploadedObject(job);
    m_uploadGate.passBy();
    post(command);
}

void JobModel::processJobUploadedJobFileResponse(const JobPointer& job,
                                                 const std::shared_ptr<MediaObject>& uploadedObject,
                                                 const QString& response)
{
    // Exactly these words: with a line end after them it is another reply.
    if (response == u"UPLOAD COMPLETE")
        finishUpload(job, uploadedObject, response);
    else
        presentUploadError(job, uploadedObject, response);
    threadSignalForUploadCondition();
}

void JobModel::finishUpload(const JobPointer& job, const std::shared_ptr<MediaObject>& uploadedObject,
                            const QString& response)
{
    if (uploadedObject == job) {
        Log::info("Job = {}, all files are uploaded", depoNum(*job));
        job->setTranscriptUploaded(true);
        // The service may have gone on with the job before this reply came; it must not fall back behind its delivery.
        if (job->status() <= JobStatusOnServer)
            job->setStatus(JobStatusUploaded);
        return;
    }
    if (!uploadedObject)
        return; // The user dropped the job meanwhile.
    Log::info("Job = {}, media file name = {}, upload file command response = {}", depoNum(*job),
              uploadedObject->name(), response);
    uploadedObject->setStatus(JobStatusUploaded);
    if (job->status() == JobStatusUploaded) {
        Log::info("Job = {}, all media files are uploaded. Will upload transcript: {}", depoNum(*job),
                  job->transcriptFile());
        uploadTranscript(job);
    } else if (job->status() == JobStatusReprocessing) {
        const auto files = job->mediaFiles();
        const bool isReprocessing = std::any_of(
            files.begin(), files.end(), [](const auto& file) { return file->status() == JobStatusReprocessing; });
        if (!isReprocessing)
            job->setStatus(JobStatusUploaded);
    }
}

void JobModel::presentUploadError(const JobPointer& job, const std::shared_ptr<MediaObject>& uploadedObject,
                                  const QString& response)
{
    Log::error("Job = {}, upload file command response = {}", depoNum(*job), response);
    const auto mediaFile = std::dynamic_pointer_cast<MediaFile>(uploadedObject);
    if (mediaFile)
        fileStopped(job, mediaFile, false);
    else
        stoppedWorkOf(job).isTranscript = true;
    presentErrorAndStop(job, Text::format("Possible file( {} ) uploading error for job({}), server resonse( {} )",
                                          mediaFile ? mediaFile->mp3FilePath() : job->transcriptFile(), depoNum(*job),
                                          ShownText::of(response)));
}
