// The status poll: when it asks, and what the reply does to the jobs.

#include "EngineTest.h"

#include "commands/CheckStatusCommand.h"
#include "commands/GetInstructionsCommand.h"
#include "commands/MachineUID.h"
#include "commands/UrlEncoding.h"

#include <chrono>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

class StatusPollTest : public EngineTest
{
protected:
    void reply(const QString& text) { model().processCheckJobsStatusOnServerResponse(text); }
    [[nodiscard]] bool holds(const std::shared_ptr<Job>& job)
    {
        return model().findJobWithDepoNum(job->depoNum().value_or(0)) == job;
    }
};

TEST_F(StatusPollTest, AsksOnceUntilTheReplyIsThere)
{
    model().checkJobsStatusOnServer();
    EXPECT_TRUE(model().isCheckingJobStatus());
    model().checkJobsStatusOnServer();
    const auto asked = takeCommandsOf<CheckStatusCommand>();
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0]->observer(), &model());
    answer(*asked[0], "");
    EXPECT_FALSE(model().isCheckingJobStatus());
    model().checkJobsStatusOnServer();
    EXPECT_EQ(takeCommandsOf<CheckStatusCommand>().size(), 1U);
}

TEST_F(StatusPollTest, EachCallAlsoAsksForInstructions)
{
    model().setIsCheckingJobStatus(true);
    model().checkJobsStatusOnServer();
    const auto commands = takeCommands();
    ASSERT_EQ(commands.size(), 1U);
    EXPECT_TRUE(dynamic_cast<GetInstructionsCommand*>(commands[0].get()));
}

TEST_F(StatusPollTest, GoesOnByItselfWhileAJobIsNotCompleted)
{
    addJobAt(11);
    reply({});
    (void)takeCommands();
    model().setStatusCheckTimeInterval(0.02);
    model().checkJobsStatusOnServer();
    for (int round = 0; round < 3; ++round) {
        std::shared_ptr<CheckStatusCommand> asked;
        ASSERT_TRUE(Waiting::until([&] {
            const auto found = takeCommandsOf<CheckStatusCommand>();
            if (!found.empty())
                asked = found.front();
            return asked != nullptr;
        }));
        answer(*asked, "");
        EXPECT_TRUE(model().isStatusPollArmed());
    }
}

TEST_F(StatusPollTest, EveryCallRestartsThePeriod)
{
    addJobAt(11);
    model().setStatusCheckTimeInterval(0.4);
    model().checkJobsStatusOnServer();
    for (int i = 0; i < 4; ++i) {
        Waiting::turnMainLoopFor(std::chrono::milliseconds(150));
        model().checkJobsStatusOnServer();
    }
    // By now a period that was not restarted would have ended and begun anew.
    model().setIsCheckingJobStatus(false);
    (void)takeCommands();
    Waiting::turnMainLoopFor(std::chrono::milliseconds(150));
    EXPECT_TRUE(takeCommandsOf<CheckStatusCommand>().empty());
}

TEST_F(StatusPollTest, StopsWhenEveryJobIsCompletedOrThereIsNone)
{
    model().checkJobsStatusOnServer();
    reply({});
    EXPECT_FALSE(model().isStatusPollArmed());
    const auto job = addJobAt(17);
    EXPECT_TRUE(model().isStatusPollArmed());
    reply({});
    EXPECT_FALSE(model().isStatusPollArmed());
    job->setStatus(16);
    model().checkJobsStatusOnServer();
    reply({});
    EXPECT_TRUE(model().isStatusPollArmed());
}

// Through it the service reaches every running program, also one that has nothing to do.
TEST_F(StatusPollTest, TheInstructionsPollNeverStopsThoughTheStatusPollDoes)
{
    addJobAt(17);
    (void)takeCommands();
    model().setIsGettingInstructions(false);
    model().setInstructionsCheckTimeInterval(0.02);
    model().checkJobsStatusOnServer();
    reply({});
    ASSERT_FALSE(model().isStatusPollArmed());
    for (int round = 0; round < 3; ++round) {
        std::shared_ptr<GetInstructionsCommand> asked;
        ASSERT_TRUE(Waiting::until([&] {
            const auto found = takeCommandsOf<GetInstructionsCommand>();
            if (!found.empty())
                asked = found.front();
            return asked != nullptr;
        }));
        answer(*asked, "OK");
    }
}

TEST_F(StatusPollTest, AReplyWithoutRecordsChangesNoJob)
{
    const auto job = addJobAt(10);
    job->setServerStatus(u"Splitting"_s);
    reply(u"Nothing to report"_s);
    EXPECT_EQ(job->status(), 10);
    EXPECT_EQ(job->serverStatus(), u"Splitting");
    EXPECT_EQ(model().jobs().size(), 1U);
    EXPECT_FALSE(model().isCheckingJobStatus());
    EXPECT_EQ(logLines(u"info"_s, u"Server jobs statuses:"_s), 1);
}

