// Instructions, the log's upload, download, reprocessing, and where each ended command goes.

#include "EngineTest.h"

#include "commands/AddJobSegmentsCommand.h"
#include "commands/CheckStatusCommand.h"
#include "commands/DebugUploadCommand.h"
#include "commands/DownloadJobFilesCommand.h"
#include "commands/GetInstructionsCommand.h"
#include "commands/SetMediaFormatCommand.h"
#include "commands/SubmitJobDetailsCommand.h"
#include "commands/UploadCommand.h"
#include "support/ScriptedFfmpeg.h"

using namespace Qt::StringLiterals;

namespace {

class DeliveryTest : public EngineTest
{
protected:
    std::vector<std::shared_ptr<DebugUploadCommand>> logUploads() { return takeCommandsOf<DebugUploadCommand>(); }
};

TEST_F(DeliveryTest, InstructionsAreAskedForOnceUntilTheReplyIsThere)
{
    model().getInstructions();
    model().getInstructions();
    const auto asked = takeCommandsOf<GetInstructionsCommand>();
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0]->observer(), &model());
    EXPECT_TRUE(model().isGettingInstructions());
    answer(*asked[0], "OK");
    EXPECT_FALSE(model().isGettingInstructions());
    EXPECT_EQ(logLines(u"info"_s, u"getInstructions command response = OK"_s), 1);
    EXPECT_TRUE(logUploads().empty());
}

TEST_F(DeliveryTest, TheWordSendLogsBetweenBlanksUploadsTheLogOnce)
{
    for (const QString& reply :
         {u"OK SendLogs"_s, u"SendLogs"_s, u"SendLogs now"_s, u"SendLogs SendLogs"_s, u"a  SendLogs  b"_s}) {
        model().processGetInstructionsResponse(reply);
        EXPECT_EQ(logUploads().size(), 1U) << reply.toStdString();
    }
    EXPECT_EQ(logLines(u"info"_s, u"Got 'SendLogs' command"_s), 5);
}

TEST_F(DeliveryTest, AnyOtherWordIsIgnoredEvenWithALineEndAfterIt)
{
    for (const QString& reply :
         {u"OK sendlogs"_s, u"SENDLOGS"_s, u"SendLogs\n"_s, u"OK\tSendLogs"_s, u"SendLogs,"_s, u""_s, u"Restart"_s}) {
        model().processGetInstructionsResponse(reply);
        EXPECT_TRUE(logUploads().empty()) << reply.toStdString();
    }
    EXPECT_FALSE(log.contains(u"Got 'SendLogs' command"_s));
}

TEST_F(DeliveryTest, TheLogIsSentUnderItsFixedNameWithTheLinesWrittenSoFar)
{
    Log::info("a line that is still in the buffer");
    model().uploadLogFile();
    const auto uploads = logUploads();
    ASSERT_EQ(uploads.size(), 1U);
    EXPECT_EQ(uploads[0]->uploadedObject(), log.fileLogger());
    EXPECT_EQ(uploads[0]->observer(), &model());
    EXPECT_EQ(logLines(u"info"_s, u"Will upload log file"_s), 1);
}

TEST_F(DeliveryTest, BeforeLoginTheLogIsNotSent)
{
    for (const bool isUserMissing : {true, false}) {
        isUserMissing ? model().setUsername({}) : model().setPassword({});
        model().uploadLogFile();
        EXPECT_TRUE(logUploads().empty());
        model().setUsername(u"demo"_s);
    }
    EXPECT_FALSE(log.contains(u"Will upload log file"_s));
}

TEST_F(DeliveryTest, AnEmptyUserNameAndPasswordThatAreSetPass)
{
    model().setUsername(u""_s);
    model().setPassword(u""_s);
    model().uploadLogFile();
    EXPECT_EQ(logUploads().size(), 1U);
}

