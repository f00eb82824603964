#pragma once

#include "model/Job.h"

#include <QString>

// The names under which files are uploaded. The service relates an upload to its job through them alone. A source name
// without a point gives the empty name.
namespace DestinationFileName {

// "5120_883.txt[Smith 2 Mar.txt,-1]": order, deposition, extension, base name, extension.
[[nodiscard]] QString ofTranscript(const Job& job);

// "5120_883_2.mp3[clip.mov,247000]": order, deposition, segment from 1, source name, MP3 duration in milliseconds of
// whole seconds. A segment that the job has not is a programming error and gives the empty name.
[[nodiscard]] QString ofSegment(const Job& job, int segment);

} // namespace DestinationFileName
