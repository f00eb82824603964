// The end of the engine: soon, complete, and whatever hangs.

#include "EngineTest.h"

#include "support/GeneratedMedia.h"
#include "support/ScriptedFfmpeg.h"

#include <algorithm>
#include <chrono>
#include <thread>

using namespace Qt::StringLiterals;

namespace {

using namespace std::chrono_literals;

// Ends the engine, as the end of the program does, and says how long it took.
std::chrono::milliseconds timeToEnd(std::unique_ptr<Engine>& engine)
{
    const auto begin = std::chrono::steady_clock::now();
    engine.reset();
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - begin);
}

// A second for the engine and one for a child that must be killed; the rest is for a busy machine.
constexpr auto soon = 4s;

class EndWorkTest : public EngineTest
{};

TEST_F(EndWorkTest, AnIdleEngineEndsAtOnce)
{
    model().setFinderSleepInterval(3600);
    model().startJobProcessing();
    Waiting::turnMainLoopFor(50ms);
    EXPECT_LT(timeToEnd(engine), soon) << "the finder's sleep is cut short";
}

TEST_F(EndWorkTest, AnEngineThatBusyThreadsWaitForEndsEachTime)
{
    for (int round = 0; round < 40; ++round) {
        restartEngine();
        addJobAt(0, {});
        addJobAt(2, {u"missing.mov"_s}, 2);
        model().startJobProcessing();
        if (round % 2 == 1)
            Waiting::turnMainLoopFor(std::chrono::milliseconds(round / 4));
        EXPECT_LT(timeToEnd(engine), soon);
    }
    engine = nullptr;
}

TEST_F(EndWorkTest, NothingStartsAfterIt)
{
    const auto job = addJobAt(2);
    model().endWork();
    (void)takeCommands();
    EXPECT_FALSE(model().isStatusPollArmed());
    model().startJobProcessing();
    EXPECT_FALSE(model().doFindAndProcessJobs());
    model().setIsCheckingJobStatus(false);
    model().setIsGettingInstructions(false);
    model().checkJobsStatusOnServer();
    model().getInstructions();
    model().uploadLogFile();
    model().foundJobToProces(job);
    EXPECT_EQ(job->status(), 2);
    EXPECT_FALSE(model().isStatusPollArmed());
    EXPECT_TRUE(takeCommands().empty());
    model().endWork(); // Again is harmless.
}

TEST_F(EndWorkTest, AConverterThatIgnoresTheRequestToEndIsEndedAndItsFileStaysToBeConvertedAgain)
{
    ScriptedFfmpeg ffmpeg;
    ffmpeg.ignoresRequestsToEnd().shell(": > \"$folder/reached-hang\"").hangs();
    ffmpeg.putFirstOnPath();
    model().setMaxNumberOfRunningFfmpegProcesses(2);
    const auto converting = addJobAt(4, {u"a.mov"_s}, 1);
    const auto reading = addJobAt(2, {u"b.mov"_s, u"c.mov"_s}, 2);
    model().convertToMP3AndUpload(converting);
    model().extractMediaFilesInfo(reading);
    ASSERT_TRUE(Waiting::until([&] { return ffmpeg.runs().size() == 2; }));
    ASSERT_TRUE(Waiting::until([&] { return ffmpeg.hasReached(u"hang"_s); }));
    EXPECT_LT(timeToEnd(engine), soon);
    EXPECT_EQ(ffmpeg.runningCount(), 0);
    Waiting::turnMainLoopFor(50ms);
    EXPECT_EQ(fileStatuses(*converting), std::vector<int>{5});
    EXPECT_EQ(fileStatuses(*reading), (std::vector<int>{3, 2}));
    EXPECT_EQ(ffmpeg.runs().size(), 2);
}