TEST_F(DeliveryTest, WithoutALoggerOrItsFileNothingIsSent)
{
    services().fileLoggerToGive = nullptr;
    model().uploadLogFile();
    services().fileLoggerToGive = std::make_shared<FileLogger>(writeFile(u"occupied"_s, "x"));
    model().uploadLogFile();
    EXPECT_TRUE(logUploads().empty());
    EXPECT_TRUE(errorTexts().isEmpty());
}

TEST_F(DeliveryTest, TheLogsReplyIsLoggedAndNeverPresented)
{
    int ended = 0;
    const QObject scope; // the connection's end, before what it writes to goes
    QObject::connect(&model(), &JobModel::logFileUploadEnded, &scope, [&] { ++ended; });
    model().uploadLogFile();
    const auto uploads = logUploads();
    ASSERT_EQ(uploads.size(), 1U);
    answer(*uploads[0], "UPLOAD COMPLETE");
    EXPECT_EQ(logLines(u"info"_s, u"Log file is uploaded"_s), 1);
    EXPECT_EQ(ended, 1);
    answer(*uploads[0], "UPLOAD COMPLETE\n");
    EXPECT_TRUE(log.contains(u"[error]"_s));
    EXPECT_TRUE(log.contains(u"Failed to upload debug file, response = UPLOAD COMPLETE\n"_s));
    answer(*uploads[0], "no room");
    EXPECT_EQ(logLines(u"error"_s, u"Failed to upload debug file, response = no room"_s), 1);
    EXPECT_EQ(logLines(u"info"_s, u"Log file is uploaded"_s), 1);
    EXPECT_EQ(ended, 3);
    EXPECT_TRUE(errorTexts().isEmpty());
}

TEST_F(DeliveryTest, AReplyForAnotherLoggerSaysNothing)
{
    model().processDebugUploadResponse(u"UPLOAD COMPLETE"_s, nullptr);
    model().processDebugUploadResponse(u"UPLOAD COMPLETE"_s, std::make_shared<FileLogger>(path(u"other"_s)));
    EXPECT_FALSE(log.contains(u"Log file is uploaded"_s));
    EXPECT_FALSE(log.contains(u"Failed"_s));
}

TEST_F(DeliveryTest, ADownloadIsPostedWithAnEmptyBarAndFinishesEveryFile)
{
    const auto job = addJobAt(11, {u"a.mov"_s, u"b.mov"_s});
    job->setStatus(14);
    (void)takeCommands();
    model().downloadJob(job);
    const auto commands = takeCommands();
    ASSERT_EQ(commands.size(), 1U);
    const auto download = std::dynamic_pointer_cast<DownloadJobFilesCommand>(commands[0]);
    ASSERT_TRUE(download);
    EXPECT_EQ(download->job(), job);
    EXPECT_EQ(download->folderPath(), path(u"delivery"_s));
    EXPECT_EQ(download->username(), u"demo");
    EXPECT_EQ(download->password(), u"demo1234");
    EXPECT_EQ(download->observer(), &model());
    EXPECT_EQ(job->totalValue(), 100);
    EXPECT_EQ(job->processedValue(), 0);
    EXPECT_EQ(job->status(), 15);
    EXPECT_EQ(fileStatuses(*job), (std::vector<int>{17, 17}));

    model().curlCommandProgress(*download, 3.9, 7.9, 1, 2);
    EXPECT_EQ(job->totalValue(), 7);
    EXPECT_EQ(job->processedValue(), 3);

    answer(*download, "");
    EXPECT_EQ(job->status(), 17);
    EXPECT_TRUE(errorTexts().isEmpty());
    EXPECT_EQ(logLines(u"info"_s, u"downloadJobResponse command response = "_s), 1);
}

