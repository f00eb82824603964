// Registering a job and announcing its segments: requests and replies.

#include "EngineTest.h"

#include "commands/AddJobSegmentsCommand.h"
#include "commands/SetMediaFormatCommand.h"
#include "commands/SubmitJobDetailsCommand.h"

using namespace Qt::StringLiterals;

namespace {

const QStringList twoFiles{u"a.mov"_s, u"b.mov"_s};

class SubmissionTest : public EngineTest
{
protected:
    SubmissionTest() { (void)takeCommands(); }
    std::shared_ptr<Job> newJob(const QStringList& media = twoFiles)
    {
        auto job = jobOf(media);
        model().addJobsObject(job);
        (void)takeCommands();
        return job;
    }
};

TEST_F(SubmissionTest, SubmittingAJobPostsItsDetailsAndMovesItOn)
{
    const auto job = newJob();
    model().submitJobDetails(job);
    const auto commands = takeCommands();
    ASSERT_EQ(commands.size(), 1U);
    const auto submit = std::dynamic_pointer_cast<SubmitJobDetailsCommand>(commands.front());
    ASSERT_TRUE(submit);
    EXPECT_EQ(submit->job(), job);
    EXPECT_EQ(submit->observer(), &model());
    EXPECT_EQ(fileStatuses(*job), (std::vector<int>{1, 1}));
    EXPECT_EQ(job->status(), 1);
}

TEST_F(SubmissionTest, TheNumbersOfTheReplyAreStoredAndEveryFileMovesOn)
{
    const auto job = newJob();
    model().submitJobDetails(job);
    answer(*takeCommands().front(), "5120 883");
    EXPECT_EQ(job->orderNum(), 5120);
    EXPECT_EQ(job->depoNum(), 883);
    EXPECT_EQ(fileStatuses(*job), (std::vector<int>{2, 2}));
    EXPECT_EQ(job->status(), 2);
    EXPECT_TRUE(errorTexts().isEmpty());
    EXPECT_TRUE(engine->stops.empty());
    EXPECT_EQ(logLines(u"info"_s, u"SubmitJobDetails command response = 5120 883"_s), 1);
    EXPECT_EQ(logLines(u"info"_s, u"Job status after submitting details: 2"_s), 1);
}

struct ReplyCase
{
    const char* name;
    const char* reply;
    int orderNum;
    int depoNum;
};

class RefusedSubmissionTest : public SubmissionTest, public testing::WithParamInterface<ReplyCase>
{};

TEST_P(RefusedSubmissionTest, IsPresentedAndLeavesTheJobWhereItIs)
{
    const auto job = newJob();
    model().submitJobDetails(job);
    answer(*takeCommands().front(), GetParam().reply);
    EXPECT_EQ(job->orderNum(), GetParam().orderNum);
    EXPECT_EQ(job->depoNum(), GetParam().depoNum);
    EXPECT_EQ(fileStatuses(*job), (std::vector<int>{1, 1}));
    EXPECT_EQ(job->status(), 1);
    const QString text = u"Possible error with job("_s + QString::number(GetParam().depoNum) +
                         u") submission, response("_s + QString::fromLatin1(GetParam().reply) + u")"_s;
    EXPECT_EQ(services().errors, (QList<Error>{{ErrorDomain::SyncBase, 0, text}}));
    ASSERT_EQ(engine->stops.size(), 1U);
    EXPECT_EQ(engine->stops.front().job, job);
    EXPECT_EQ(engine->stops.front().reason, text);
    EXPECT_EQ(logLines(u"info"_s, u"Job status after submitting details: 1"_s), 1);
}

INSTANTIATE_TEST_SUITE_P(
    Replies, RefusedSubmissionTest,
    testing::Values(ReplyCase{"Zeros", "0 0", 0, 0}, ReplyCase{"Empty", "", 0, 0},
                    ReplyCase{"Words", "Invalid user name or password", 0, 0}, ReplyCase{"OneNumber", "5120", 5120, 0},
                    ReplyCase{"OneNumberAndABlank", "5120 ", 5120, 0}, ReplyCase{"NoOrderNumber", "0 883", 0, 883},
                    ReplyCase{"NoDepositionNumber", "5120 0", 5120, 0},
                    ReplyCase{"TheFirstBlankEndsTheFirstNumber", " 5120 883", 0, 5120},
                    ReplyCase{"AnotherSeparator", "5120\t883", 5120, 0}, ReplyCase{"AWordFirst", "x5120 883", 0, 883}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(SubmissionTest, LeadingNumbersAreEnough)
{
    const auto job = newJob();
    model().processJobSubmitJobDetailsResponse(job, u"5120abc   883 and more\n"_s);
    EXPECT_EQ(job->orderNum(), 5120);
    EXPECT_EQ(job->depoNum(), 883);
    EXPECT_EQ(job->status(), 2);
}

TEST_F(SubmissionTest, HugeNumbersStopAtTheEndOfANumber)
{
    const auto job = newJob();
    model().processJobSubmitJobDetailsResponse(job, u"99999999999999 99999999999999999"_s);
    EXPECT_EQ(job->orderNum(), 2147483647);
    EXPECT_EQ(job->depoNum(), 2147483647);
}

TEST_F(SubmissionTest, ASegmentIsAnnouncedWithItsFormatBesideIt)
{
    const auto job = addJobAt(6, twoFiles);
    (void)takeCommands();
    const auto file = job->mediaFiles().at(1);
    model().addMediaFileSegment(file, job);
    EXPECT_EQ(fileStatuses(*job), (std::vector<int>{6, 7}));
    const auto commands = takeCommands();
    ASSERT_EQ(commands.size(), 2U);
    const auto segment = std::dynamic_pointer_cast<AddJobSegmentsCommand>(commands[0]);
    const auto format = std::dynamic_pointer_cast<SetMediaFormatCommand>(commands[1]);
    ASSERT_TRUE(segment && format);
    EXPECT_EQ(segment->job(), job);
    EXPECT_EQ(segment->mediaFile(), file);
    EXPECT_EQ(format->job(), job);
    EXPECT_EQ(format->mediaFile(), file);
    EXPECT_EQ(segment->observer(), &model());
    EXPECT_EQ(format->observer(), &model());
}

TEST_F(SubmissionTest, AnEmptyReplyAcceptsTheSegmentWhichIsThenUploaded)
{
    const auto job = addJobAt(6);
    const auto file = job->mediaFiles().first();
    file->setMp3FilePath(writeFile(u"a.mp3"_s, "sound"));
    model().addMediaFileSegment(file, job);
    const auto segment = takeCommandsOf<AddJobSegmentsCommand>();
    ASSERT_EQ(segment.size(), 1U);
    answer(*segment.front(), "");
    EXPECT_EQ(logLines(u"info"_s, u"addMediaFileSegment command response = "_s), 1);
    EXPECT_TRUE(Waiting::until([&] { return file->status() == 9; }));
    EXPECT_TRUE(errorTexts().isEmpty());
}

TEST_F(SubmissionTest, AnyOtherReplyRefusesTheSegmentEvenABlank)
{
    for (const QByteArray& reply : {QByteArray(" "), QByteArray("\n"), QByteArray("Unknown deposition")}) {
        restartEngine();
        const auto job = addJobAt(6);
        model().addMediaFileSegment(job->mediaFiles().first(), job);
        const auto segment = takeCommandsOf<AddJobSegmentsCommand>();
        ASSERT_EQ(segment.size(), 1U);
        answer(*segment.front(), reply);
        const QString text =
            u"Possible error with job(883) submission, response("_s + QString::fromUtf8(reply) + u")"_s;
        EXPECT_EQ(services().errors, (QList<Error>{{ErrorDomain::SyncBase, 0, text}}));
        ASSERT_EQ(engine->stops.size(), 1U);
        EXPECT_EQ(engine->stops.front().reason, text);
        Waiting::turnMainLoopFor(std::chrono::milliseconds(30));
        EXPECT_EQ(fileStatuses(*job), std::vector<int>{7});
        EXPECT_TRUE(takeCommands().empty());
    }
}

TEST_F(SubmissionTest, TheFormatsReplyChangesNothingWhateverItSays)
{
    const auto job = addJobAt(7);
    model().processJobSetMediaFileFormatResponse(job, job->mediaFiles().first(), u"No such thing"_s);
    EXPECT_EQ(fileStatuses(*job), std::vector<int>{7});
    EXPECT_EQ(job->status(), 7);
    EXPECT_TRUE(errorTexts().isEmpty());
    EXPECT_TRUE(engine->stops.empty());
    EXPECT_EQ(logLines(u"info"_s, u"setMediaFileFormat command response = No such thing"_s), 1);
}

} // namespace
