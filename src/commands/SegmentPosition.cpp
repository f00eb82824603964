#include "commands/SegmentPosition.h"

#include "foundation/Assertion.h"

int SegmentPosition::ofMediaFile(const Job& job, const std::shared_ptr<MediaFile>& mediaFile)
{
    int position = 0;
    for (const auto& candidate : job.mediaFiles()) {
        ++position;
        if (candidate == mediaFile || candidate->isEqual(*mediaFile))
            return position;
    }
    Assertion::failed("Media file not found in job");
    return 0;
}
