#include "engine/InterruptedWork.h"

#include <QFileInfo>

#include <algorithm>

namespace {

bool hasFileAt(const Job::MediaFiles& files, int status)
{
    return std::any_of(files.begin(), files.end(), [=](const auto& file) { return file->status() == status; });
}

bool isEveryFileBelow(const Job::MediaFiles& files, int status)
{
    return std::all_of(files.begin(), files.end(), [=](const auto& file) { return file->status() < status; });
}

void addFilesInTheMiddle(const Job::MediaFiles& files, InterruptedWork& work)
{
    // Once a file of the job is converted the finder, which takes whole jobs, no longer picks it: files that still
    // wait for their conversion are converted one by one.
    const bool isConverting = !isEveryFileBelow(files, JobStatusConverted);
    for (const auto& file : files) {
        const InterruptedWork::NextStep step = InterruptedWork::nextStepOf(*file);
        if (step == InterruptedWork::NextStep::Conversion || (isConverting && file->status() == JobStatusInfoExtracted))
            work.toConvert.push_back(file);
        else if (step == InterruptedWork::NextStep::Upload)
            work.toUpload.push_back(file);
    }
}

} // namespace

InterruptedWork::NextStep InterruptedWork::nextStepOf(const MediaFile& file)
{
    const int status = file.status();
    const bool isMp3Lost = status == JobStatusSegmentAdded && !QFileInfo(file.mp3FilePath()).isReadable();
    if (status == JobStatusConverted || isMp3Lost)
        return NextStep::Conversion;
    return status == JobStatusSegmentAdded ? NextStep::Upload : NextStep::None;
}

InterruptedWork InterruptedWork::of(const Job& job)
{
    InterruptedWork work;
    const int status = job.status();
    const auto files = job.mediaFiles();
    if (status <= JobStatusUploading) {
        addFilesInTheMiddle(files, work);
        // Some files were read and some not. Reading all again is quick, and leaves them at one status.
        if (isEveryFileBelow(files, JobStatusConverting) && hasFileAt(files, JobStatusDetailsSubmitted) &&
            hasFileAt(files, JobStatusInfoExtracted))
            work.jobStatus = JobStatusDetailsSubmitted;
    } else if (status == JobStatusReprocessRequested || status == JobStatusReprocessing) {
        // The service still lacks the audio and says so at the next status reply, which wants the job here.
        work.jobStatus = JobStatusOnServer;
    }
    work.transcriptToUpload =
        status >= JobStatusUploaded && status < JobStatusReadyForDownload && !job.transcriptUploaded();
    return work;
}
