#include "engine/JobModel.h"

#include "commands/CUrlCommandProcessor.h"
#include "engine/StateKeeper.h"
#include "foundation/Log.h"
#include "foundation/MainThread.h"
#include "foundation/NumberReading.h"

#include <algorithm>

JobModel::JobModel(ApplicationServices& services, ServiceHosts hosts) : m_services(services), m_hosts(std::move(hosts))
{
    m_statusTimer.setSingleShot(true);
    m_instructionsTimer.setSingleShot(true);
    connect(&m_statusTimer, &QTimer::timeout, this, &JobModel::checkJobsStatusOnServer);
    connect(&m_instructionsTimer, &QTimer::timeout, this, &JobModel::getInstructions);
}

JobModel::~JobModel()
{
    endWork();
    m_stateKeeper.reset();
}

QString JobModel::tempFilesFolder() const
{
    const std::scoped_lock lock(m_workMutex);
    return m_tempFilesFolder;
}

void JobModel::setTempFilesFolder(const QString& folder)
{
    {
        const std::scoped_lock lock(m_workMutex);
        m_tempFilesFolder = folder;
    }
    Q_EMIT tempFilesFolderChanged();
}

QString JobModel::username() const
{
    const std::scoped_lock lock(m_workMutex);
    return m_username;
}

void JobModel::setUsername(const QString& username)
{
    {
        const std::scoped_lock lock(m_workMutex);
        m_username = username;
    }
    Q_EMIT usernameChanged();
}

QString JobModel::password() const
{
    const std::scoped_lock lock(m_workMutex);
    return m_password;
}

void JobModel::setPassword(const QString& password)
{
    {
        const std::scoped_lock lock(m_workMutex);
        m_password = password;
    }
    Q_EMIT passwordChanged();
}

void JobModel::setDeliveryFolder(const QString& folder)
{
    m_deliveryFolder = folder;
    Q_EMIT deliveryFolderChanged();
}

void JobModel::setMaxNumberOfRunningFfmpegProcesses(int number)
{
    m_ffmpegProcessesGate.setMaximum(number);
    Q_EMIT maxNumberOfRunningFfmpegProcessesChanged();
}

void JobModel::setMaxNumberOfRunningUploads(int number)
{
    m_uploadGate.setMaximum(number);
    Q_EMIT maxNumberOfRunningUploadsChanged();
}

void JobModel::setIsOnlyDownloadJobsSentFromThisMachine(bool only)
{
    m_isOnlyDownloadJobsSentFromThisMachine = only;
    Q_EMIT isOnlyDownloadJobsSentFromThisMachineChanged();
}

void JobModel::setContactID(const QString& contactID)
{
    m_contactID = contactID;
    Q_EMIT contactIDChanged();
}

void JobModel::setStatusCheckTimeInterval(double seconds)
{
    m_statusCheckTimeInterval = seconds;
    Q_EMIT statusCheckTimeIntervalChanged();
}

void JobModel::setInstructionsCheckTimeInterval(double seconds)
{
    m_instructionsCheckTimeInterval = seconds;
    Q_EMIT instructionsCheckTimeIntervalChanged();
}

std::vector<JobModel::JobPointer> JobModel::jobs() const
{
    const std::scoped_lock lock(m_jobsMutex);
    return m_jobs;
}

void JobModel::addJobsObject(const JobPointer& job)
{
    bool isNew = false;
    {
        const std::scoped_lock lock(m_jobsMutex);
        isNew = m_jobSet.insert(job.get()).second;
        if (isNew)
            m_jobs.push_back(job);
    }
    if (isNew) {
        if (m_isDepoIndexInUse)
            m_depoIndex.try_emplace(NumberReading::valueOrZero(job->depoNum()), job);
        Q_EMIT jobAdded(job);
    }
    checkJobsStatusOnServer();
}

void JobModel::removeJobsObject(const JobPointer& job)
{
    const JobPointer removed = job; // The argument may be the set's own.
    {
        const std::scoped_lock lock(m_jobsMutex);
        if (m_jobSet.erase(removed.get()) == 0)
            return;
        std::erase(m_jobs, removed);
    }
    if (m_isDepoIndexInUse)
        removeFromDepoIndex(removed);
    m_stoppedWork.erase(removed);
    m_jobsOfFileBefore.erase(removed);
    Q_EMIT jobRemoved(removed);
}

