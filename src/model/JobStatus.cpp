#include "model/JobStatus.h"

#include "foundation/Assertion.h"
#include "model/Job.h"

namespace {

QString jobStringForServerStatus(const QString& serverStatus)
{
    static const QStringList inProcess{
        QStringLiteral("AutoSplitting"), QStringLiteral("Split"),      QStringLiteral("Splitting"),
        QStringLiteral("SplitDone"),     QStringLiteral("Join"),       QStringLiteral("Joining"),
        QStringLiteral("JoinedCMS"),     QStringLiteral("JoiningCMS"),
    };
    if (serverStatus == QStringLiteral("Uploading"))
        return QStringLiteral("Preparing and Uploading");
    if (inProcess.contains(serverStatus))
        return QStringLiteral("In Process");
    if (serverStatus == QStringLiteral("Joined") || serverStatus == QStringLiteral("Done"))
        return QStringLiteral("Completed");
    return QStringLiteral("Unknown");
}

} // namespace

int settledJobStatus(int status)
{
    switch (status) {
    case JobStatusSubmittingDetails:
        return JobStatusIdle;
    case JobStatusExtractingInfo:
        return JobStatusDetailsSubmitted;
    case JobStatusConverting:
        return JobStatusInfoExtracted;
    case JobStatusAddingSegment:
        return JobStatusConverted;
    case JobStatusUploading:
        return JobStatusSegmentAdded;
    case JobStatusReprocessRequested:
    case JobStatusReprocessing:
    case JobStatusReadyForDownload:
    case JobStatusDownloading:
        return JobStatusOnServer;
    default:
        return status;
    }
}

QString jobStatusText(const MediaObject& mediaObject)
{
    switch (mediaObject.status()) {
    case JobStatusIdle:
        return QStringLiteral("Idle");
    case JobStatusSubmittingDetails:
    case JobStatusDetailsSubmitted:
    case JobStatusAddingSegment:
        return QStringLiteral("Submitting Job");
    case JobStatusExtractingInfo:
        return QStringLiteral("Preparing for processing");
    case JobStatusInfoExtracted:
        return QStringLiteral("Waiting for processing");
    case JobStatusConverting:
    case JobStatusReprocessRequested:
    case JobStatusReprocessing:
        return QStringLiteral("Processing media files");
    case JobStatusConverted:
        return QStringLiteral("Media files processed");
    case JobStatusSegmentAdded:
        return QStringLiteral("Job submitted");
    case JobStatusUploading:
        return QStringLiteral("Uploading files");
    case JobStatusUploaded:
        return QStringLiteral("Files uploaded");
    case JobStatusOnServer:
        return userStringForServerStatus(mediaObject);
    case JobStatusReadyForDownload:
        return QStringLiteral("Ready for download");
    case JobStatusDownloading:
        return QStringLiteral("Downloading");
    case JobStatusDownloaded:
        return QStringLiteral("Downloaded");
    case JobStatusCompleted:
        return QStringLiteral("Completed");
    default:
        return QStringLiteral("unknown");
    }
}

QString userStringForServerStatus(const QObject& mediaObject)
{
    if (const auto* job = qobject_cast<const Job*>(&mediaObject))
        return jobStringForServerStatus(job->serverStatus());
    if (const auto* object = qobject_cast<const MediaObject*>(&mediaObject))
        return object->serverStatus();
    Assertion::failed("Invalid media object type");
    return QStringLiteral("Invalid");
}
