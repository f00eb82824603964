#pragma once

#include "model/Job.h"

#include <memory>

namespace SegmentPosition {

// The media file's number as a segment: its place in its job's list, counted from 1. A media file that is not there
// is a programming error; its number is then 0.
[[nodiscard]] int ofMediaFile(const Job& job, const std::shared_ptr<MediaFile>& mediaFile);

} // namespace SegmentPosition
