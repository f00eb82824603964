// The set of jobs, starting and stopping, the saved state and the temporary files.

#include "EngineTest.h"

#include "commands/CheckStatusCommand.h"
#include "commands/GetInstructionsCommand.h"
#include "commands/SubmitJobDetailsCommand.h"
#include "commands/UploadCommand.h"
#include "engine/SavedState.h"

#include <QDir>
#include <QFileInfo>

#include <chrono>

using namespace Qt::StringLiterals;

namespace {

class JobStoreTest : public EngineTest
{
protected:
    const QString folder = path(u"temp"_s);

    void save(const std::vector<std::shared_ptr<Job>>& jobs)
    {
        ASSERT_FALSE(SavedState::write(model().stateFilePath(folder), jobs));
    }
    std::shared_ptr<Job> newJobAt(int status, int depoNum)
    {
        auto job = jobOf({QString::number(depoNum) + u".mov"_s}, QString::number(depoNum) + u".txt"_s);
        job->setDepoNum(depoNum);
        job->mediaFiles().first()->setStatus(status);
        job->setStatus(status);
        return job;
    }
    std::vector<int> depoNums()
    {
        std::vector<int> numbers;
        for (const auto& job : model().jobs())
            numbers.push_back(job->depoNum().value_or(0));
        return numbers;
    }
};

TEST_F(JobStoreTest, AnEngineBeginsWithNothingAndPollsEveryMinute)
{
    RecordingServices nobody(nullptr);
    const JobModel fresh(nobody, hosts);
    EXPECT_TRUE(fresh.jobs().empty());
    EXPECT_EQ(fresh.statusCheckTimeInterval(), 60.0);
    EXPECT_EQ(fresh.instructionsCheckTimeInterval(), 60.0);
    EXPECT_EQ(fresh.numberOfRunningFfmpegProcesses(), 0);
    EXPECT_EQ(fresh.numberOfRunningUploads(), 0);
    EXPECT_FALSE(fresh.doFindAndProcessJobs());
    EXPECT_FALSE(fresh.isCheckingJobStatus());
    EXPECT_FALSE(fresh.isGettingInstructions());
    EXPECT_FALSE(fresh.hasUncompletedLocalJobs());
    EXPECT_FALSE(fresh.isStatusPollArmed());
}

TEST_F(JobStoreTest, AddingAndRemovingAJobIsAnnounced)
{
    QStringList said;
    const QObject scope; // the connection's end, before what it writes to goes
    QObject::connect(&model(), &JobModel::jobAdded, &scope,
                     [&](const auto& job) { said.append(u"+"_s + job->name()); });
    QObject::connect(&model(), &JobModel::jobRemoved, &scope,
                     [&](const auto& job) { said.append(u"-"_s + job->name()); });
    const auto job = jobOf({}, u"a.txt"_s);
    model().addJobsObject(job);
    model().addJobsObject(job);
    EXPECT_EQ(model().jobs().size(), 1U) << "a set holds a job once";
    model().removeJobsObject(model().jobs().front());
    model().removeJobsObject(job);
    EXPECT_TRUE(model().jobs().empty());
    EXPECT_EQ(said, QStringList({u"+a.txt"_s, u"-a.txt"_s}));
}

TEST_F(JobStoreTest, AddingAJobStartsThePollsAfresh)
{
    model().addJobsObject(jobOf({}));
    EXPECT_TRUE(model().isStatusPollArmed());
    EXPECT_TRUE(model().isCheckingJobStatus());
    EXPECT_TRUE(model().isGettingInstructions());
    const auto commands = takeCommands();
    ASSERT_EQ(commands.size(), 2U);
    EXPECT_TRUE(dynamic_cast<CheckStatusCommand*>(commands[0].get()));
    EXPECT_TRUE(dynamic_cast<GetInstructionsCommand*>(commands[1].get()));
    model().addJobsObject(jobOf({}));
    EXPECT_TRUE(takeCommands().empty()) << "both requests are outstanding";
}

TEST_F(JobStoreTest, RemovingAJobDoesNothingElse)
{
    const auto job = addJobAt(11);
    (void)takeCommands();
    model().removeJobsObject(job);
    EXPECT_TRUE(takeCommands().empty());
    EXPECT_EQ(job->status(), 11);
}

TEST_F(JobStoreTest, AJobIsFoundByItsNumber)
{
    EXPECT_EQ(model().findJobWithDepoNum(883), nullptr);
    const auto first = addJobAt(11, {}, 883);
    const auto other = addJobAt(11, {}, 884);
    const auto twin = addJobAt(11, {}, 883);
    const auto numberless = jobOf({});
    model().addJobsObject(numberless);
    EXPECT_EQ(model().findJobWithDepoNum(883), first) << "the first in the order of the set";
    EXPECT_EQ(model().findJobWithDepoNum(884), other);
    EXPECT_EQ(model().findJobWithDepoNum(0), numberless);
    EXPECT_EQ(model().findJobWithDepoNum(885), nullptr);
    model().removeJobsObject(first);
    EXPECT_EQ(model().findJobWithDepoNum(883), twin);
}

TEST_F(JobStoreTest, AResetDropsEveryJobAndAsksTheService)
{
    addJobAt(5, {u"a.mov"_s}, 1);
    addJobAt(11, {}, 2);
    model().setIsCheckingJobStatus(false);
    (void)takeCommands();
    int removed = 0;
    const QObject scope; // the connection's end, before what it writes to goes
    QObject::connect(&model(), &JobModel::jobRemoved, &scope, [&] { ++removed; });
    model().resetAndLoadFromServer();
    EXPECT_TRUE(model().jobs().empty());
    EXPECT_EQ(removed, 2);
    EXPECT_EQ(takeCommandsOf<CheckStatusCommand>().size(), 1U);
}

TEST_F(JobStoreTest, AResetOfNoJobsOnlyAsksTheService)
{
    int removed = 0;
    const QObject scope; // the connection's end, before what it writes to goes
    QObject::connect(&model(), &JobModel::jobRemoved, &scope, [&] { ++removed; });
    model().resetAndLoadFromServer();
    EXPECT_EQ(removed, 0);
    EXPECT_EQ(takeCommandsOf<CheckStatusCommand>().size(), 1U);
}

TEST_F(JobStoreTest, EachLimitIsSetByItsSetters)
{
    model().setMaxNumberOfRunningFfmpegProcesses(7);
    EXPECT_EQ(model().maxNumberOfRunningFfmpegProcesses(), 7);
    model().setMaxNumberOfRunningUploads(5);
    EXPECT_EQ(model().maxNumberOfRunningUploads(), 5);
    model().setMaxNumberOfRunningUploadss(6);
    EXPECT_EQ(model().maxNumberOfRunningUploads(), 6);
}

TEST_F(JobStoreTest, EverySettingIsAnnouncedWhenItIsSet)
{
    const auto announces = [&](auto signal, const std::function<void()>& set) {
        int count = 0;
        const auto connection = QObject::connect(&model(), signal, &model(), [&] { ++count; });
        set();
        QObject::disconnect(connection);
        return count == 1;
    };
    EXPECT_TRUE(announces(&JobModel::maxNumberOfRunningFfmpegProcessesChanged,
                          [&] { model().setMaxNumberOfRunningFfmpegProcesses(3); }));
    EXPECT_TRUE(
        announces(&JobModel::maxNumberOfRunningUploadsChanged, [&] { model().setMaxNumberOfRunningUploads(3); }));
    EXPECT_TRUE(announces(&JobModel::tempFilesFolderChanged, [&] { model().setTempFilesFolder(u"/t"_s); }));
    EXPECT_TRUE(announces(&JobModel::deliveryFolderChanged, [&] { model().setDeliveryFolder(u"/d"_s); }));
    EXPECT_TRUE(announces(&JobModel::usernameChanged, [&] { model().setUsername(u"u"_s); }));
    EXPECT_TRUE(announces(&JobModel::passwordChanged, [&] { model().setPassword(u"p"_s); }));
    EXPECT_TRUE(announces(&JobModel::contactIDChanged, [&] { model().setContactID(u"c"_s); }));
    EXPECT_TRUE(announces(&JobModel::statusCheckTimeIntervalChanged, [&] { model().setStatusCheckTimeInterval(9); }));
    EXPECT_TRUE(announces(&JobModel::instructionsCheckTimeIntervalChanged,
                          [&] { model().setInstructionsCheckTimeInterval(8); }));
    EXPECT_TRUE(announces(&JobModel::isOnlyDownloadJobsSentFromThisMachineChanged,
                          [&] { model().setIsOnlyDownloadJobsSentFromThisMachine(true); }));
    EXPECT_TRUE(
        announces(&JobModel::hasUncompletedLocalJobsChanged, [&] { model().setHasUncompletedLocalJobs(true); }));
    EXPECT_TRUE(announces(&JobModel::isCheckingJobStatusChanged, [&] { model().setIsCheckingJobStatus(true); }));
    EXPECT_TRUE(announces(&JobModel::isGettingInstructionsChanged, [&] { model().setIsGettingInstructions(true); }));
    EXPECT_EQ(model().tempFilesFolder(), u"/t");
    EXPECT_EQ(model().deliveryFolder(), u"/d");
    EXPECT_EQ(model().username(), u"u");
    EXPECT_EQ(model().password(), u"p");
    EXPECT_EQ(model().contactID(), u"c");
    EXPECT_EQ(model().statusCheckTimeInterval(), 9);
    EXPECT_EQ(model().instructionsCheckTimeInterval(), 8);
}

TEST_F(JobStoreTest, StartingProcessingFindsJobsAndAsksTheService)
{
    addJobAt(0);
    model().setIsCheckingJobStatus(false);
    (void)takeCommands();
    model().startJobProcessing();
    EXPECT_TRUE(model().doFindAndProcessJobs());
    std::vector<std::shared_ptr<CUrlCommand>> commands;
    ASSERT_TRUE(Waiting::until([&] {
        for (auto& command : takeCommands())
            commands.push_back(command);
        return commands.size() == 2;
    }));
    EXPECT_TRUE(dynamic_cast<CheckStatusCommand*>(commands[0].get()));
    EXPECT_TRUE(dynamic_cast<SubmitJobDetailsCommand*>(commands[1].get()));
}

TEST_F(JobStoreTest, StoppedProcessingFindsNothingMore)
{
    model().startJobProcessing();
    ASSERT_TRUE(Waiting::until([&] { return log.contains(u"[finder]"_s) || model().doFindAndProcessJobs(); }));
    model().stopJobProcessing();
    EXPECT_FALSE(model().doFindAndProcessJobs());
    Waiting::turnMainLoopFor(std::chrono::milliseconds(50));
    (void)takeCommands();
    const auto job = addJobAt(0);
    Waiting::turnMainLoopFor(std::chrono::milliseconds(100));
    EXPECT_EQ(job->status(), 0);
    EXPECT_TRUE(takeCommandsOf<SubmitJobDetailsCommand>().empty());
}

// The flag is set again before the old finder, asleep, could see it cleared. More frequent scanning is harmless.
TEST_F(JobStoreTest, SavingWhileProcessingRunsLeavesTwoFinders)
{
    model().setFinderSleepInterval(1);
    int passes = 0;
    const QObject scope; // the connection's end, before what it writes to goes
    QObject::connect(&model(), &JobModel::hasUncompletedLocalJobsChanged, &scope, [&] { ++passes; });
    model().startJobProcessing();
    ASSERT_TRUE(Waiting::until([&] { return passes == 1; }));
    model().saveState(folder);
    EXPECT_TRUE(model().doFindAndProcessJobs());
    // The new finder's first pass, then the second passes of both. One finder alone would need a second more.
    const auto begin = std::chrono::steady_clock::now();
    ASSERT_TRUE(Waiting::until([&] { return passes == 4; }));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(1900));
}

