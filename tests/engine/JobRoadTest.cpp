// Whole roads of jobs, with real recordings, the real converter and the service over TLS.

#include "EngineTest.h"

#include "support/GeneratedMedia.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

class JobRoadTest : public ServiceEngineTest
{
protected:
    explicit JobRoadTest(DemoService::Options options = {}) : ServiceEngineTest(std::move(options)) {}

    void submit(const std::shared_ptr<Job>& job)
    {
        model().addJobsObject(job);
        if (!model().doFindAndProcessJobs())
            model().startJobProcessing();
    }
    // The contents of every delivered file.
    [[nodiscard]] std::vector<QByteArray> delivered() const
    {
        std::vector<QByteArray> contents;
        QDirIterator files(path(u"delivery"_s), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (files.hasNext())
            contents.push_back(readFile(files.next()));
        return contents;
    }
    [[nodiscard]] QString describe(const DemoService::Segment& segment) const
    {
        return GeneratedMedia::description(writeFile(u"uploaded.mp3"_s, QByteArray::fromStdString(segment.audio)));
    }
    void expectDelivered(int depoNum)
    {
        const auto held = service.job(depoNum);
        ASSERT_TRUE(held);
        EXPECT_TRUE(held->delivered);
        ASSERT_FALSE(held->deliverables.empty());
        const auto contents = delivered();
        EXPECT_GT(contents.size(), held->deliverables.size()) << "packages are unpacked";
        for (const auto& [name, bytes] : held->deliverables) {
            if (QString::fromStdString(name).endsWith(u".zip"_s))
                continue; // Its contents stay, not itself.
            EXPECT_NE(std::find(contents.begin(), contents.end(), QByteArray::fromStdString(bytes)), contents.end())
                << name;
        }
    }
};

TEST_F(JobRoadTest, AJobOfTwoRecordingsIsSubmittedProcessedAndDelivered)
{
    const auto job = realJob({u"first.wav"_s, u"second.wav"_s});
    std::vector<int> statuses{job->status()};
    const QObject scope; // the connection's end, before what it writes to goes
    QObject::connect(job.get(), &MediaObject::statusChanged, &scope, [&] {
        if (statuses.back() != job->status())
            statuses.push_back(job->status());
    });
    submit(job);
    ASSERT_TRUE(reaches(job, 17));
    expectNoRefusals();
    EXPECT_TRUE(errorTexts().isEmpty());
    EXPECT_TRUE(engine->stops.empty());
    EXPECT_EQ(job->orderNum(), 5120);
    EXPECT_EQ(job->depoNum(), 883);
    expectDelivered(883);
    for (const int status : {1, 2, 3, 4, 5, 10, 14, 15, 17})
        EXPECT_NE(std::find(statuses.begin(), statuses.end(), status), statuses.end()) << status;

    const auto held = service.job(883);
    ASSERT_EQ(held->segments.size(), 2U);
    EXPECT_EQ(held->segments[0].sourceName, "first.wav");
    EXPECT_EQ(held->segments[1].sourceName, "second.wav");
    for (const auto& segment : held->segments) {
        EXPECT_EQ(segment.uploads, 1);
        EXPECT_EQ(segment.uploadDurationMs, segment.durationMs);
        EXPECT_TRUE(describe(segment).contains(u"mono"_s));
    }
    EXPECT_EQ(*held->transcript, readFile(path(u"Smith 2 Mar.txt"_s)).toStdString());

    const auto asked = road();
    EXPECT_EQ(asked.front(), "jobdetails.php");
    const auto count = [&](const char* endpoint) { return std::count(asked.begin(), asked.end(), endpoint); };
    EXPECT_EQ(count("jobdetails.php"), 1);
    EXPECT_EQ(count("add_segment.php"), 2);
    EXPECT_EQ(count("set_media_format.php"), 2);
    EXPECT_EQ(count("test_custupload2.php"), 3);
    const auto uploads = service.requests("test_custupload2.php");
    EXPECT_EQ(uploads.back().parts.at(3).fileName, "5120_883.txt[Smith 2 Mar.txt,-1]");
}

TEST_F(JobRoadTest, TheRequestsOfAJobGoOutInTheirOrder)
{
    engine->processor.setMaxNumOfCommandThreads(1);
    const auto job = realJob({u"clip.wav"_s});
    submit(job);
    ASSERT_TRUE(reaches(job, 17));
    expectNoRefusals();
    const auto asked = road();
    const std::vector<std::string> expected{"jobdetails.php", "add_segment.php", "set_media_format.php",
                                            "test_custupload2.php", "test_custupload2.php"};
    ASSERT_GT(asked.size(), expected.size());
    EXPECT_EQ(std::vector<std::string>(asked.begin(), asked.begin() + static_cast<std::ptrdiff_t>(expected.size())),
              expected);
    for (auto request = asked.begin() + static_cast<std::ptrdiff_t>(expected.size()); request != asked.end(); ++request)
        EXPECT_EQ(std::find(expected.begin(), expected.end(), *request), expected.end()) << *request;
    EXPECT_EQ(asked.back(), "test_downloadjob2.php");
    const auto uploads = service.requests("test_custupload2.php");
    EXPECT_TRUE(uploads[0].parts.at(3).fileName.starts_with("5120_883_1.mp3[clip.wav,"))
        << uploads[0].parts.at(3).fileName;
}

TEST_F(JobRoadTest, SeveralJobsGoTheirRoadsSideBySide)
{
    std::vector<std::shared_ptr<Job>> jobs;
    for (const QString& name : {u"a.wav"_s, u"b.wav"_s, u"c.wav"_s})
        jobs.push_back(realJob({name}, 0.3));
    for (const auto& job : jobs)
        submit(job);
    for (const auto& job : jobs)
        EXPECT_TRUE(reaches(job, 17));
    expectNoRefusals();
    EXPECT_EQ(service.jobs().size(), 3U);
    EXPECT_EQ(model().numberOfRunningUploads(), -3) << "each transcript's reply gave back a place";
    EXPECT_TRUE(Waiting::until([&] { return !model().isStatusPollArmed(); })) << "every job is completed";
    EXPECT_TRUE(Waiting::until([&] { return !model().hasUncompletedLocalJobs(); }));
}

TEST_F(JobRoadTest, NamesThatAreHardToSendArriveAsTheyAre)
{
    const QStringList names{u"-dash.wav"_s, u"a \u201cquoted\u201d & [b] = 100% \u00e9\u4e2d.wav"_s,
                            u"it's; {x} #1+2.wav"_s};
    QStringList paths;
    for (const QString& name : names)
        paths.append(GeneratedMedia::sound(path(name), 0.3));
    const auto job = orderOf(paths, transcript(u"M\u00fcller & S\u00f6hne [1].txt"_s));
    submit(job);
    ASSERT_TRUE(reaches(job, 17));
    expectNoRefusals();
    EXPECT_TRUE(errorTexts().isEmpty());
    const auto held = service.job(883);
    for (qsizetype i = 0; i < names.size(); ++i)
        EXPECT_EQ(held->segments[static_cast<std::size_t>(i)].sourceName, names[i].toStdString());
    EXPECT_EQ(held->transcriptName, "M\u00fcller & S\u00f6hne [1].txt");
}

TEST_F(JobRoadTest, RecordingsOfOneNameAreBothSent)
{
    const QStringList paths{GeneratedMedia::sound(path(u"card1/00001.wav"_s), 0.3),
                            GeneratedMedia::sound(path(u"card2/00001.wav"_s), 1.5)};
    const auto job = orderOf(paths, transcript());
    submit(job);
    ASSERT_TRUE(reaches(job, 17));
    const auto held = service.job(883);
    EXPECT_GT(held->segments[1].audio.size(), held->segments[0].audio.size());
    EXPECT_EQ(held->segments[0].sourceName, "00001.wav");
    EXPECT_EQ(held->segments[1].sourceName, "00001.wav");
    expectNoRefusals();
}

// The service relates an upload to its job by the name alone, so it cannot know this one.
TEST_F(JobRoadTest, ATranscriptWithoutAPointIsSentUnderTheEmptyName)
{
    const auto job = orderOf({GeneratedMedia::sound(path(u"a.wav"_s), 0.3)}, transcript(u"Smith"_s));
    submit(job);
    ASSERT_TRUE(stops(job));
    const auto uploads = service.requests("test_custupload2.php");
    ASSERT_EQ(uploads.size(), 2U);
    EXPECT_EQ(uploads[1].parts.at(3).fileName, "");
    ASSERT_EQ(errorTexts().size(), 1);
    EXPECT_TRUE(
        errorTexts()[0].startsWith(u"Possible file( "_s + path(u"Smith"_s) + u" ) uploading error for job(883)"_s));
}

TEST_F(JobRoadTest, AJobThatOnlyTheServiceKnowsIsDelivered)
{
    const int number = service.addServerJob("Brown 3 May.txt", 2);
    model().startJobProcessing();
    ASSERT_TRUE(Waiting::until([&] { return model().findJobWithDepoNum(number) != nullptr; }));
    const auto job = model().findJobWithDepoNum(number);
    ASSERT_TRUE(reaches(job, 17));
    EXPECT_TRUE(job->serverJob());
    expectDelivered(number);
    expectNoRefusals();
    EXPECT_EQ(service.count("jobdetails.php"), 0);
}

TEST_F(JobRoadTest, TheServicesWishForTheLogIsFulfilledOnce)
{
    service.setSendLogs();
    model().startJobProcessing();
    ASSERT_TRUE(Waiting::until([&] { return log.contains(u"Log file is uploaded"_s); }));
    Waiting::turnMainLoopFor(std::chrono::milliseconds(150));
    const auto logs = service.logs();
    ASSERT_EQ(logs.size(), 1U);
    EXPECT_EQ(logs[0].name, "debug.txt");
    EXPECT_NE(logs[0].content.find("Will upload log file"), std::string::npos) << "queued lines reach the file first";
    EXPECT_EQ(logs[0].content.find("demo1234"), std::string::npos);
    expectNoRefusals();
}

class WaitingJobTest : public JobRoadTest
{
protected:
    WaitingJobTest() { service.setTurnaround(std::chrono::hours(1)); }
};

TEST_F(WaitingJobTest, AWithdrawnJobIsRemoved)
{
    const auto job = realJob({u"a.wav"_s}, 0.3);
    submit(job);
    ASSERT_TRUE(Waiting::until([&] { return job->status() == 11 && job->transcriptUploaded(); }));
    EXPECT_EQ(job->serverStatus(), u"Splitting");
    ASSERT_TRUE(service.voidJob(883));
    EXPECT_TRUE(Waiting::until([&] { return model().jobs().empty(); }));
    EXPECT_TRUE(errorTexts().isEmpty());
}

TEST_F(WaitingJobTest, AfterAResetTheJobComesBackAsTheServers)
{
    const auto job = realJob({u"a.wav"_s}, 0.3);
    submit(job);
    ASSERT_TRUE(Waiting::until([&] { return job->status() == 11 && job->transcriptUploaded(); }));
    model().resetAndLoadFromServer();
    ASSERT_TRUE(Waiting::until([&] { return model().findJobWithDepoNum(883) != nullptr; }));
    const auto again = model().findJobWithDepoNum(883);
    EXPECT_NE(again, job);
    EXPECT_TRUE(again->serverJob());
    service.setTurnaround(std::chrono::milliseconds(0));
    EXPECT_TRUE(reaches(again, 17));
}

struct AgainCase
{
    const char* name;
    DemoService::Channels channels;
    QString words;
};

class ReprocessTest : public JobRoadTest, public testing::WithParamInterface<AgainCase>
{
protected:
    ReprocessTest() : JobRoadTest(asking(GetParam().channels)) {}

private:
    static DemoService::Options asking(DemoService::Channels channels)
    {
        DemoService::Options options;
        options.again = {{1, channels}, {3, channels}};
        return options;
    }
};

TEST_P(ReprocessTest, SendsTheSegmentsAgainAndNothingElse)
{
    const QStringList paths{GeneratedMedia::sound(path(u"a.wav"_s), 0.5, 2),
                            GeneratedMedia::sound(path(u"b.wav"_s), 0.5, 2),
                            GeneratedMedia::sound(path(u"c.wav"_s), 0.5, 2)};
    const auto job = orderOf(paths, transcript());
    submit(job);
    ASSERT_TRUE(reaches(job, 17));
    expectNoRefusals();
    EXPECT_TRUE(errorTexts().isEmpty());
    const auto held = service.job(883);
    EXPECT_EQ(held->segments[0].uploads, 2);
    EXPECT_EQ(held->segments[1].uploads, 1);
    EXPECT_EQ(held->segments[2].uploads, 2);
    EXPECT_TRUE(describe(held->segments[0]).contains(GetParam().words)) << describe(held->segments[0]).toStdString();
    EXPECT_TRUE(describe(held->segments[1]).contains(u"mono"_s));
    EXPECT_EQ(service.count("add_segment.php"), 3);
    EXPECT_EQ(service.count("test_custupload2.php"), 6) << "the transcript goes out once";
    EXPECT_GE(logLines(u"info"_s, u"Will reprocess job #883"_s), 1);
    expectDelivered(883);
}

INSTANTIATE_TEST_SUITE_P(Channels, ReprocessTest,
                         testing::Values(AgainCase{"Stereo", DemoService::Channels::Stereo, u"stereo"_s},
                                         AgainCase{"Mono", DemoService::Channels::Mono, u"mono"_s}),
                         [](const auto& tested) { return std::string(tested.param.name); });

} // namespace