TEST_F(StatusPollTest, AnUploadedJobIsOnTheServerAndKeepsItsWord)
{
    const auto job = addJobAt(10);
    reply(u"Depo: 883 Smith 2 Mar.txt Splitting\n"_s);
    EXPECT_EQ(job->status(), 11);
    EXPECT_EQ(job->serverStatus(), u"Splitting");
    EXPECT_EQ(logLines(u"info"_s, u"Depo = 883, transcript = Smith 2 Mar.txt, status = Splitting"_s), 1);
}

TEST_F(StatusPollTest, AnUploadedJobThatIsJoinedIsAtOnceReadyForDownload)
{
    const auto job = addJobAt(10);
    reply(u"Depo: 883 Smith.txt Joined"_s);
    EXPECT_EQ(job->status(), 14);
}

TEST_F(StatusPollTest, JoinedIsMatchedAsWritten)
{
    const auto job = addJobAt(11);
    reply(u"Depo: 883 Smith.txt joined"_s);
    EXPECT_EQ(job->status(), 11);
    EXPECT_EQ(job->serverStatus(), u"joined");
    reply(u"Depo: 883 Smith.txt JoinedCMS"_s);
    EXPECT_EQ(job->status(), 11);
}

TEST_F(StatusPollTest, AWithdrawnJobIsRemovedWhateverTheLetterCase)
{
    for (const QString& word : {u"VOID"_s, u"void"_s, u"Void"_s}) {
        const auto job = addJobAt(11);
        reply(u"Depo: 883 Smith.txt "_s + word);
        EXPECT_TRUE(model().jobs().empty()) << word.toStdString();
    }
    const auto uploaded = addJobAt(10);
    reply(u"Depo: 883 Smith.txt VOID"_s);
    EXPECT_TRUE(model().jobs().empty());
}

TEST_F(StatusPollTest, AtOtherStatusesOnlyTheWordIsKept)
{
    for (const int status : {0, 1, 5, 9, 12, 13, 14, 15, 16, 17}) {
        const auto job = addJobAt(status, {u"a.mov"_s}, 1000 + status);
        for (const QString& word : {u"void"_s, u"Joined"_s}) {
            reply(u"Depo: "_s + QString::number(1000 + status) + u" Smith.txt "_s + word);
            EXPECT_EQ(job->status(), status);
            EXPECT_EQ(job->serverStatus(), word);
            EXPECT_TRUE(holds(job));
        }
    }
}

TEST_F(StatusPollTest, AnUnknownDepositionBecomesAJobOfTheServers)
{
    reply(u"Depo: 900 Brown 3 May.txt Splitting"_s);
    const auto job = model().findJobWithDepoNum(900);
    ASSERT_TRUE(job);
    EXPECT_EQ(job->name(), u"(900) Brown 3 May.txt");
    EXPECT_TRUE(job->serverJob());
    EXPECT_EQ(job->status(), 11);
    EXPECT_EQ(job->serverStatus(), u"Splitting");
    EXPECT_TRUE(job->mediaFiles().isEmpty());
    EXPECT_TRUE(model().isStatusPollArmed()) << "a new job starts the polls afresh";
    EXPECT_EQ(takeCommandsOf<CheckStatusCommand>().size(), 0U + 1U) << "no second request for the job's sake";
}

TEST_F(StatusPollTest, ASingleWordAfterTheNumberLeavesNameAndStatusEmpty)
{
    reply(u"Depo: 883 Splitting"_s);
    const auto job = model().findJobWithDepoNum(883);
    ASSERT_TRUE(job);
    EXPECT_EQ(job->name(), u"(883) ");
    EXPECT_EQ(job->serverStatus(), u"");
}

TEST_F(StatusPollTest, AnUnknownDepositionThatIsJoinedIsReadyAndAWithdrawnOneDoesNotStay)
{
    QStringList said;
    const QObject scope; // the connection's end, before what it writes to goes
    QObject::connect(&model(), &JobModel::jobAdded, &scope,
                     [&](const auto& job) { said.append(u"+"_s + job->name()); });
    QObject::connect(&model(), &JobModel::jobRemoved, &scope,
                     [&](const auto& job) { said.append(u"-"_s + job->name()); });
    reply(u"Depo: 1 a.txt Joined\nDepo: 2 b.txt VOID\n"_s);
    ASSERT_EQ(model().jobs().size(), 1U);
    EXPECT_EQ(model().jobs().front()->status(), 14);
    EXPECT_EQ(said, QStringList({u"+(1) a.txt"_s, u"+(2) b.txt"_s, u"-(2) b.txt"_s}));
}

