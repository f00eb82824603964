// What fails on the road of a job: each endpoint, each way, and recordings that are none.

#include "EngineTest.h"

#include "support/GeneratedMedia.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace {

class JobFaultsTest : public ServiceEngineTest
{
protected:
    void submit(const std::shared_ptr<Job>& job)
    {
        model().addJobsObject(job);
        if (!model().doFindAndProcessJobs())
            model().startJobProcessing();
    }
    void settle() { Waiting::turnMainLoopFor(std::chrono::milliseconds(150)); }
};

enum class Harm { Status500, Reset, Text };

struct FaultCase
{
    const char* name;
    const char* endpoint;
    Harm harm;
    QString error;          // the beginning of the one error presented
    std::vector<int> files; // where the job then is
    int uploadsCounted;
};

class StoppingFaultTest : public JobFaultsTest, public testing::WithParamInterface<FaultCase>
{};

DemoService::Override overrideFor(Harm harm)
{
    switch (harm) {
    case Harm::Status500:
        return {.status = 500, .times = 1};
    case Harm::Reset:
        return {.reset = true, .times = 1};
    case Harm::Text:
        return {.reply = "Not today", .times = 1};
    }
    return {};
}

TEST_P(StoppingFaultTest, PresentsOneErrorAndStopsTheJobWhereItIs)
{
    const FaultCase& tested = GetParam();
    service.addOverride(tested.endpoint, overrideFor(tested.harm));
    const auto job = realJob({u"a.wav"_s}, 0.3);
    submit(job);
    ASSERT_TRUE(stops(job));
    settle();
    EXPECT_EQ(fileStatuses(*job), tested.files);
    ASSERT_EQ(errorTexts().size(), 1) << errorTexts().join(u" | "_s).toStdString();
    EXPECT_TRUE(errorTexts()[0].startsWith(tested.error)) << errorTexts()[0].toStdString();
    EXPECT_EQ(services().errors[0].domain, ErrorDomain::SyncBase);
    ASSERT_EQ(engine->stops.size(), 1U);
    EXPECT_EQ(engine->stops[0].reason, errorTexts()[0]);
    EXPECT_EQ(model().numberOfRunningUploads(), tested.uploadsCounted);
    EXPECT_EQ(service.count(tested.endpoint), 1) << "nothing is tried again";
}

