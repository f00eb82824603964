// The finder, reading and converting media, and the converter's gate.

#include "EngineTest.h"

#include "commands/AddJobSegmentsCommand.h"
#include "commands/DownloadJobFilesCommand.h"
#include "commands/SubmitJobDetailsCommand.h"
#include "commands/UploadCommand.h"
#include "engine/Mp3Location.h"
#include "foundation/MainThread.h"
#include "support/ScriptedFfmpeg.h"

#include <QFileInfo>

#include <thread>

using namespace Qt::StringLiterals;

namespace {

class FinderTest : public EngineTest
{
protected:
    std::vector<std::shared_ptr<SubmitJobDetailsCommand>> submissionsUntil(std::size_t number)
    {
        std::vector<std::shared_ptr<SubmitJobDetailsCommand>> found;
        EXPECT_TRUE(Waiting::until([&] {
            for (const auto& command : takeCommandsOf<SubmitJobDetailsCommand>())
                found.push_back(command);
            return found.size() >= number;
        }));
        return found;
    }
};

TEST_F(FinderTest, TakesTheLastDueJobOfEachPass)
{
    const auto first = addJobAt(0, {u"a.mov"_s}, 1);
    const auto second = addJobAt(0, {u"b.mov"_s}, 2);
    addJobAt(11, {u"x.mov"_s}, 3);
    const auto last = addJobAt(0, {u"c.mov"_s}, 4);
    model().startJobProcessing();
    const auto submissions = submissionsUntil(3);
    ASSERT_EQ(submissions.size(), 3U);
    EXPECT_EQ(submissions[0]->job(), last);
    EXPECT_EQ(submissions[1]->job(), second);
    EXPECT_EQ(submissions[2]->job(), first);
}

// Submitting changes only the files of a job, and it has none.
TEST_F(FinderTest, SubmitsAJobWithoutMediaAgainInEveryPass)
{
    const auto job = addJobAt(0, {});
    model().startJobProcessing();
    const auto submissions = submissionsUntil(5);
    EXPECT_EQ(submissions.back()->job(), job);
    EXPECT_EQ(job->status(), 0);
}

TEST_F(FinderTest, LeavesAJobWithoutMediaAtReadingOrConvertingForEver)
{
    for (const auto& [due, stays] : {std::pair(2, 3), std::pair(4, 5)}) {
        restartEngine();
        const auto job = addJobAt(due, {});
        model().startJobProcessing();
        EXPECT_TRUE(Waiting::until([&] { return job->status() == stays && model().hasUncompletedLocalJobs(); }));
        Waiting::turnMainLoopFor(std::chrono::milliseconds(60));
        EXPECT_EQ(job->status(), stays);
    }
}

TEST_F(FinderTest, KnowsWhichJobsAreUncompleted)
{
    const auto isUncompleted = [&](int status) {
        restartEngine();
        addJobAt(status);
        std::optional<bool> said; // by the first pass, before the job's step is taken
        const QObject scope;      // the connection's end, before what it writes to goes
        QObject::connect(&model(), &JobModel::hasUncompletedLocalJobsChanged, &scope, [&] {
            EXPECT_TRUE(MainThread::isCurrent());
            if (!said)
                said = model().hasUncompletedLocalJobs();
        });
        model().setHasUncompletedLocalJobs(status % 2 == 0);
        said.reset();
        model().startJobProcessing();
        EXPECT_TRUE(Waiting::until([&] { return said.has_value(); }));
        return said.value_or(false);
    };
    for (int status = 0; status <= 17; ++status)
        EXPECT_EQ(isUncompleted(status), status < 10 || status == 13 || status == 15) << status;
}

TEST_F(FinderTest, CountsTheServersJobsAsUncompletedToo)
{
    addJobAt(15, {})->setServerJob(true);
    model().startJobProcessing();
    EXPECT_TRUE(Waiting::until([&] { return model().hasUncompletedLocalJobs(); }));
    model().resetAndLoadFromServer();
    EXPECT_TRUE(Waiting::until([&] { return !model().hasUncompletedLocalJobs(); }));
}

TEST_F(FinderTest, NeverTakesAJobAtAnyOtherStatus)
{
    std::vector<std::shared_ptr<Job>> jobs;
    const std::vector<int> statuses{1, 3, 5, 6, 7, 8, 9, 10, 11, 13, 15, 16, 17, 18, -1};
    for (const int status : statuses)
        jobs.push_back(addJobAt(status, {u"a.mov"_s}, 100 + status));
    (void)takeCommands();
    int passes = 0;
    const QObject scope; // the connection's end, before what it writes to goes
    QObject::connect(&model(), &JobModel::hasUncompletedLocalJobsChanged, &scope, [&] { ++passes; });
    model().setIsCheckingJobStatus(true);
    model().startJobProcessing();
    ASSERT_TRUE(Waiting::until([&] { return passes >= 4; }));
    for (std::size_t i = 0; i < jobs.size(); ++i) {
        model().foundJobToProces(jobs[i]);
        EXPECT_EQ(jobs[i]->status(), statuses[i]);
        EXPECT_EQ(fileStatuses(*jobs[i]), std::vector<int>{statuses[i]});
    }
    EXPECT_TRUE(takeCommands().empty());
    EXPECT_FALSE(log.contains(u"Starting extractMediaFilesInfo"_s));
}

TEST_F(FinderTest, DispatchesEachDueStatusToItsStep)
{
    ScriptedFfmpeg ffmpeg;
    ffmpeg.waitsForRelease(u"end"_s);
    ffmpeg.putFirstOnPath();
    model().setMaxNumberOfRunningFfmpegProcesses(9);
    const auto dispatched = [&](int status, int depoNum) {
        const auto job = addJobAt(status, {u"a.mov"_s}, depoNum);
        (void)takeCommands();
        model().foundJobToProces(job);
        return job->status();
    };
    EXPECT_EQ(dispatched(0, 1), 1);
    EXPECT_EQ(takeCommandsOf<SubmitJobDetailsCommand>().size(), 1U);
    EXPECT_EQ(dispatched(2, 2), 3);
    EXPECT_EQ(dispatched(4, 3), 5);
    EXPECT_EQ(dispatched(12, 4), 13);
    EXPECT_EQ(dispatched(14, 5), 15);
    EXPECT_EQ(takeCommandsOf<DownloadJobFilesCommand>().size(), 1U);
    EXPECT_TRUE(Waiting::until([&] { return ffmpeg.runs().size() == 3; }));
    ffmpeg.release(u"end"_s);
}

class MediaPipelineTest : public EngineTest
{
protected:
    MediaPipelineTest() { ffmpeg.putFirstOnPath(); }
    ScriptedFfmpeg ffmpeg;
};

TEST_F(MediaPipelineTest, ReadsTheFilesOneAfterTheOtherInTheirOrder)
{
    model().setMaxNumberOfRunningFfmpegProcesses(5);
    ffmpeg.waitsForRelease(u"go"_s);
    ffmpeg.prints("  Duration: 00:04:07.00, start: 0.0\n");
    const auto job = addJobAt(2, {u"a.mov"_s, u"b.mov"_s});
    model().extractMediaFilesInfo(job);
    EXPECT_EQ(job->status(), 3);
    ASSERT_TRUE(Waiting::until([&] { return ffmpeg.runs().size() == 1; }));
    EXPECT_EQ(fileStatuses(*job), (std::vector<int>{3, 2}));
    ffmpeg.release(u"go"_s);
    ASSERT_TRUE(Waiting::until([&] { return job->status() == 4; }));
    EXPECT_EQ(fileStatuses(*job), (std::vector<int>{4, 4}));
    ASSERT_EQ(ffmpeg.runs().size(), 2);
    EXPECT_TRUE(ffmpeg.runs()[0].last().endsWith(u"a.mov"_s));
    EXPECT_TRUE(ffmpeg.runs()[1].last().endsWith(u"b.mov"_s));
    EXPECT_EQ(job->mediaFiles()[1]->sourceDuration(), 247.0F);
    EXPECT_EQ(model().numberOfRunningFfmpegProcesses(), 0);
    EXPECT_EQ(logLines(u"info"_s, u"Starting extractMediaFilesInfo"_s), 1);
    for (const QString& name : {u"a.mov"_s, u"b.mov"_s}) {
        EXPECT_EQ(logLines(u"info"_s, u"extractMediaFilesInfo got nextFile: "_s + name), 1);
        EXPECT_EQ(logLines(u"info"_s, u"extractMediaFilesInfo will process nextFile: "_s + name), 1);
        EXPECT_EQ(logLines(u"info"_s, u"extractMediaFilesInfo done process nextFile: "_s + name), 1);
    }
}

TEST_F(MediaPipelineTest, AFilesStatusStaysUntilTheGateLetsItIn)
{
    model().setMaxNumberOfRunningFfmpegProcesses(1);
    ffmpeg.waitsForRelease(u"go"_s);
    const auto busy = addJobAt(4, {u"busy.mov"_s}, 1);
    model().convertToMP3AndUpload(busy);
    ASSERT_TRUE(Waiting::until([&] { return ffmpeg.runs().size() == 1; }));
    const auto job = addJobAt(2, {u"a.mov"_s}, 2);
    model().extractMediaFilesInfo(job);
    ASSERT_TRUE(Waiting::until([&] { return log.contains(u"extractMediaFilesInfo got nextFile: a.mov"_s); }));
    Waiting::turnMainLoopFor(std::chrono::milliseconds(50));
    EXPECT_EQ(fileStatuses(*job), std::vector<int>{2}) << "reading counts at the gate like converting";
    EXPECT_EQ(ffmpeg.runs().size(), 1);
    ffmpeg.release(u"go"_s);
    EXPECT_TRUE(Waiting::until([&] { return job->status() == 4; }));
}

TEST_F(MediaPipelineTest, ConvertsAllFilesOfAJobAsFarAsTheGateAllows)
{
    model().setMaxNumberOfRunningFfmpegProcesses(2);
    ffmpeg.waitsForRelease(u"go"_s);
    const auto job = addJobAt(4, {u"a.mov"_s, u"b.mov"_s, u"c.mov"_s});
    model().convertToMP3AndUpload(job);
    EXPECT_EQ(job->status(), 5);
    ASSERT_TRUE(Waiting::until([&] { return ffmpeg.runs().size() == 2; }));
    Waiting::turnMainLoopFor(std::chrono::milliseconds(60));
    EXPECT_EQ(ffmpeg.runs().size(), 2);
    EXPECT_EQ(model().numberOfRunningFfmpegProcesses(), 2);
    ffmpeg.release(u"go"_s);
    EXPECT_TRUE(Waiting::until([&] { return fileStatuses(*job) == std::vector<int>{7, 7, 7}; }));
    EXPECT_EQ(ffmpeg.runs().size(), 3);
    EXPECT_EQ(model().numberOfRunningFfmpegProcesses(), 0);
}

TEST_F(MediaPipelineTest, WithALimitOfOneFilesAreConvertedOneAtATimeAndARaisedLimitReleasesOneAtOnce)
{
    model().setMaxNumberOfRunningFfmpegProcesses(1);
    ffmpeg.shell("echo x >> \"$folder/begun\"\nn=$(wc -l < \"$folder/begun\")\n"
                 "until [ -e \"$folder/released-$n\" ] || [ ! -d \"$folder\" ]; do sleep 0.01; done");
    const auto job = addJobAt(4, {u"a.mov"_s, u"b.mov"_s, u"c.mov"_s});
    model().convertToMP3AndUpload(job);
    const auto staysAt = [&](qsizetype runs) {
        const bool came = Waiting::until([&] { return ffmpeg.runs().size() == runs; });
        Waiting::turnMainLoopFor(std::chrono::milliseconds(80));
        return came && ffmpeg.runs().size() == runs;
    };
    ASSERT_TRUE(staysAt(1));
    model().setMaxNumberOfRunningFfmpegProcesses(3);
    ASSERT_TRUE(staysAt(2));
    ffmpeg.release(u"1"_s);
    EXPECT_TRUE(staysAt(3));
    ffmpeg.release(u"2"_s);
    ffmpeg.release(u"3"_s);
    EXPECT_TRUE(Waiting::until([&] { return model().numberOfRunningFfmpegProcesses() == 0; }));
}

// Support has come to look for the line in every log.
TEST_F(MediaPipelineTest, TheFirstConversionLogsThatItCannotDeleteTheMp3ThatIsNotThere)
{
    const auto job = addJobAt(4);
    model().convertToMP3AndUpload(job);
    ASSERT_TRUE(Waiting::until([&] { return fileStatuses(*job) == std::vector<int>{7}; }));
    const QString mp3 = path(u"temp/883/clip.mov.mp3"_s);
    EXPECT_EQ(job->mediaFiles().first()->mp3FilePath(), mp3);
    const QString line = u"Job #883, Unable to delete mp3 file at path = "_s + mp3 + u", error = "_s;
    EXPECT_EQ(log.count(line), 1);
    EXPECT_TRUE(log.text().contains(u"[error] [conversion] "_s + line));
    EXPECT_TRUE(QFileInfo(path(u"temp/883"_s)).isDir()) << "the job's folder is made";
    EXPECT_EQ(ffmpeg.runs().size(), 1);
    EXPECT_EQ(ffmpeg.runs().first().last(), mp3);
}

TEST_F(MediaPipelineTest, AnMp3ThatIsThereIsLeftForTheConverterToOverwrite)
{
    ffmpeg.waitsForRelease(u"go"_s);
    const QString mp3 = writeFile(u"temp/883/clip.mov.mp3"_s, "old sound");
    const auto job = addJobAt(4);
    model().convertToMP3AndUpload(job);
    ASSERT_TRUE(Waiting::until([&] { return ffmpeg.runs().size() == 1; }));
    EXPECT_EQ(readFile(mp3), "old sound");
    EXPECT_FALSE(log.contains(u"Unable to delete mp3 file"_s));
    ffmpeg.release(u"go"_s);
    EXPECT_TRUE(Waiting::until([&] { return fileStatuses(*job) == std::vector<int>{7}; }));
}

TEST_F(MediaPipelineTest, AConvertedFileIsAnnounced)
{
    const auto job = addJobAt(5);
    (void)takeCommands();
    int sawConverted = 0;
    const auto file = job->mediaFiles().first();
    const QObject scope; // the connection's end, before what it writes to goes
    QObject::connect(file.get(), &MediaObject::statusChanged, &scope, [&] { sawConverted += file->status() == 6; });
    model().conversionToMp3Finished(job, file);
    EXPECT_EQ(sawConverted, 1);
    EXPECT_EQ(file->status(), 7);
    EXPECT_EQ(takeCommandsOf<AddJobSegmentsCommand>().size(), 1U);
}

TEST_F(MediaPipelineTest, AReprocessedFileIsUploadedWithoutBeingAnnouncedAgain)
{
    const auto job = addJobAt(11);
    job->setStatus(13);
    const auto file = job->mediaFiles().first();
    file->setMp3FilePath(writeFile(u"a.mp3"_s, "sound"));
    (void)takeCommands();
    model().conversionToMp3Finished(job, file);
    std::vector<std::shared_ptr<CUrlCommand>> commands;
    ASSERT_TRUE(Waiting::until([&] {
        for (const auto& command : takeCommands())
            commands.push_back(command);
        return !commands.empty();
    }));
    ASSERT_EQ(commands.size(), 1U);
    EXPECT_TRUE(dynamic_cast<UploadCommand*>(commands[0].get()));
    EXPECT_EQ(job->status(), 13);
}

struct ChannelsCase
{
    const char* name;
    int fileStatus;
    QString serverStatus;
    QString channels;
};

class ChannelsTest : public MediaPipelineTest, public testing::WithParamInterface<ChannelsCase>
{};

TEST_P(ChannelsTest, AreThoseThatTheServiceAskedFor)
{
    const auto job = addJobAt(11);
    const auto file = job->mediaFiles().first();
    file->setServerStatus(GetParam().serverStatus);
    file->setStatus(GetParam().fileStatus);
    job->setStatus(GetParam().fileStatus);
    model().foundJobToProces(job);
    ASSERT_TRUE(Waiting::until([&] { return ffmpeg.runs().size() == 1; }));
    const QStringList arguments = ffmpeg.runs().first();
    EXPECT_EQ(arguments.value(arguments.indexOf(u"-ac"_s) + 1), GetParam().channels)
        << arguments.join(u' ').toStdString();
}

INSTANTIATE_TEST_SUITE_P(Words, ChannelsTest,
                         testing::Values(ChannelsCase{"Stereo", 12, u"Processing_Media_Stereo"_s, u"2"_s},
                                         ChannelsCase{"StereoInAnyCase", 12, u"pROCESSING_media_STEREO"_s, u"2"_s},
                                         ChannelsCase{"Mono", 12, u"Processing_Media_Mono"_s, u"1"_s},
                                         ChannelsCase{"AnotherWord", 12, u"Stereo"_s, u"1"_s},
                                         // Only what is reprocessed is asked for.
                                         ChannelsCase{"AFirstConversion", 4, u"Processing_Media_Stereo"_s, u"1"_s}),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(MediaPipelineTest, TheConvertersErrorsGoNowhere)
{
    ffmpeg.prints("clip.mov: Invalid data found when processing input\n");
    ffmpeg.prints("Error: no such thing\n");
    ffmpeg.exits(1);
    const auto job = addJobAt(2);
    model().extractMediaFilesInfo(job);
    ASSERT_TRUE(Waiting::until([&] { return job->status() == 4; }));
    model().convertToMP3AndUpload(job);
    ASSERT_TRUE(Waiting::until([&] { return fileStatuses(*job) == std::vector<int>{7}; }));
    EXPECT_TRUE(log.contains(u"Not presented: "_s)) << "the converter did report";
    EXPECT_TRUE(errorTexts().isEmpty());
    EXPECT_TRUE(engine->stops.empty());
}

TEST_F(MediaPipelineTest, WithoutAConverterTheFilesMoveOnAndTheUploadSaysWhatIsMissing)
{
    qputenv("PATH", path(u"empty"_s).toUtf8());
    const auto job = addJobAt(2);
    model().extractMediaFilesInfo(job);
    ASSERT_TRUE(Waiting::until([&] { return job->status() == 4; }));
    EXPECT_EQ(model().numberOfRunningFfmpegProcesses(), 0);
    model().convertToMP3AndUpload(job);
    ASSERT_TRUE(Waiting::until([&] { return fileStatuses(*job) == std::vector<int>{7}; }));
    for (const auto& command : takeCommandsOf<AddJobSegmentsCommand>())
        answer(*command, "");
    EXPECT_TRUE(Waiting::until([&] { return engine->stops.size() == 1; }));
}

} // namespace
