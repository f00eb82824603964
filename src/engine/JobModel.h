#pragma once

#include "commands/CUrlCommandResultObserver.h"
#include "engine/CountingGate.h"
#include "engine/SavedState.h"
#include "engine/StoppedWork.h"
#include "engine/UploadGate.h"
#include "foundation/ApplicationServices.h"
#include "foundation/WorkerThreads.h"
#include "media/AudioExtractor.h"
#include "model/Job.h"
#include "settings/ServiceHosts.h"

#include <QObject>
#include <QTimer>

#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <unordered_map>
#include <unordered_set>
#include <vector>

class AddJobSegmentsCommand;
class CUrlCommand;
class CUrlCommandProcessor;
class StateKeeper;
class UploadCommand;

// The engine: owns the jobs, moves each from submission to its delivered files, and keeps the unfinished ones between
// runs. A finder thread looks for a job whose next step is due and hands it to the main thread; reading and converting
// media run on threads of their own behind a gate, uploads behind another; two timers poll the service.
//
// Made on the main thread, where all operations are called and all signals come, unless said otherwise. The services
// are not owned and must outlive it; the command processor is not owned and must live until endWork() has returned, and
// end before this object, which its commands observe. Times are in seconds.
class JobModel : public QObject, public CUrlCommandResultObserver, public AudioExtractorErrorObserver
{
    Q_OBJECT
    Q_PROPERTY(bool hasUncompletedLocalJobs READ hasUncompletedLocalJobs WRITE setHasUncompletedLocalJobs NOTIFY
                   hasUncompletedLocalJobsChanged)
    Q_PROPERTY(bool isCheckingJobStatus READ isCheckingJobStatus WRITE setIsCheckingJobStatus NOTIFY
                   isCheckingJobStatusChanged)
    Q_PROPERTY(bool isGettingInstructions READ isGettingInstructions WRITE setIsGettingInstructions NOTIFY
                   isGettingInstructionsChanged)
    Q_PROPERTY(int maxNumberOfRunningFfmpegProcesses READ maxNumberOfRunningFfmpegProcesses WRITE
                   setMaxNumberOfRunningFfmpegProcesses NOTIFY maxNumberOfRunningFfmpegProcessesChanged)
    Q_PROPERTY(int maxNumberOfRunningUploads READ maxNumberOfRunningUploads WRITE setMaxNumberOfRunningUploads NOTIFY
                   maxNumberOfRunningUploadsChanged)
    Q_PROPERTY(QString tempFilesFolder READ tempFilesFolder WRITE setTempFilesFolder NOTIFY tempFilesFolderChanged)
    Q_PROPERTY(QString deliveryFolder READ deliveryFolder WRITE setDeliveryFolder NOTIFY deliveryFolderChanged)
    Q_PROPERTY(QString username READ username WRITE setUsername NOTIFY usernameChanged)
    Q_PROPERTY(QString password READ password WRITE setPassword NOTIFY passwordChanged)
    Q_PROPERTY(QString contactID READ contactID WRITE setContactID NOTIFY contactIDChanged)
    Q_PROPERTY(double statusCheckTimeInterval READ statusCheckTimeInterval WRITE setStatusCheckTimeInterval NOTIFY
                   statusCheckTimeIntervalChanged)
    Q_PROPERTY(double instructionsCheckTimeInterval READ instructionsCheckTimeInterval WRITE
                   setInstructionsCheckTimeInterval NOTIFY instructionsCheckTimeIntervalChanged)
    Q_PROPERTY(bool isOnlyDownloadJobsSentFromThisMachine READ isOnlyDownloadJobsSentFromThisMachine NOTIFY
                   isOnlyDownloadJobsSentFromThisMachineChanged)
public:
    using JobPointer = std::shared_ptr<Job>;
    using MediaFilePointer = std::shared_ptr<MediaFile>;

    JobModel(ApplicationServices& services, ServiceHosts hosts);
    ~JobModel() override; // endWork()

