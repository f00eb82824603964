// Finding the job whose next step is due, and the local work on its media: reading and converting.

#include "engine/JobModel.h"
#include "engine/Mp3Location.h"
#include "foundation/AtomicFile.h"
#include "foundation/Log.h"
#include "foundation/MainThread.h"
#include "foundation/NumberReading.h"
#include "foundation/PathText.h"
#include "foundation/PrivateFolder.h"

#include <QFile>
#include <QFileInfo>

namespace {

bool isDueForNextStep(int status)
{
    return status == JobStatusIdle || status == JobStatusDetailsSubmitted || status == JobStatusInfoExtracted ||
           status == JobStatusReprocessRequested || status == JobStatusReadyForDownload;
}

bool isUncompleted(int status)
{
    return status < JobStatusUploaded || status == JobStatusReprocessing || status == JobStatusDownloading;
}

} // namespace

void JobModel::jobToProcessFinderThreadProc()
{
    if (!m_doFindAndProcessJobs)
        return;
    do {
        JobPointer candidate;
        bool hasUncompleted = false;
        {
            const std::scoped_lock lock(m_jobsMutex);
            for (const JobPointer& job : m_jobs) {
                const int status = job->status();
                if (isDueForNextStep(status))
                    candidate = job;
                hasUncompleted = hasUncompleted || isUncompleted(status);
            }
        }
        if (!MainThread::runAndWait([&] { setHasUncompletedLocalJobsFromAnotherThread(hasUncompleted); }))
            return;
        if (candidate)
            MainThread::runAndWait([&] { foundJobToProces(candidate); });
        else if (!sleepForFinder())
            return;
    } while (m_doFindAndProcessJobs);
}

bool JobModel::sleepForFinder()
{
    std::unique_lock lock(m_workMutex);
    m_finderWake.wait_for(lock, std::chrono::duration<double>(m_finderSleepInterval.load()),
                          [this] { return m_isEnding.load(); });
    return !m_isEnding;
}

void JobModel::setHasUncompletedLocalJobsFromAnotherThread(bool has)
{
    setHasUncompletedLocalJobs(has);
}

void JobModel::foundJobToProces(const JobPointer& job)
{
    if (m_isEnding)
        return;
    switch (job->status()) {
    case JobStatusIdle:
        submitJobDetails(job);
        break;
    case JobStatusDetailsSubmitted:
        extractMediaFilesInfo(job);
        break;
    case JobStatusInfoExtracted:
        convertToMP3AndUpload(job);
        break;
    case JobStatusReprocessRequested:
        reprocessJob(job);
        break;
    case JobStatusReadyForDownload:
        downloadJob(job);
        break;
    default:
        break; // The step was taken since the finder looked.
    }
}

void JobModel::runExtractor(const MediaFilePointer& mediaFile, const std::function<void(AudioExtractor&)>& work)
{
    const auto extractor = AudioExtractor::audioExtractorWithInputMediaFile(mediaFile);
    if (!extractor)
        return;
    extractor->setObserver(this);
    {
        const std::scoped_lock lock(m_workMutex);
        if (m_isEnding)
            return;
        m_runningExtractors.insert(extractor);
    }
    work(*extractor);
    const std::scoped_lock lock(m_workMutex);
    m_runningExtractors.erase(extractor);
}

void JobModel::extractMediaFilesInfo(const JobPointer& job)
{
    Log::info("Starting extractMediaFilesInfo");
    job->setStatus(JobStatusExtractingInfo);
    m_threads.start("media info", [this, job] { extractMediaFileInfoThreadProc(job); });
}

void JobModel::extractMediaFileInfoThreadProc(const JobPointer& job)
{
    for (const MediaFilePointer& mediaFile : job->mediaFiles()) {
        if (!extractMediaFileInfo(mediaFile))
            return;
    }
}