TEST_F(StatusPollTest, ADepositionListedTwiceIsOneJob)
{
    reply(u"Depo: 1 a.txt Splitting\nDepo: 1 a.txt Joined\n"_s);
    ASSERT_EQ(model().jobs().size(), 1U);
    EXPECT_EQ(model().jobs().front()->status(), 14);
}

TEST_F(StatusPollTest, OfTwoJobsWithOneNumberTheOtherIsFoundWhenTheFirstIsWithdrawn)
{
    addJobAt(11);
    const auto second = addJobAt(11);
    reply(u"Depo: 883 a.txt VOID\nDepo: 883 a.txt Splitting\n"_s);
    ASSERT_EQ(model().jobs(), std::vector<std::shared_ptr<Job>>{second});
    EXPECT_EQ(second->serverStatus(), u"Splitting");
}

TEST_F(StatusPollTest, SegmentsOfTheServersJobAreEnteredOnceAtTheFront)
{
    const QString text =
        u"Segment: 900 1 Uploaded 247000 -1\nDepo: 900 a.txt Splitting\nSegment: 900 2 Joined 247000 100\n"_s;
    reply(text);
    const auto job = model().findJobWithDepoNum(900);
    ASSERT_TRUE(job);
    ASSERT_EQ(job->mediaFiles().size(), 2) << "segments see the job of their reply wherever its line stands";
    const auto second = job->mediaFiles().at(0);
    const auto first = job->mediaFiles().at(1);
    EXPECT_EQ(first->name(), u"Segment 1");
    EXPECT_EQ(first->sourceFilePath(), u"Segment1.abc");
    EXPECT_TRUE(first->isServerMediaFile());
    EXPECT_EQ(first->status(), 11);
    EXPECT_EQ(first->serverStatus(), u"Uploaded");
    EXPECT_EQ(first->scoreValue(), std::nullopt);
    EXPECT_EQ(second->name(), u"Segment 2");
    EXPECT_EQ(second->scoreValue(), 100);
    reply(QString(text).replace(u"Uploaded"_s, u"Joined"_s).replace(u"-1"_s, u"50"_s));
    EXPECT_EQ(job->mediaFiles(), (Job::MediaFiles{second, first}));
    EXPECT_EQ(first->serverStatus(), u"Uploaded") << "later reports of a segment change nothing";
    EXPECT_EQ(first->scoreValue(), std::nullopt);
    EXPECT_EQ(logLines(u"info"_s, u"Depo = 900, segment = 2, status = Joined, duration = 247000, score = 100"_s), 2);
}

TEST_F(StatusPollTest, ASegmentOfALocalJobGetsItsWordAndScore)
{
    const auto job = addJobAt(11, {u"a.mov"_s, u"b.mov"_s});
    reply(u"Segment: 883 2 Joined 247000 97"_s);
    EXPECT_EQ(job->mediaFiles().at(1)->serverStatus(), u"Joined");
    EXPECT_EQ(job->mediaFiles().at(1)->scoreValue(), 97);
    EXPECT_EQ(job->mediaFiles().at(1)->status(), 11);
    EXPECT_TRUE(job->mediaFiles().at(0)->serverStatus().isNull());
    EXPECT_EQ(job->status(), 11);
}

TEST_F(StatusPollTest, AFileOfAJobThatReachesTheServerFollowsIt)
{
    const auto job = addJobAt(10);
    reply(u"Depo: 883 a.txt Splitting\nSegment: 883 1 Splitting 1 1\n"_s);
    EXPECT_EQ(job->status(), 11);
    EXPECT_EQ(fileStatuses(*job), std::vector<int>{11});
}

TEST_F(StatusPollTest, ASegmentAskedForAgainMarksFileAndJobAndClearsTheScore)
{
    for (const QString& word : {u"Processing_Media_Mono"_s, u"Processing_Media_Stereo"_s, u"PROCESSING_media_mONO"_s}) {
        restartEngine();
        const auto job = addJobAt(11, {u"a.mov"_s, u"b.mov"_s});
        job->mediaFiles().first()->setScoreValue(50);
        reply(u"Segment: 883 1 "_s + word + u" 247000 -1\n"_s);
        EXPECT_EQ(fileStatuses(*job), (std::vector<int>{12, 11}));
        EXPECT_EQ(job->mediaFiles().first()->serverStatus(), word);
        EXPECT_EQ(job->mediaFiles().first()->scoreValue(), std::nullopt);
        EXPECT_EQ(job->status(), 12);
    }
}