    // --- Settings and credentials ---
    void setCurlCommandProcessor(CUrlCommandProcessor* processor) { m_curlCommandProcessor = processor; }
    [[nodiscard]] QString tempFilesFolder() const;
    void setTempFilesFolder(const QString& folder);
    [[nodiscard]] QString deliveryFolder() const { return m_deliveryFolder; }
    void setDeliveryFolder(const QString& folder);
    [[nodiscard]] int maxNumberOfRunningFfmpegProcesses() const { return m_ffmpegProcessesGate.maximum(); }
    // Lets one thread that waits for a converter test the new limit.
    void setMaxNumberOfRunningFfmpegProcesses(int number);
    [[nodiscard]] int numberOfRunningFfmpegProcesses() const { return m_ffmpegProcessesGate.count(); }
    [[nodiscard]] int maxNumberOfRunningUploads() const { return m_uploadGate.maximum(); }
    void setMaxNumberOfRunningUploads(int number);
    void setMaxNumberOfRunningUploadss(int number) { setMaxNumberOfRunningUploads(number); }
    [[nodiscard]] int numberOfRunningUploads() const { return m_uploadGate.count(); }
    [[nodiscard]] bool isOnlyDownloadJobsSentFromThisMachine() const { return m_isOnlyDownloadJobsSentFromThisMachine; }
    void setIsOnlyDownloadJobsSentFromThisMachine(bool only);
    [[nodiscard]] QString username() const;
    void setUsername(const QString& username);
    [[nodiscard]] QString password() const;
    void setPassword(const QString& password);
    [[nodiscard]] QString contactID() const { return m_contactID; }
    void setContactID(const QString& contactID);
    [[nodiscard]] double statusCheckTimeInterval() const { return m_statusCheckTimeInterval; }
    void setStatusCheckTimeInterval(double seconds);
    [[nodiscard]] double instructionsCheckTimeInterval() const { return m_instructionsCheckTimeInterval; }
    void setInstructionsCheckTimeInterval(double seconds);
    // How long the finder sleeps when it found nothing.
    void setFinderSleepInterval(double seconds) { m_finderSleepInterval = seconds; }

    // --- The jobs ---
    // In the order in which they were added.
    [[nodiscard]] std::vector<JobPointer> jobs() const;
    // Adds the job, unless it is there, and starts the polls afresh.
    void addJobsObject(const JobPointer& job);
    void removeJobsObject(const JobPointer& job);
    // Null when no job has the number. A job without a number counts as 0.
    [[nodiscard]] JobPointer findJobWithDepoNum(int depoNum) const;
    // Drops every job, local work included, and builds the list anew from the service.
    void resetAndLoadFromServer();

    [[nodiscard]] bool hasUncompletedLocalJobs() const { return m_hasUncompletedLocalJobs; }
    void setHasUncompletedLocalJobs(bool has);
    [[nodiscard]] bool isCheckingJobStatus() const { return m_isCheckingJobStatus; }
    void setIsCheckingJobStatus(bool is);
    [[nodiscard]] bool isGettingInstructions() const { return m_isGettingInstructions; }
    void setIsGettingInstructions(bool is);

    // --- Processing ---
    void startJobProcessing();
    // The finder ends with its current pass; other work runs on.
    void stopJobProcessing();
    [[nodiscard]] bool doFindAndProcessJobs() const { return m_doFindAndProcessJobs; }
    // For the end of the program: stops the polls, gives up the gates, ends the ffmpeg children and waits for the
    // threads, running here what they wait for. Nothing starts again after it.
    void endWork();
    // Every place at the upload gate is held by an upload that got no reply: files that wait for one wait for ever.
    [[nodiscard]] bool isUploadGateBlocked() const { return m_uploadGate.isBlocked(); }

    // --- Trying again ---
    // Of the job something stopped (see jobStopped), or it was delivered with problems, and nobody has tried it again
    // since.
    [[nodiscard]] bool canRetryJob(const JobPointer& job) const;
    // What stopped goes back to its last settled status, as when a saved job is read back, and on from there; the rest
    // of the job is left alone. An upload place that it kept is free again. A delivery is fetched anew, every file of
    // it. False when there was nothing to try.
    bool retryJob(const JobPointer& job);

    // --- Persistence ---
    // The user's unfinished local jobs, in "State_<user name>.archive" in the folder. Returns what went
    // wrong, which is logged too; processing goes on all the same.
    std::optional<Error> saveState(const QString& folder);
    // From now on each change of an unfinished local job is in that file within a second. A file that cannot be written
    // is presented, once.
    void keepState(const QString& folder);
    // Adds the saved jobs and goes on with what was interrupted. Does nothing without a user name. What a file that is
    // missing or damaged lacks comes from the one before it; a damaged one is kept aside and presented.
    void loadState(const QString& folder);
    [[nodiscard]] QString stateFilePath(const QString& folder) const;
    // The converted files of local jobs that are uploaded.
    void deleteTempFiles();