bool JobModel::extractMediaFileInfo(const MediaFilePointer& mediaFile)
{
    const QString fileName = PathText::lastPathComponent(mediaFile->sourceFilePath());
    Log::info("extractMediaFilesInfo got nextFile: {}", fileName);
    if (!threadWaitForFfmpegProcessesCondition() ||
        !MainThread::runAndWait([&] { mediaFile->setStatus(JobStatusExtractingInfo); }))
        return false;
    Log::info("extractMediaFilesInfo will process nextFile: {}", fileName);
    runExtractor(mediaFile, [](AudioExtractor& extractor) { extractor.extractInfo(); });
    Log::info("extractMediaFilesInfo done process nextFile: {}", fileName);
    threadSignalForFfmpegProcessesCondition();
    if (m_isEnding)
        return false; // Not read to its end: it stays where it can be read again.
    postToMainThread([this, mediaFile] { extractMediaFileInfoFinished(mediaFile); });
    return true;
}

void JobModel::extractMediaFileInfoFinished(const MediaFilePointer& mediaFile)
{
    mediaFile->setStatus(JobStatusInfoExtracted);
}

void JobModel::convertToMP3AndUpload(const JobPointer& job)
{
    job->setStatus(JobStatusConverting);
    for (const MediaFilePointer& mediaFile : job->mediaFiles())
        startConversion(job, mediaFile);
}

void JobModel::startConversion(const JobPointer& job, const MediaFilePointer& mediaFile)
{
    m_threads.start("conversion", [this, job, mediaFile] { convertToMP3ThreadProc(job, mediaFile); });
}

void JobModel::convertToMP3ThreadProc(const JobPointer& job, const MediaFilePointer& mediaFile)
{
    const QString mp3Path = Mp3Location::ofMediaFile(tempFilesFolder(), *job, *mediaFile);
    mediaFile->setMp3FilePath(mp3Path);
    // Removed only where there is nothing to remove: an old MP3 stays for the converter to overwrite, and every first
    // conversion leaves this line in the log, by which support tells first conversions from later ones.
    if (!QFileInfo::exists(mp3Path)) {
        QFile file(mp3Path);
        if (!file.remove())
            Log::error("Job #{}, Unable to delete mp3 file at path = {}, error = {}",
                       NumberReading::valueOrZero(job->depoNum()), mp3Path, file.errorString());
    }
    PrivateFolder::make(Mp3Location::folderOfJob(tempFilesFolder(), *job));

    if (!threadWaitForFfmpegProcessesCondition())
        return;
    const int statusBefore = mediaFile->status();
    if (!MainThread::runAndWait([&] { mediaFile->setStatus(JobStatusConverting); }))
        return;
    runExtractor(mediaFile, [&](AudioExtractor& extractor) {
        if (statusBefore == JobStatusReprocessing) {
            const bool isStereo =
                mediaFile->serverStatus().compare(QStringLiteral("Processing_Media_Stereo"), Qt::CaseInsensitive) == 0;
            extractor.setNumberOfChannels(isStereo ? 2 : 1);
        }
        extractor.convertToMp3(mp3Path);
    });
    threadSignalForFfmpegProcessesCondition();
    // The saved jobs, which are flushed too, must not call done what a power cut can take away.
    AtomicFile::flush(mp3Path);
    AtomicFile::flush(QFileInfo(mp3Path).path());
    // Dropped while the engine ends: half an MP3 must not go on, the file stays where it is converted again.
    postToMainThread([this, job, mediaFile] { conversionToMp3Finished(job, mediaFile); });
}

void JobModel::conversionToMp3Finished(const JobPointer& job, const MediaFilePointer& mediaFile)
{
    mediaFile->setStatus(JobStatusConverted);
    // The service knows a file that it asked for again.
    if (job->status() == JobStatusReprocessing)
        uploadMediaFile(mediaFile, job);
    else
        addMediaFileSegment(mediaFile, job);
}

void JobModel::audioExtractorHandleError(AudioExtractor& /*extractor*/, const Error& error)
{
    MainThread::runAndWait([&] { Log::debug("Not presented: {}", error.localizedDescription); });
}