TEST_F(DeliveryTest, AnyReplyToADownloadLeavesTheJobUncompleted)
{
    const auto job = addJobAt(15);
    model().processJobDownloadJobResponse(job, u" "_s);
    EXPECT_EQ(job->status(), 15);
    const QString text = u"Possible error with job(883) downloading, response( )"_s;
    EXPECT_EQ(services().errors, (QList<Error>{{ErrorDomain::SyncBase, 0, text}}));
    ASSERT_EQ(engine->stops.size(), 1U);
    EXPECT_EQ(engine->stops[0].job, job);
    EXPECT_EQ(engine->stops[0].reason, text);
    model().startJobProcessing();
    EXPECT_TRUE(Waiting::until([&] { return model().hasUncompletedLocalJobs(); }));
}

TEST_F(DeliveryTest, ReprocessingStartsTheFilesThatWereAskedForAndLeavesTheOthers)
{
    ScriptedFfmpeg ffmpeg;
    ffmpeg.waitsForRelease(u"end"_s);
    ffmpeg.putFirstOnPath();
    const auto job = addJobAt(11, {u"a.mov"_s, u"b.mov"_s, u"c.mov"_s});
    job->mediaFiles()[0]->setStatus(12);
    job->mediaFiles()[2]->setStatus(12);
    job->setStatus(12);
    model().reprocessJob(job);
    EXPECT_EQ(job->status(), 13);
    ASSERT_TRUE(Waiting::until([&] { return ffmpeg.runs().size() == 2; }));
    EXPECT_EQ(fileStatuses(*job), (std::vector<int>{5, 11, 5}));
    EXPECT_EQ(job->status(), 13);
    EXPECT_EQ(logLines(u"info"_s, u"Will reprocess job #883"_s), 1);
    ffmpeg.release(u"end"_s);
    EXPECT_TRUE(Waiting::until([&] { return ffmpeg.runningCount() == 0; }));
    EXPECT_EQ(ffmpeg.runs().size(), 2);
}

TEST_F(DeliveryTest, ThePrefixKeepsItsOwnBlankSoThatTwoStandBeforeTheOldWords)
{
    EXPECT_EQ(JobModel::prependError({u"a.domain"_s, 42, u"the old words"_s}, u"Prefix, "_s),
              (Error{u"a.domain"_s, 42, u"Prefix,  the old words"_s}));
}

// Each kind of command, and what a failed one says and stops.
class FailureTest : public DeliveryTest
{
protected:
    const std::shared_ptr<Job> job = addJobAt(11);
    const std::shared_ptr<MediaFile> file = job->mediaFiles().first();
    const QString words = u"cURL error( 0, No error )"_s;

    void fail(const std::shared_ptr<CUrlCommand>& command, const QString& presented, bool stops)
    {
        ASSERT_TRUE(command);
        (void)takeCommands();
        command->setData("half a reply");
        const auto before = fileStatuses(*job);
        const int jobBefore = job->status();
        model().curlCommandFailed(*command);
        EXPECT_EQ(services().errors, (QList<Error>{{ErrorDomain::SyncBase, 1, presented}}));
        EXPECT_EQ(engine->stops.size(), stops ? 1U : 0U);
        if (!engine->stops.empty()) {
            EXPECT_EQ(engine->stops[0].job, job);
            EXPECT_EQ(engine->stops[0].reason, presented);
        }
        EXPECT_EQ(logLines(u"info"_s, u"curlCommandFailed Failed: half a reply"_s), 1);
        EXPECT_EQ(fileStatuses(*job), before);
        EXPECT_EQ(job->status(), jobBefore);
        EXPECT_TRUE(takeCommands().empty());
    }
};

TEST_F(FailureTest, OfASubmission)
{
    fail(SubmitJobDetailsCommand::submitJobDetailsCommandWithUser(hosts, u"u"_s, u"p"_s, job),
         u"Job model, submission of job(883) failed,  "_s + words, true);
}

TEST_F(FailureTest, OfASegment)
{
    fail(AddJobSegmentsCommand::addJobSegmentsCommandWithUser(hosts, u"u"_s, u"p"_s, job, file),
         u"Job model, submission of job(883) failed,  "_s + words, true);
}