TEST_F(JobStoreTest, SavingAndLoadingLeaveStoppedProcessingStopped)
{
    model().saveState(folder);
    EXPECT_FALSE(model().doFindAndProcessJobs());
    model().loadState(folder);
    EXPECT_FALSE(model().doFindAndProcessJobs());
    EXPECT_TRUE(QFileInfo::exists(folder + u"/State_demo.archive"_s));
}

TEST_F(JobStoreTest, LoadingWhileProcessingRunsLeavesItRunning)
{
    model().startJobProcessing();
    model().loadState(folder);
    EXPECT_TRUE(model().doFindAndProcessJobs());
}

TEST_F(JobStoreTest, LoadingWithoutAUserNameLoadsNothingAndLeavesProcessingAsItWas)
{
    model().setUsername(u""_s);
    save({newJobAt(2, 1)});
    for (const bool isRunning : {false, true}) {
        if (isRunning)
            model().startJobProcessing();
        model().loadState(folder);
        EXPECT_TRUE(model().jobs().empty());
        EXPECT_EQ(model().doFindAndProcessJobs(), isRunning);
    }
}

TEST_F(JobStoreTest, SavingWithoutAUserNameLeavesItEmptyInTheFileName)
{
    model().setUsername({});
    addJobAt(2);
    model().saveState(folder);
    EXPECT_TRUE(QFileInfo::exists(folder + u"/State_.archive"_s));
}

