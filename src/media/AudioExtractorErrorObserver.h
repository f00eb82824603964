#pragma once

#include "foundation/Error.h"

class AudioExtractor;

// Told of every complaint that ffmpeg makes, while it runs, on the thread that runs the extractor. The extraction goes
// on. Not owned by the extractor; must outlive its operation.
class AudioExtractorErrorObserver
{
public:
    virtual ~AudioExtractorErrorObserver() = default;

    virtual void audioExtractorHandleError(AudioExtractor& extractor, const Error& error) = 0;
};
