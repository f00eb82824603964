#pragma once

#include "model/Job.h"

#include <memory>
#include <optional>
#include <vector>

// How the work of a job goes on that was saved in the middle of it and read back.
struct InterruptedWork
{
    // The status that lets the finder or the status poll take the job on; nothing where the job's own does.
    std::optional<int> jobStatus;
    std::vector<std::shared_ptr<MediaFile>> toConvert;
    std::vector<std::shared_ptr<MediaFile>> toUpload;
    bool transcriptToUpload = false;

    [[nodiscard]] static InterruptedWork of(const Job& job);

    // What a file at a settled status waits for that the finder, which takes whole jobs, does not see.
    enum class NextStep { None, Conversion, Upload };
    [[nodiscard]] static NextStep nextStepOf(const MediaFile& file);
};
