#pragma once

#include "model/MediaFile.h"

#include <memory>
#include <vector>

// What of one job goes no further by itself, so that trying again begins with that and leaves the rest of the job,
// which may be under way, alone.
struct StoppedWork
{
    struct File
    {
        std::shared_ptr<MediaFile> mediaFile;
        bool holdsUploadPlace = false; // its upload got no reply
    };

    std::vector<File> files;
    bool isSubmission = false;
    bool mayBeSubmitted = false; // the submission was sent, and nothing is known of the service's answer
    bool isTranscript = false;
    bool isDownload = false;

    [[nodiscard]] bool isEmpty() const { return files.empty() && !isSubmission && !isTranscript && !isDownload; }
};