TEST_F(FailureTest, OfAnUpload)
{
    fail(UploadCommand::uploadCommandWithUser(hosts, u"u"_s, u"p"_s, job, writeFile(u"a.mp3"_s, "x"), u"n"_s),
         u"Job model, uploading of job(883) files failed,  "_s + words, true);
}

TEST_F(FailureTest, OfAStatusRequestWhichMayThenBeSentAgain)
{
    ASSERT_TRUE(model().isCheckingJobStatus());
    fail(CheckStatusCommand::checkStatusCommandWithUser(hosts, u"u"_s, u"p"_s, u"c"_s, std::nullopt),
         u"Job model, check status failed,  "_s + words, false);
    EXPECT_FALSE(model().isCheckingJobStatus());
    EXPECT_TRUE(model().isGettingInstructions());
    model().checkJobsStatusOnServer();
    EXPECT_EQ(takeCommandsOf<CheckStatusCommand>().size(), 1U);
}

TEST_F(FailureTest, OfARequestForInstructionsWhichMayThenBeSentAgain)
{
    ASSERT_TRUE(model().isGettingInstructions());
    fail(GetInstructionsCommand::getInstructionsCommandWithUser(hosts, u"u"_s, u"p"_s),
         u"Job model, get instructions failed,  "_s + words, false);
    EXPECT_FALSE(model().isGettingInstructions());
    EXPECT_TRUE(model().isCheckingJobStatus());
    model().getInstructions();
    EXPECT_EQ(takeCommandsOf<GetInstructionsCommand>().size(), 1U);
}

TEST_F(FailureTest, OfADownload)
{
    fail(DownloadJobFilesCommand::downloadJobFilesCommandWithUser(hosts, u"u"_s, u"p"_s, job, path(u"d"_s)),
         u"Job model, downloading of job(883) files failed,  "_s + words, true);
}

TEST_F(FailureTest, OfTheLogsUpload)
{
    int ended = 0;
    const QObject scope; // the connection's end, before what it writes to goes
    QObject::connect(&model(), &JobModel::logFileUploadEnded, &scope, [&] { ++ended; });
    fail(DebugUploadCommand::uploadCommandWithUser(hosts, u"u"_s, u"p"_s, writeFile(u"a.txt"_s, "x"), u"debug.txt"_s),
         u"Uploading of log file failed,  "_s + words, false);
    EXPECT_EQ(ended, 1);
}

TEST_F(FailureTest, OfAFormatIsPresentedInItsOwnWords)
{
    fail(SetMediaFormatCommand::setMediaFormatCommandWithUser(hosts, u"u"_s, u"p"_s, job, file), words, false);
}

TEST_F(FailureTest, OfAnyOtherCommandIsPresentedInItsOwnWords)
{
    fail(std::make_shared<CUrlCommand>(u"https://127.0.0.1:9/"_s), words, false);
}

TEST_F(FailureTest, ThatTheEndOfTheProgramCausedIsLoggedAlone)
{
    model().endWork();
    const auto submit = SubmitJobDetailsCommand::submitJobDetailsCommandWithUser(hosts, u"u"_s, u"p"_s, job);
    model().curlCommandFailed(*submit);
    EXPECT_TRUE(errorTexts().isEmpty());
    EXPECT_TRUE(engine->stops.empty());
    EXPECT_EQ(logLines(u"error"_s, u"Job model, submission of job(883) failed,  "_s + words), 1);
}

TEST_F(FailureTest, WithoutANumberTheJobIsCalledZero)
{
    job->setDepoNum(std::nullopt);
    fail(SubmitJobDetailsCommand::submitJobDetailsCommandWithUser(hosts, u"u"_s, u"p"_s, job),
         u"Job model, submission of job(0) failed,  "_s + words, true);
}

} // namespace
