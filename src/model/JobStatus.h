#pragma once

#include <QString>

class MediaObject;
class QObject;

// Where a job or a media file stands. The numbers are archived and ordered: later work has the higher number. Odd
// numbers up to 9 are work in flight. Any int may turn up in a status; one without a member displays as "unknown".
enum JobStatus : int {
    JobStatusIdle = 0,
    JobStatusSubmittingDetails = 1,
    JobStatusDetailsSubmitted = 2,
    JobStatusExtractingInfo = 3,
    JobStatusInfoExtracted = 4,
    JobStatusConverting = 5,
    JobStatusConverted = 6,
    JobStatusAddingSegment = 7,
    JobStatusSegmentAdded = 8,
    JobStatusUploading = 9,
    JobStatusUploaded = 10,
    JobStatusOnServer = 11,
    JobStatusReprocessRequested = 12,
    JobStatusReprocessing = 13,
    JobStatusReadyForDownload = 14,
    JobStatusDownloading = 15,
    JobStatusDownloaded = 16,
    JobStatusCompleted = 17,
};

// The status to which work in flight falls back when it is done again: after the end of the program, or because it
// failed. Every other status is settled already.
[[nodiscard]] int settledJobStatus(int status);

// What the list shows for the object's status; on the server, the service's own words for it. Null where the service
// gave a media file none.
[[nodiscard]] QString jobStatusText(const MediaObject& mediaObject);

// The words for the object's server status: a few plain ones for a job, the service's word itself for a media file.
// Anything but a media object fails the assertion "Invalid media object type" and gives "Invalid".
[[nodiscard]] QString userStringForServerStatus(const QObject& mediaObject);