TEST_F(JobStoreTest, ASaveThatFailsIsLoggedAndNothingIsPresented)
{
    const QString inTheWay = writeFile(u"occupied"_s, "x");
    addJobAt(2);
    EXPECT_TRUE(model().saveState(inTheWay));
    EXPECT_TRUE(log.contains(u"Unable to save the jobs: "_s));
    EXPECT_TRUE(errorTexts().isEmpty());
}

TEST_F(JobStoreTest, SavedJobsThatCannotBeReadAreKeptAsideAndTheUserIsTold)
{
    [[maybe_unused]] const QString written = writeFile(u"temp/State_demo.archive"_s, "garbage");
    model().loadState(folder);
    EXPECT_TRUE(model().jobs().empty());
    ASSERT_EQ(errorTexts().size(), 1);
    EXPECT_EQ(services().errors[0].domain, ErrorDomain::Platform);
    EXPECT_FALSE(model().saveState(folder)) << "saving again overwrites nothing";
    EXPECT_EQ(QDir(folder).entryList({u"*.unreadable *"_s}).size(), 1);
}

TEST_F(JobStoreTest, EachUserHasJobsOfTheirOwn)
{
    model().setUsername(u"ann"_s);
    addJobAt(2, {u"a.mov"_s}, 1);
    model().saveState(folder);
    restartEngine();
    model().setUsername(u"bob/../ann"_s);
    model().loadState(folder);
    EXPECT_TRUE(model().jobs().empty());
    addJobAt(2, {u"b.mov"_s}, 2);
    model().saveState(folder);
    restartEngine();
    model().setUsername(u"ann"_s);
    model().loadState(folder);
    EXPECT_EQ(depoNums(), std::vector<int>{1});
    restartEngine();
    model().setUsername(u"bob/../ann"_s);
    model().loadState(folder);
    EXPECT_EQ(depoNums(), std::vector<int>{2});
}

