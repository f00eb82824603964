// Instructions, the log's upload, reprocessing and delivery, and where each ended command goes.

#include "commands/AddJobSegmentsCommand.h"
#include "commands/CheckStatusCommand.h"
#include "commands/DebugUploadCommand.h"
#include "commands/DownloadJobFilesCommand.h"
#include "commands/GetInstructionsCommand.h"
#include "commands/SetMediaFormatCommand.h"
#include "commands/SubmitJobDetailsCommand.h"
#include "commands/UploadCommand.h"
#include "engine/JobModel.h"
#include "foundation/FileLogger.h"
#include "foundation/Log.h"
#include "foundation/MainThread.h"
#include "foundation/NumberReading.h"
#include "foundation/ShownText.h"
#include "foundation/Text.h"

namespace {

int depoNum(const Job& job)
{
    return NumberReading::valueOrZero(job.depoNum());
}

} // namespace

void JobModel::getInstructions()
{
    if (m_isEnding)
        return;
    m_instructionsTimer.start(
        std::chrono::milliseconds(static_cast<std::int64_t>(m_instructionsCheckTimeInterval * 1000.0)));
    if (m_isGettingInstructions)
        return;
    setIsGettingInstructions(true);
    post(GetInstructionsCommand::getInstructionsCommandWithUser(m_hosts, username(), password()));
}

void JobModel::processGetInstructionsResponse(const QString& response)
{
    Log::info("getInstructions command response = {}", response);
    setIsGettingInstructions(false);
    // Split at blanks alone: a word that a line end follows is not the word.
    if (response.split(u' ').contains(QStringLiteral("SendLogs"))) {
        Log::info("Got 'SendLogs' command");
        uploadLogFile();
    }
}

void JobModel::uploadLogFile()
{
    if (username().isNull() || password().isNull())
        return;
    Log::info("Will upload log file");
    Log::flush();
    const auto fileLogger = m_services.fileLogger();
    if (!fileLogger)
        return;
    const auto command = DebugUploadCommand::uploadCommandWithUser(
        m_hosts, username(), password(), fileLogger->sortedLogFilePaths().value(0), QStringLiteral("debug.txt"));
    if (!command)
        return;
    command->setUploadedObject(fileLogger);
    post(command);
}

void JobModel::processDebugUploadResponse(const QString& response, const std::shared_ptr<FileLogger>& object)
{
    if (response != u"UPLOAD COMPLETE")
        Log::error("Failed to upload debug file, response = {}", response);
    else if (object && object == m_services.fileLogger())
        Log::info("Log file is uploaded");
}

void JobModel::downloadJob(const JobPointer& job)
{
    job->setTotalValue(100);
    job->setProcessedValue(0);
    const auto command = DownloadJobFilesCommand::downloadJobFilesCommandWithUser(m_hosts, username(), password(), job,
                                                                                  m_deliveryFolder);
    job->setStatus(JobStatusDownloading);
    for (const MediaFilePointer& mediaFile : job->mediaFiles())
        mediaFile->setStatus(JobStatusCompleted);
    // Once it is told of the delivery the service calls the job done: a run after a crash has to know that this one was
    // at it.
    postWhenSaved(command);
}

void JobModel::processJobDownloadJobResponse(const JobPointer& job, const QString& response)
{
    Log::info("downloadJobResponse command response = {}", response);
    if (response.isEmpty()) {
        job->setStatus(JobStatusCompleted);
    } else {
        stoppedWorkOf(job).isDownload = true;
        presentErrorAndStop(job, Text::format("Possible error with job({}) downloading, response({})", depoNum(*job),
                                              ShownText::of(response)));
    }
}

void JobModel::reprocessJob(const JobPointer& job)
{
    Log::info("Will reprocess job #{}", depoNum(*job));
    job->setStatus(JobStatusReprocessing);
    for (const MediaFilePointer& mediaFile : job->mediaFiles()) {
        if (mediaFile->status() != JobStatusReprocessRequested)
            continue;
        mediaFile->setStatus(JobStatusReprocessing);
        fileGoesOn(job, mediaFile);
        startConversion(job, mediaFile);
    }
}