    // --- Steps of a job, called by the finder's dispatch and by each other ---
    void foundJobToProces(const JobPointer& job);
    void submitJobDetails(const JobPointer& job);
    void extractMediaFilesInfo(const JobPointer& job);
    void extractMediaFileInfoFinished(const MediaFilePointer& mediaFile);
    void convertToMP3AndUpload(const JobPointer& job);
    void conversionToMp3Finished(const JobPointer& job, const MediaFilePointer& mediaFile);
    void addMediaFileSegment(const MediaFilePointer& mediaFile, const JobPointer& job);
    void uploadMediaFile(const MediaFilePointer& mediaFile, const JobPointer& job); // any thread
    void uploadTranscript(const JobPointer& job);
    void reprocessJob(const JobPointer& job);
    void downloadJob(const JobPointer& job);
    [[nodiscard]] QString transcriptDestFileNameForJob(const Job& job) const;
    [[nodiscard]] QString mediaDestFileNameForJob(const Job& job, int segment) const;

    // --- The service's replies ---
    void processJobSubmitJobDetailsResponse(const JobPointer& job, const QString& response);
    void processJobAddMediaFileSegmentResponse(const JobPointer& job, const MediaFilePointer& mediaFile,
                                               const QString& response);
    void processJobSetMediaFileFormatResponse(const JobPointer& job, const MediaFilePointer& mediaFile,
                                              const QString& response);
    void processJobUploadedJobFileResponse(const JobPointer& job, const std::shared_ptr<MediaObject>& uploadedObject,
                                           const QString& response);
    void processJobDownloadJobResponse(const JobPointer& job, const QString& response);

    // --- Polls ---
    // Restarts the period; sends a request unless one is outstanding; asks for instructions. Goes on by itself until
    // every job is completed.
    void checkJobsStatusOnServer();
    void processCheckJobsStatusOnServerResponse(const QString& response);
    void processStatusForDepoNum(int depoNum, const QString& transcriptName, const QString& status);
    void processStatusForSegment(int segment, int depoNum, const QString& status, int duration, int score);
    [[nodiscard]] static QString simulatedCheckStatusResponseNumOfDepos(int numOfDepos, int numOfSegmentsInDepo);
    [[nodiscard]] bool isStatusPollArmed() const { return m_statusTimer.isActive(); }
    void getInstructions();
    void processGetInstructionsResponse(const QString& response);
    void uploadLogFile();
    void processDebugUploadResponse(const QString& response, const std::shared_ptr<FileLogger>& object);

    // --- Observers ---
    void curlCommandDone(CUrlCommand& command) override;
    void curlCommandFailed(CUrlCommand& command) override;
    void curlCommandProgress(CUrlCommand& command, double nowDL, double totalDL, double nowUL, double totalUL) override;
    // On the converter's thread. The error goes nowhere: what reaches the user comes from the service's side.
    void audioExtractorHandleError(AudioExtractor& extractor, const Error& error) override;
    [[nodiscard]] static Error prependError(const Error& error, const QString& prefix);

Q_SIGNALS:
    void jobAdded(const std::shared_ptr<Job>& job);
    void jobRemoved(const std::shared_ptr<Job>& job);
    void hasUncompletedLocalJobsChanged();
    void maxNumberOfRunningFfmpegProcessesChanged();
    void maxNumberOfRunningUploadsChanged();
    void tempFilesFolderChanged();
    void deliveryFolderChanged();
    void usernameChanged();
    void passwordChanged();
    void contactIDChanged();
    void statusCheckTimeIntervalChanged();
    void instructionsCheckTimeIntervalChanged();
    void isOnlyDownloadJobsSentFromThisMachineChanged();
    void isCheckingJobStatusChanged();
    void isGettingInstructionsChanged();
    // The job, or one of its files, goes no further by itself: something was refused or failed, for this reason.
    void jobStopped(const std::shared_ptr<Job>& job, const QString& reason);
    // A delivery has ended as the service sees it, but these of its files are missing or broken here.
    void deliveryHadProblems(const std::shared_ptr<Job>& job, const QStringList& problems);
    void jobRetried(const std::shared_ptr<Job>& job);
    // A job is submitted again whose submission was sent and got no answer, or none that was saved. The service may
    // hold it already, under the same transcript name.
    void jobMayBeHeldTwice(const std::shared_ptr<Job>& job);
    // The upload of the log has ended, one way or the other.
    void logFileUploadEnded();

private:
    void jobToProcessFinderThreadProc();
    void setHasUncompletedLocalJobsFromAnotherThread(bool has);
    [[nodiscard]] bool sleepForFinder();
    void extractMediaFileInfoThreadProc(const JobPointer& job);
    bool extractMediaFileInfo(const MediaFilePointer& mediaFile);
    void startConversion(const JobPointer& job, const MediaFilePointer& mediaFile);
    void convertToMP3ThreadProc(const JobPointer& job, const MediaFilePointer& mediaFile);
    bool threadWaitForFfmpegProcessesCondition() { return m_ffmpegProcessesGate.wait(); }
    void threadSignalForFfmpegProcessesCondition() { m_ffmpegProcessesGate.signal(); }
    bool threadWaitForUploadCondition() { return m_uploadGate.wait(); }
    void threadSignalForUploadCondition() { m_uploadGate.signal(); }
    void runExtractor(const MediaFilePointer& mediaFile, const std::function<void(AudioExtractor&)>& work);
    void uploadMediaFileThreadProc(const JobPointer& job, const MediaFilePointer& mediaFile);
    // Returns what the user is to be told.
    std::vector<Error> putDamagedAside(const QString& path, const SavedState::Contents& saved);
    void continueInterruptedWork(const JobPointer& job);
    void restartSettledFiles(const JobPointer& job);
    void indexJobs();
    void requestReprocessing(const JobPointer& job, const MediaFilePointer& mediaFile, const QString& status);
    void addServerSegment(const JobPointer& job, int segment, const QString& status, std::optional<int> score);
    void removeFromDepoIndex(const JobPointer& job);
    [[nodiscard]] JobPointer searchJobWithDepoNum(int depoNum) const;
    [[nodiscard]] QString failurePrefix(const CUrlCommand& command) const;
    // Notes what stopped. Null where the command belongs to no job, or nothing waits for it.
    [[nodiscard]] JobPointer jobStoppedByFailureOf(const CUrlCommand& command);
    // Dropped when the engine has ended before the main thread comes to it.
    void postToMainThread(std::function<void()> work);
    void post(const std::shared_ptr<CUrlCommand>& command);
    // The same, when what the jobs say now is on disk.
    void postWhenSaved(const std::shared_ptr<CUrlCommand>& command);
    void presentError(const QString& description);
    void presentErrorAndStop(const JobPointer& job, const QString& description);
    void presentUploadError(const JobPointer& job, const std::shared_ptr<MediaObject>& uploadedObject,
                            const QString& response);
    [[nodiscard]] StoppedWork& stoppedWorkOf(const JobPointer& job);
    void fileStopped(const JobPointer& job, const MediaFilePointer& mediaFile, bool holdsUploadPlace);
    // A file that stopped is under way again without the user's doing: the service asked for it once more.
    void fileGoesOn(const JobPointer& job, const MediaFilePointer& mediaFile);
    void retrySubmission(const JobPointer& job, bool mayBeSubmitted);
    void retryFile(const JobPointer& job, const StoppedWork::File& file);
    void tellOfPerhapsSubmittedJob(const JobPointer& job);
    void finishUpload(const JobPointer& job, const std::shared_ptr<MediaObject>& uploadedObject,
                      const QString& response);