// The first record that asks for a segment moves the job off the server's status, so the finder takes it with that one;
// the others are asked for again with the next reply.
TEST_F(StatusPollTest, AfterTheFirstSegmentAskedForAgainTheReplysOtherSegmentsAreLeftAlone)
{
    const auto job = addJobAt(11, {u"a.mov"_s, u"b.mov"_s});
    reply(u"Segment: 883 1 Processing_Media_Mono 1 -1\nSegment: 883 2 Processing_Media_Mono 1 -1\n"_s);
    EXPECT_EQ(fileStatuses(*job), (std::vector<int>{12, 11}));
}

TEST_F(StatusPollTest, AFileThatIsBeingReprocessedOnlyGetsItsScore)
{
    for (const int status : {12, 13}) {
        const auto job = addJobAt(11, {u"a.mov"_s}, 100 + status);
        const auto file = job->mediaFiles().first();
        file->setStatus(status);
        file->setServerStatus(u"before"_s);
        for (const QString& word : {u"Joined"_s, u"Processing_Media_Mono"_s}) {
            model().processStatusForSegment(1, 100 + status, word, 0, 77);
            EXPECT_EQ(file->status(), status);
            EXPECT_EQ(file->serverStatus(), u"before");
            EXPECT_EQ(file->scoreValue(), 77);
            EXPECT_EQ(job->status(), 11);
        }
    }
}

TEST_F(StatusPollTest, ASegmentThatTheJobHasNotIsLeftOut)
{
    const auto job = addJobAt(11);
    for (const int segment : {0, 2, -1, 2147483647, std::numeric_limits<int>::min()})
        model().processStatusForSegment(segment, 883, u"Processing_Media_Mono"_s, 0, 1);
    EXPECT_EQ(fileStatuses(*job), std::vector<int>{11});
    EXPECT_EQ(job->status(), 11);
    model().processStatusForSegment(1, 884, u"Joined"_s, 0, 1);
    EXPECT_EQ(model().jobs().size(), 1U);
}

TEST_F(StatusPollTest, SegmentsOfAJobThatIsNotOnTheServerAreLeftOut)
{
    for (const int status : {0, 9, 10, 12, 13, 14, 15, 17}) {
        const auto job = addJobAt(status, {u"a.mov"_s}, 1000 + status);
        model().processStatusForSegment(1, 1000 + status, u"Processing_Media_Mono"_s, 0, 1);
        EXPECT_EQ(fileStatuses(*job), std::vector<int>{status});
        EXPECT_EQ(job->mediaFiles().first()->scoreValue(), std::nullopt);
    }
}

TEST_F(StatusPollTest, FiftyThousandDepositionsAreTakenWithoutDelay)
{
    const auto begin = std::chrono::steady_clock::now();
    QString text;
    for (int i = 1; i <= 50'000; ++i)
        text +=
            u"Depo: "_s + QString::number(i) + u" a.txt Splitting\nSegment: "_s + QString::number(i) + u" 1 x 1 1\n"_s;
    reply(text);
    EXPECT_EQ(model().jobs().size(), 50'000U);
    reply(text);
    EXPECT_EQ(model().jobs().size(), 50'000U);
    EXPECT_EQ(model().findJobWithDepoNum(50'000)->mediaFiles().size(), 1);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(60));
}

TEST_F(StatusPollTest, TheDiagnosticReplyIsOneThatThePollReads)
{
    reply(JobModel::simulatedCheckStatusResponseNumOfDepos(3, 2));
    EXPECT_EQ(model().jobs().size(), 3U);
    EXPECT_EQ(model().findJobWithDepoNum(2)->name(), u"(2) Demo 4min.txt");
    EXPECT_EQ(model().findJobWithDepoNum(2)->mediaFiles().size(), 2);
}

class StatusRequestTest : public ServiceEngineTest
{};

TEST_F(StatusRequestTest, NamesTheMachineOnlyWhenOthersJobsAreNotWanted)
{
    addJobAt(11);
    ASSERT_TRUE(Waiting::until([&] { return service.count("checkstatus.php") > 0; }));
    const auto machine = UrlEncoding::urlQueryString(MachineUID::machineUniqueID()).toStdString();
    EXPECT_EQ(service.requests("checkstatus.php").front().body.find(machine), std::string::npos);
    EXPECT_FALSE(model().isOnlyDownloadJobsSentFromThisMachine());
    model().setIsOnlyDownloadJobsSentFromThisMachine(true);
    EXPECT_TRUE(model().isOnlyDownloadJobsSentFromThisMachine());
    EXPECT_TRUE(Waiting::until(
        [&] { return service.requests("checkstatus.php").back().body.find(machine) != std::string::npos; }));
    expectNoRefusals();
}

} // namespace
