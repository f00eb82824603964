#pragma once

#include "demo-service/Records.h"

#include <cstdint>
#include <string>
#include <vector>

namespace DemoService {

struct TimedLine
{
    std::string text;         // valid UTF-8 without control characters
    std::int64_t startMs = 0; // over all recordings
    int segment = 1;
    std::int64_t segmentStartMs = 0; // within its recording
};

// The transcript's lines, spread evenly over the job's recordings: what stands for the alignment of the real service.
struct TimedTranscript
{
    std::string name;     // the transcript's file name
    std::string baseName; // without folder and extension
    std::string deponent;
    std::string date;
    std::int64_t durationMs = 0;
    std::vector<TimedLine> lines;
    std::vector<std::pair<std::string, std::int64_t>> recordings; // name and duration
};

[[nodiscard]] TimedTranscript timedTranscript(const Job& job);

} // namespace DemoService