TEST_F(JobStoreTest, DownloadedJobsAndTheServersOwnAreAbsentAfterSavingAndLoading)
{
    addJobAt(16, {}, 16);
    addJobAt(17, {}, 17);
    addJobAt(11, {}, 11);
    addJobAt(11, {}, 12)->setServerJob(true);
    model().saveState(folder);
    restartEngine();
    model().loadState(folder);
    EXPECT_EQ(depoNums(), std::vector<int>{11});
}

TEST_F(JobStoreTest, LoadingAddsTheJobsWithTheirPollsAndKeepsThoseThatAreThere)
{
    save({newJobAt(2, 1), newJobAt(11, 2)});
    addJobAt(2, {u"x.mov"_s}, 3);
    model().setIsCheckingJobStatus(false);
    (void)takeCommands();
    int added = 0;
    const QObject scope; // the connection's end, before what it writes to goes
    QObject::connect(&model(), &JobModel::jobAdded, &scope, [&] { ++added; });
    model().loadState(folder);
    EXPECT_EQ(depoNums(), (std::vector<int>{3, 1, 2}));
    EXPECT_EQ(added, 2);
    EXPECT_EQ(takeCommandsOf<CheckStatusCommand>().size(), 1U);
}

TEST_F(JobStoreTest, AFileSavedWhileUploadingIsUploadedAtOnceAfterLoading)
{
    const QString mp3 = writeFile(u"temp/883/clip.mov.mp3"_s, "sound");
    const auto job = addJobAt(9);
    job->mediaFiles().first()->setMp3FilePath(mp3);
    model().saveState(folder);
    restartEngine();
    model().loadState(folder);
    const auto loaded = model().findJobWithDepoNum(883);
    ASSERT_TRUE(loaded);
    std::vector<std::shared_ptr<UploadCommand>> uploads;
    ASSERT_TRUE(Waiting::until([&] {
        for (const auto& upload : takeCommandsOf<UploadCommand>())
            uploads.push_back(upload);
        return !uploads.empty();
    }));
    EXPECT_EQ(uploads.front()->uploadedObject(), loaded->mediaFiles().first());
    EXPECT_EQ(fileStatuses(*loaded), std::vector<int>{9});
    EXPECT_EQ(loaded->status(), 9);
}