void JobModel::curlCommandDone(CUrlCommand& command)
{
    const QString text = command.dataAsString();
    if (auto* const submit = dynamic_cast<SubmitJobDetailsCommand*>(&command)) {
        processJobSubmitJobDetailsResponse(submit->job(), text);
    } else if (auto* const segment = dynamic_cast<AddJobSegmentsCommand*>(&command)) {
        processJobAddMediaFileSegmentResponse(segment->job(), segment->mediaFile(), text);
    } else if (auto* const format = dynamic_cast<SetMediaFormatCommand*>(&command)) {
        processJobSetMediaFileFormatResponse(format->job(), format->mediaFile(), text);
    } else if (auto* const upload = dynamic_cast<UploadCommand*>(&command)) {
        processJobUploadedJobFileResponse(upload->job(), upload->uploadedObject(), text);
    } else if (auto* const debugUpload = dynamic_cast<DebugUploadCommand*>(&command)) {
        processDebugUploadResponse(text, debugUpload->uploadedObject());
        Q_EMIT logFileUploadEnded();
    } else if (dynamic_cast<CheckStatusCommand*>(&command)) {
        processCheckJobsStatusOnServerResponse(text);
    } else if (dynamic_cast<GetInstructionsCommand*>(&command)) {
        processGetInstructionsResponse(text);
    } else if (auto* const download = dynamic_cast<DownloadJobFilesCommand*>(&command)) {
        if (!download->problems().isEmpty()) {
            stoppedWorkOf(download->job()).isDownload = true;
            Q_EMIT deliveryHadProblems(download->job(), download->problems());
        }
        processJobDownloadJobResponse(download->job(), text);
    }
}

QString JobModel::failurePrefix(const CUrlCommand& command) const
{
    if (const auto* const submit = dynamic_cast<const SubmitJobDetailsCommand*>(&command))
        return Text::format("Job model, submission of job({}) failed, ", depoNum(*submit->job()));
    if (const auto* const segment = dynamic_cast<const AddJobSegmentsCommand*>(&command))
        return Text::format("Job model, submission of job({}) failed, ", depoNum(*segment->job()));
    if (const auto* const upload = dynamic_cast<const UploadCommand*>(&command))
        return Text::format("Job model, uploading of job({}) files failed, ", depoNum(*upload->job()));
    if (const auto* const download = dynamic_cast<const DownloadJobFilesCommand*>(&command))
        return Text::format("Job model, downloading of job({}) files failed, ", depoNum(*download->job()));
    if (dynamic_cast<const CheckStatusCommand*>(&command))
        return QStringLiteral("Job model, check status failed, ");
    if (dynamic_cast<const GetInstructionsCommand*>(&command))
        return QStringLiteral("Job model, get instructions failed, ");
    if (dynamic_cast<const DebugUploadCommand*>(&command))
        return QStringLiteral("Uploading of log file failed, ");
    return {};
}

void JobModel::curlCommandFailed(CUrlCommand& command)
{
    Log::info("curlCommandFailed Failed: {}", command.dataAsString());
    if (dynamic_cast<CheckStatusCommand*>(&command))
        setIsCheckingJobStatus(false);
    else if (dynamic_cast<GetInstructionsCommand*>(&command))
        setIsGettingInstructions(false);
    else if (dynamic_cast<UploadCommand*>(&command))
        m_uploadGate.lose();

    Error error = command.error();
    if (const QString prefix = failurePrefix(command); !prefix.isEmpty())
        error = prependError(error, prefix);
    if (m_isEnding) {
        Log::error("{}", error.localizedDescription);
        return; // The program's own end cut the transfer.
    }
    if (dynamic_cast<DebugUploadCommand*>(&command))
        Q_EMIT logFileUploadEnded();
    const JobPointer job = jobStoppedByFailureOf(command);
    m_services.presentError(error);
    if (job)
        Q_EMIT jobStopped(job, error.localizedDescription);
}

Error JobModel::prependError(const Error& error, const QString& prefix)
{
    // The prefixes end in a blank of their own; support searches for these texts with both blanks in them.
    return {error.domain, error.code, Text::format("{} {}", prefix, error.localizedDescription)};
}

void JobModel::curlCommandProgress(CUrlCommand& command, double nowDL, double totalDL, double nowUL, double /*totalUL*/)
{
    if (auto* const upload = dynamic_cast<UploadCommand*>(&command)) {
        if (const auto mediaFile = std::dynamic_pointer_cast<MediaFile>(upload->uploadedObject()))
            mediaFile->setMp3UploadedFileSize(nowUL);
    } else if (auto* const download = dynamic_cast<DownloadJobFilesCommand*>(&command)) {
        MainThread::runAndWait([job = download->job(), nowDL, totalDL] {
            job->setTotalValue(static_cast<int>(totalDL));
            job->setProcessedValue(static_cast<int>(nowDL));
        });
    }
}