    ApplicationServices& m_services;
    const ServiceHosts m_hosts;
    CUrlCommandProcessor* m_curlCommandProcessor = nullptr;

    // Of the main thread alone.
    QString m_deliveryFolder;
    QString m_contactID;
    bool m_isOnlyDownloadJobsSentFromThisMachine = false;
    bool m_isCheckingJobStatus = false;
    bool m_isGettingInstructions = false;
    bool m_hasUncompletedLocalJobs = false;
    double m_statusCheckTimeInterval = 60.0;
    double m_instructionsCheckTimeInterval = 60.0;
    QTimer m_statusTimer;
    QTimer m_instructionsTimer;
    // While a status reply is applied: its jobs by number, so that thousands of records do not each search all jobs.
    std::unordered_map<int, JobPointer> m_depoIndex;
    bool m_isDepoIndexInUse = false;
    std::unordered_map<JobPointer, StoppedWork> m_stoppedWork;
    StoppedWork m_droppedWork; // of jobs that are in the list no more
    // Read from the file before the newest: the service may be further with them than they say.
    std::unordered_set<JobPointer> m_jobsOfFileBefore;

    std::atomic<double> m_finderSleepInterval{0.5};
    std::atomic<bool> m_doFindAndProcessJobs{false};
    std::atomic<bool> m_isEnding{false};
    const std::shared_ptr<const bool> m_life = std::make_shared<const bool>(true);
    CountingGate m_ffmpegProcessesGate;
    UploadGate m_uploadGate;

    // The set is changed on the main thread alone; the lock is for the finder, which reads it.
    mutable std::mutex m_jobsMutex;
    std::vector<JobPointer> m_jobs;
    std::unordered_set<const Job*> m_jobSet;

    mutable std::mutex m_workMutex; // guards the members below, which threads read
    std::condition_variable m_finderWake;
    QString m_tempFilesFolder;
    QString m_username;
    QString m_password;
    std::set<std::shared_ptr<AudioExtractor>> m_runningExtractors;

    std::unique_ptr<StateKeeper> m_stateKeeper;

    WorkerThreads m_threads; // last: its threads use all the others
};