TEST_F(JobStoreTest, LoadingRestartsTheSettledFilesOfJobsThatAreThereToo)
{
    const auto converted = addJobAt(6, {u"a.mov"_s}, 1);
    const auto accepted = addJobAt(8, {u"b.mov"_s}, 2);
    const auto uploaded = addJobAt(10, {u"c.mov"_s}, 3);
    for (const auto& job : {accepted, uploaded})
        job->mediaFiles().first()->setMp3FilePath(writeFile(u"sound.mp3"_s, "sound"));
    uploaded->mediaFiles().first()->setStatus(8);
    uploaded->setStatus(10);
    model().loadState(folder);
    EXPECT_TRUE(Waiting::until([&] { return fileStatuses(*accepted) == std::vector<int>{9}; }));
    EXPECT_TRUE(Waiting::until([&] { return fileStatuses(*converted) == std::vector<int>{7}; })) << "converted again";
    EXPECT_EQ(fileStatuses(*uploaded), std::vector<int>{8});
}

TEST_F(JobStoreTest, TheConvertedFilesOfUploadedLocalJobsAreDeletedAndTheirFoldersKept)
{
    const auto mp3Of = [&](int depoNum, int status) {
        const auto job = addJobAt(status, {u"clip.mov"_s}, depoNum);
        const QString mp3 = writeFile(u"temp/"_s + QString::number(depoNum) + u"/clip.mov.mp3"_s, "sound");
        job->mediaFiles().first()->setMp3FilePath(mp3);
        return mp3;
    };
    const QString uploading = mp3Of(1, 9);
    const QString uploaded = mp3Of(2, 10);
    const QString completed = mp3Of(3, 17);
    const QString servers = mp3Of(4, 11);
    model().findJobWithDepoNum(4)->setServerJob(true);
    addJobAt(10, {u"gone.mov"_s}, 5)->mediaFiles().first()->setMp3FilePath(path(u"temp/5/gone.mp3"_s));
    addJobAt(10, {u"never.mov"_s}, 6);
    model().deleteTempFiles();
    EXPECT_TRUE(QFileInfo::exists(uploading));
    EXPECT_FALSE(QFileInfo::exists(uploaded));
    EXPECT_FALSE(QFileInfo::exists(completed));
    EXPECT_TRUE(QFileInfo::exists(servers));
    EXPECT_TRUE(QFileInfo(path(u"temp/2"_s)).isDir());
    EXPECT_TRUE(errorTexts().isEmpty());
}

} // namespace