TEST_F(EndWorkTest, ThreadsThatWaitAtBothGatesAreReleasedWithoutDoingTheirWork)
{
    ScriptedFfmpeg ffmpeg;
    ffmpeg.hangs();
    ffmpeg.putFirstOnPath();
    model().setMaxNumberOfRunningFfmpegProcesses(1);
    model().setMaxNumberOfRunningUploads(1);
    const auto converting = addJobAt(4, {u"a.mov"_s, u"b.mov"_s, u"c.mov"_s}, 1);
    model().convertToMP3AndUpload(converting);
    const auto uploading = addJobAt(8, {u"d.mov"_s, u"e.mov"_s, u"f.mov"_s}, 2);
    for (const auto& file : uploading->mediaFiles()) {
        file->setMp3FilePath(writeFile(file->name() + u".mp3"_s, "sound"));
        model().uploadMediaFile(file, uploading);
    }
    const auto countOf = [](const Job& job, int status) {
        const auto statuses = fileStatuses(job);
        return std::count(statuses.begin(), statuses.end(), status);
    };
    ASSERT_TRUE(Waiting::until([&] { return ffmpeg.runs().size() == 1 && countOf(*uploading, 9) == 1; }));
    EXPECT_LT(timeToEnd(engine), soon);
    EXPECT_EQ(ffmpeg.runningCount(), 0);
    EXPECT_EQ(ffmpeg.runs().size(), 1);
    EXPECT_EQ(countOf(*uploading, 9), 1);
    EXPECT_EQ(countOf(*uploading, 8), 2);
    EXPECT_EQ(countOf(*converting, 4), 2);
}

TEST_F(EndWorkTest, WhatThreadsLeftForTheMainThreadIsDropped)
{
    const auto job = addJobAt(8);
    job->mediaFiles().first()->setMp3FilePath(path(u"gone.mp3"_s));
    model().uploadMediaFile(job->mediaFiles().first(), job);
    // The main loop does not turn meanwhile.
    const auto begin = std::chrono::steady_clock::now();
    while (!log.contains(u"gone.mp3"_s) && std::chrono::steady_clock::now() - begin < 30s)
        std::this_thread::sleep_for(1ms);
    std::this_thread::sleep_for(50ms);
    model().endWork();
    Waiting::turnMainLoopFor(50ms);
    EXPECT_TRUE(engine->stops.empty());
}

class EndOfTransfersTest : public ServiceEngineTest
{};

TEST_F(EndOfTransfersTest, AHangingTransferHoldsNothingUpAndIsNotPresented)
{
    for (const char* endpoint : {"jobdetails.php", "checkstatus.php", "get_instructions.php"})
        service.addOverride(endpoint, {.hang = true});
    model().addJobsObject(realJob({u"a.wav"_s}, 0.3));
    model().startJobProcessing();
    ASSERT_TRUE(Waiting::until([&] { return service.hanging() >= 3; }));
    int presented = 0;
    services().whenPresented = [&](const Error&) { ++presented; };
    EXPECT_LT(timeToEnd(engine), soon);
    EXPECT_EQ(presented, 0);
    EXPECT_TRUE(log.contains(u"Job model, check status failed,  "_s)) << "it is logged";
}

TEST_F(EndOfTransfersTest, AHangingUploadIsTakenUpInTheNextRun)
{
    service.addOverride("test_custupload2.php", {.hang = true});
    model().setMaxNumberOfRunningUploads(1);
    const auto job = realJob({u"a.wav"_s, u"b.wav"_s}, 0.3);
    model().addJobsObject(job);
    model().startJobProcessing();
    ASSERT_TRUE(Waiting::until([&] { return service.hanging() == 1; }));
    model().saveState(path(u"temp"_s));
    EXPECT_LT(timeToEnd(engine), soon);
    service.clearOverrides();
    engine = std::make_unique<Engine>(hosts, log.fileLogger());
    prepareEngine();
    model().loadState(path(u"temp"_s));
    ASSERT_EQ(model().jobs().size(), 1U);
    model().startJobProcessing();
    EXPECT_TRUE(reaches(model().jobs().front(), 17));
}

TEST_F(EndOfTransfersTest, AHangingDownloadHoldsNothingUp)
{
    service.addOverride("miscstuff.php", {.hang = true});
    service.addServerJob("Brown.txt", 1);
    model().startJobProcessing();
    ASSERT_TRUE(Waiting::until([&] { return service.hanging() == 1; }));
    EXPECT_LT(timeToEnd(engine), soon);
}

} // namespace