void JobModel::removeFromDepoIndex(const JobPointer& job)
{
    const auto entry = m_depoIndex.find(NumberReading::valueOrZero(job->depoNum()));
    if (entry == m_depoIndex.end() || entry->second != job)
        return;
    // Another job may have the same number.
    const int depoNum = entry->first;
    m_depoIndex.erase(entry);
    if (const JobPointer other = searchJobWithDepoNum(depoNum))
        m_depoIndex.emplace(depoNum, other);
}

void JobModel::indexJobs()
{
    m_depoIndex.clear();
    for (const JobPointer& job : jobs())
        m_depoIndex.try_emplace(NumberReading::valueOrZero(job->depoNum()), job);
    m_isDepoIndexInUse = true;
}

JobModel::JobPointer JobModel::findJobWithDepoNum(int depoNum) const
{
    if (!m_isDepoIndexInUse)
        return searchJobWithDepoNum(depoNum);
    const auto found = m_depoIndex.find(depoNum);
    return found == m_depoIndex.end() ? nullptr : found->second;
}

JobModel::JobPointer JobModel::searchJobWithDepoNum(int depoNum) const
{
    const std::scoped_lock lock(m_jobsMutex);
    const auto found = std::find_if(m_jobs.begin(), m_jobs.end(), [=](const JobPointer& job) {
        return NumberReading::valueOrZero(job->depoNum()) == depoNum;
    });
    return found == m_jobs.end() ? nullptr : *found;
}

void JobModel::resetAndLoadFromServer()
{
    for (const JobPointer& job : jobs())
        removeJobsObject(job);
    checkJobsStatusOnServer();
}

void JobModel::setHasUncompletedLocalJobs(bool has)
{
    m_hasUncompletedLocalJobs = has;
    Q_EMIT hasUncompletedLocalJobsChanged();
}

void JobModel::setIsCheckingJobStatus(bool is)
{
    m_isCheckingJobStatus = is;
    Q_EMIT isCheckingJobStatusChanged();
}

void JobModel::setIsGettingInstructions(bool is)
{
    m_isGettingInstructions = is;
    Q_EMIT isGettingInstructionsChanged();
}

void JobModel::startJobProcessing()
{
    if (m_isEnding)
        return;
    m_doFindAndProcessJobs = true;
    m_threads.start("finder", [this] { jobToProcessFinderThreadProc(); });
    checkJobsStatusOnServer();
}

void JobModel::stopJobProcessing()
{
    m_doFindAndProcessJobs = false;
}

void JobModel::endWork()
{
    m_isEnding = true;
    m_doFindAndProcessJobs = false;
    m_statusTimer.stop();
    m_instructionsTimer.stop();
    m_ffmpegProcessesGate.giveUp();
    m_uploadGate.giveUp();
    {
        const std::scoped_lock lock(m_workMutex);
        for (const auto& extractor : m_runningExtractors)
            extractor->terminate();
    }
    m_finderWake.notify_all();
    while (!m_threads.waitUntilAllEnded(std::chrono::seconds(1)))
        Log::warning("Waiting for {} threads of the engine", m_threads.count());
}

void JobModel::postToMainThread(std::function<void()> work)
{
    MainThread::post([this, life = std::weak_ptr<const bool>(m_life), work = std::move(work)] {
        if (!life.expired() && !m_isEnding)
            work();
    });
}

void JobModel::post(const std::shared_ptr<CUrlCommand>& command)
{
    command->setObserver(this);
    if (m_curlCommandProcessor && !m_isEnding)
        m_curlCommandProcessor->postCommand(command);
}

void JobModel::postWhenSaved(const std::shared_ptr<CUrlCommand>& command)
{
    if (m_stateKeeper)
        m_stateKeeper->whenSaved([this, command] { post(command); });
    else
        post(command);
}

void JobModel::presentError(const QString& description)
{
    m_services.presentError({ErrorDomain::SyncBase, 0, description});
}

void JobModel::presentErrorAndStop(const JobPointer& job, const QString& description)
{
    presentError(description);
    Q_EMIT jobStopped(job, description);
}
