// The status poll: what the service says of each deposition and segment.

#include "commands/CheckStatusCommand.h"
#include "commands/MachineUID.h"
#include "engine/JobModel.h"
#include "engine/StatusReply.h"
#include "foundation/Log.h"
#include "foundation/NumberReading.h"
#include "foundation/Text.h"

#include <algorithm>

namespace {

std::chrono::milliseconds milliseconds(double seconds)
{
    return std::chrono::milliseconds(static_cast<std::int64_t>(seconds * 1000.0));
}

bool equalsIgnoringCase(const QString& a, QStringView b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

} // namespace

void JobModel::checkJobsStatusOnServer()
{
    if (m_isEnding)
        return;
    m_statusTimer.start(milliseconds(m_statusCheckTimeInterval));
    if (!m_isCheckingJobStatus) {
        setIsCheckingJobStatus(true);
        const auto machineID = m_isOnlyDownloadJobsSentFromThisMachine
                                   ? std::optional<QString>(MachineUID::machineUniqueID())
                                   : std::nullopt;
        post(CheckStatusCommand::checkStatusCommandWithUser(m_hosts, username(), password(), m_contactID, machineID));
    }
    getInstructions();
}

void JobModel::processCheckJobsStatusOnServerResponse(const QString& response)
{
    Log::info("Server jobs statuses:");
    indexJobs();
    // All depositions first: a segment sees the state that its deposition's record led to.
    for (const StatusReply::Deposition& record : StatusReply::depositions(response)) {
        Log::info("Depo = {}, transcript = {}, status = {}", record.number, record.transcriptName, record.status);
        processStatusForDepoNum(record.number, record.transcriptName, record.status);
    }
    for (const StatusReply::Segment& record : StatusReply::segments(response)) {
        Log::info("Depo = {}, segment = {}, status = {}, duration = {}, score = {}", record.deposition, record.number,
                  record.status, record.duration, record.score);
        processStatusForSegment(record.number, record.deposition, record.status, record.duration, record.score);
    }
    m_isDepoIndexInUse = false;
    m_depoIndex.clear();

    setIsCheckingJobStatus(false);
    const auto all = jobs();
    if (std::none_of(all.begin(), all.end(), [](const auto& job) { return job->status() < JobStatusCompleted; }))
        m_statusTimer.stop();
}

void JobModel::processStatusForDepoNum(int depoNum, const QString& transcriptName, const QString& status)
{
    JobPointer job = findJobWithDepoNum(depoNum);
    if (job) {
        if (job->status() == JobStatusUploaded)
            job->setStatus(JobStatusOnServer);
        job->setServerStatus(status);
    } else {
        job = Job::job();
        job->setName(Text::format("({}) {}", depoNum, transcriptName));
        job->setDepoNum(depoNum);
        job->setServerJob(true);
        job->setStatus(JobStatusOnServer);
        job->setServerStatus(status);
        addJobsObject(job);
    }
    if (job->status() != JobStatusOnServer)
        return;
    // A job of the file before may have been delivered since it was written, to files that nobody knows of now.
    const bool isPerhapsDelivered = status == u"Done" && m_jobsOfFileBefore.contains(job);
    if (status == u"Joined" || isPerhapsDelivered)
        job->setStatus(JobStatusReadyForDownload);
    else if (equalsIgnoringCase(status, u"VOID"))
        removeJobsObject(job);
}

void JobModel::processStatusForSegment(int segment, int depoNum, const QString& status, int /*duration*/, int score)
{
    const JobPointer job = findJobWithDepoNum(depoNum);
    if (!job || job->status() != JobStatusOnServer)
        return;
    const auto scoreValue = score == -1 ? std::nullopt : std::optional<int>(score);
    if (job->serverJob()) {
        addServerSegment(job, segment, status, scoreValue);
        return;
    }
    const auto files = job->mediaFiles();
    if (segment < 1 || segment > files.size())
        return;
    const MediaFilePointer& mediaFile = files.at(segment - 1);
    mediaFile->setScoreValue(scoreValue);
    if (mediaFile->status() == JobStatusReprocessRequested || mediaFile->status() == JobStatusReprocessing)
        return;
    if (equalsIgnoringCase(status, u"Processing_Media_Stereo") || equalsIgnoringCase(status, u"Processing_Media_Mono"))
        requestReprocessing(job, mediaFile, status);
    else {
        mediaFile->setStatus(JobStatusOnServer);
        mediaFile->setServerStatus(status);
    }
}

void JobModel::requestReprocessing(const JobPointer& job, const MediaFilePointer& mediaFile, const QString& status)
{
    mediaFile->setStatus(JobStatusReprocessRequested);
    mediaFile->setServerStatus(status);
    job->setStatus(JobStatusReprocessRequested);
}

void JobModel::addServerSegment(const JobPointer& job, int segment, const QString& status, std::optional<int> score)
{
    // The job takes a segment at its first report alone.
    const MediaFilePointer mediaFile = MediaFile::serverMediaFile(segment);
    mediaFile->setName(Text::format("Segment {}", segment));
    mediaFile->setStatus(JobStatusOnServer);
    mediaFile->setServerStatus(status);
    mediaFile->setScoreValue(score);
    job->addMediaFilesObject(mediaFile);
}

QString JobModel::simulatedCheckStatusResponseNumOfDepos(int numOfDepos, int numOfSegmentsInDepo)
{
    return StatusReply::simulated(numOfDepos, numOfSegmentsInDepo);
}