INSTANTIATE_TEST_SUITE_P(
    Endpoints, StoppingFaultTest,
    testing::Values(FaultCase{"Submission500",
                              "jobdetails.php",
                              Harm::Status500,
                              u"Job model, submission of job(0) failed,  cURL error( 22, "_s,
                              {1},
                              0},
                    FaultCase{"SubmissionCut",
                              "jobdetails.php",
                              Harm::Reset,
                              u"Job model, submission of job(0) failed,  cURL error( "_s,
                              {1},
                              0},
                    FaultCase{"SubmissionRefused",
                              "jobdetails.php",
                              Harm::Text,
                              u"Possible error with job(0) submission, response(Not today)"_s,
                              {1},
                              0},
                    FaultCase{"Segment500",
                              "add_segment.php",
                              Harm::Status500,
                              u"Job model, submission of job(883) failed,  cURL error( 22, "_s,
                              {7},
                              0},
                    FaultCase{"SegmentCut",
                              "add_segment.php",
                              Harm::Reset,
                              u"Job model, submission of job(883) failed,  cURL error( "_s,
                              {7},
                              0},
                    FaultCase{"SegmentRefused",
                              "add_segment.php",
                              Harm::Text,
                              u"Possible error with job(883) submission, response(Not today)"_s,
                              {7},
                              0},
                    FaultCase{"Upload500",
                              "test_custupload2.php",
                              Harm::Status500,
                              u"Job model, uploading of job(883) files failed,  cURL error( 22, "_s,
                              {9},
                              1},
                    FaultCase{"UploadCut",
                              "test_custupload2.php",
                              Harm::Reset,
                              u"Job model, uploading of job(883) files failed,  cURL error( "_s,
                              {9},
                              1},
                    FaultCase{"UploadRefused", "test_custupload2.php", Harm::Text, u"Possible file( "_s, {9}, 0}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(JobFaultsTest, AFailedDownloadLeavesTheJobDownloadingAndUncompleted)
{
    service.addOverride("miscstuff.php", {.status = 500});
    const auto job = realJob({u"a.wav"_s}, 0.3);
    submit(job);
    ASSERT_TRUE(stops(job));
    settle();
    EXPECT_EQ(job->status(), 15);
    EXPECT_EQ(fileStatuses(*job), std::vector<int>{17});
    ASSERT_EQ(errorTexts().size(), 1);
    EXPECT_TRUE(errorTexts()[0].startsWith(u"Job model, downloading of job(883) files failed,  cURL error( 22, "_s))
        << errorTexts()[0].toStdString();
    EXPECT_TRUE(model().hasUncompletedLocalJobs());
    EXPECT_FALSE(service.job(883)->delivered);
}

struct PassingCase
{
    const char* name;
    const char* endpoint;
    Harm harm;
    QString error; // empty: none is presented
};

class PassingFaultTest : public JobFaultsTest, public testing::WithParamInterface<PassingCase>
{};

TEST_P(PassingFaultTest, DoesNotStopTheJob)
{
    service.addOverride(GetParam().endpoint, overrideFor(GetParam().harm));
    const auto job = realJob({u"a.wav"_s}, 0.3);
    submit(job);
    ASSERT_TRUE(reaches(job, 17));
    EXPECT_TRUE(engine->stops.empty());
    ASSERT_EQ(errorTexts().size(), GetParam().error.isEmpty() ? 0 : 1);
    if (!errorTexts().isEmpty()) {
        EXPECT_TRUE(errorTexts()[0].startsWith(GetParam().error)) << errorTexts()[0].toStdString();
    }
}

INSTANTIATE_TEST_SUITE_P(
    Endpoints, PassingFaultTest,
    testing::Values(PassingCase{"Format500", "set_media_format.php", Harm::Status500, u"cURL error( 22, "_s},
                    PassingCase{"FormatCut", "set_media_format.php", Harm::Reset, u"cURL error( "_s},
                    PassingCase{"FormatRefused", "set_media_format.php", Harm::Text, {}},
                    PassingCase{"Status500", "checkstatus.php", Harm::Status500,
                                u"Job model, check status failed,  cURL error( 22, "_s},
                    PassingCase{"StatusCut", "checkstatus.php", Harm::Reset,
                                u"Job model, check status failed,  cURL error( "_s},
                    PassingCase{"StatusText", "checkstatus.php", Harm::Text, {}},
                    PassingCase{"Instructions500", "get_instructions.php", Harm::Status500,
                                u"Job model, get instructions failed,  cURL error( 22, "_s},
                    PassingCase{"InstructionsCut", "get_instructions.php", Harm::Reset,
                                u"Job model, get instructions failed,  cURL error( "_s},
                    PassingCase{"InstructionsText", "get_instructions.php", Harm::Text, {}}),
    [](const auto& tested) { return std::string(tested.param.name); });

// Each failed upload is an error of the service's domain, which asks for the log's upload.
TEST_F(JobFaultsTest, AFailedLogUploadIsTriedAgainUntilOneGetsThrough)
{
    services().whenPresented = [this](const Error& error) {
        if (error.domain == ErrorDomain::SyncBase)
            model().uploadLogFile();
    };
    service.addOverride("qpt_debug_upload.php", {.reset = true, .times = 3});
    service.addOverride("jobdetails.php", {.reply = "0 0", .times = 1});
    const auto job = realJob({u"a.wav"_s}, 0.3);
    submit(job);
    ASSERT_TRUE(Waiting::until([&] { return service.logs().size() == 1; }));
    settle();
    EXPECT_EQ(service.logs().size(), 1U);
    ASSERT_EQ(errorTexts().size(), 4) << errorTexts().join(u" | "_s).toStdString();
    EXPECT_EQ(errorTexts()[0], u"Possible error with job(0) submission, response(0 0)");
    for (int i = 1; i < 4; ++i)
        EXPECT_TRUE(errorTexts()[i].startsWith(u"Uploading of log file failed,  cURL error( "_s));
}

TEST_F(JobFaultsTest, AReplyOfBytesThatAreNoTextHarmsNothing)
{
    std::string bytes;
    for (int i = 0; i < 2048; ++i)
        bytes += static_cast<char>(i % 256);
    service.addOverride("checkstatus.php", {.reply = "Depo: \xff\xfe 1 \x80 VOID\nSegment: " + bytes, .times = 3});
    service.addOverride("get_instructions.php", {.reply = bytes, .times = 3});
    service.addOverride("jobdetails.php", {.reply = bytes, .times = 1});
    const auto refused = realJob({u"a.wav"_s}, 0.3);
    submit(refused);
    ASSERT_TRUE(stops(refused));
    const auto job = realJob({u"b.wav"_s}, 0.3);
    submit(job);
    EXPECT_TRUE(reaches(job, 17));
}

// A job whose recording is none ends clearly, and another one goes on.
class BadRecordingTest : public JobFaultsTest
{
protected:
    void expectStopsWhileAnotherCompletes(const std::shared_ptr<Job>& bad)
    {
        const auto good = realJob({u"good.wav"_s}, 0.3);
        submit(bad);
        submit(good);
        ASSERT_TRUE(stops(bad));
        EXPECT_TRUE(reaches(good, 17));
        ASSERT_EQ(engine->stops.size(), 1U);
        const auto file = bad->mediaFiles().first();
        EXPECT_EQ(engine->stops[0].reason, u"No audio could be made of "_s + file->sourceFilePath() + u": "_s +
                                               file->mp3FilePath() + u" cannot be read"_s);
        EXPECT_EQ(file->status(), 8);
        EXPECT_EQ(model().numberOfRunningFfmpegProcesses(), 0);
        EXPECT_TRUE(model().hasUncompletedLocalJobs());
        EXPECT_FALSE(model().isUploadGateBlocked());
        expectNoRefusals();
    }
};

TEST_F(BadRecordingTest, WithoutSound)
{
    expectStopsWhileAnotherCompletes(orderOf({GeneratedMedia::filmWithoutSound(path(u"silent.mp4"_s))}, transcript()));
}

TEST_F(BadRecordingTest, Empty)
{
    expectStopsWhileAnotherCompletes(orderOf({GeneratedMedia::emptyFile(path(u"empty.mov"_s))}, transcript()));
}

TEST_F(BadRecordingTest, ATextWithARecordingsName)
{
    expectStopsWhileAnotherCompletes(orderOf({GeneratedMedia::textFile(path(u"text.mov"_s))}, transcript()));
}

TEST_F(BadRecordingTest, ThatVanishesBeforeItIsConverted)
{
    const auto job = realJob({u"gone.wav"_s}, 0.3);
    const QObject scope; // the connection's end, before what it writes to goes
    QObject::connect(job.get(), &MediaObject::statusChanged, &scope, [&] {
        if (job->status() == 4)
            QFile::remove(path(u"gone.wav"_s));
    });
    expectStopsWhileAnotherCompletes(job);
    EXPECT_FALSE(QFile::exists(path(u"gone.wav"_s)));
}

TEST_F(BadRecordingTest, ThatNeverWas)
{
    const auto job = realJob({u"gone.wav"_s}, 0.3);
    ASSERT_TRUE(QFile::remove(path(u"gone.wav"_s)));
    expectStopsWhileAnotherCompletes(job);
}

TEST_F(BadRecordingTest, FilmsWithSoundAreGood)
{
    const auto job =
        orderOf({GeneratedMedia::film(path(u"film.mp4"_s)), GeneratedMedia::film(path(u"film.mpg"_s))}, transcript());
    submit(job);
    EXPECT_TRUE(reaches(job, 17));
    expectNoRefusals();
}

} // namespace
