// Trying again what stopped.

#include "EngineTest.h"

#include "commands/SubmitJobDetailsCommand.h"
#include "commands/UploadCommand.h"
#include "support/GeneratedMedia.h"

#include <QDir>
#include <QFile>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

// The real road, with a fault on it that is gone when the user tries again.
class RetryRoadTest : public ServiceEngineTest
{
protected:
    void stopAndRetry(const std::shared_ptr<Job>& job)
    {
        submit(job);
        ASSERT_TRUE(stops(job));
        ASSERT_TRUE(model().canRetryJob(job));
        service.clearOverrides();
        EXPECT_TRUE(model().retryJob(job));
        EXPECT_FALSE(model().canRetryJob(job));
        EXPECT_TRUE(reaches(job, JobStatusCompleted));
        EXPECT_EQ(errorTexts().size(), 1) << errorTexts().join(u" | "_s).toStdString();
        expectNoRefusals();
    }
    void submit(const std::shared_ptr<Job>& job)
    {
        QObject::connect(&model(), &JobModel::jobMayBeHeldTwice, &m_scope, [this] { ++toldTwice; });
        model().addJobsObject(job);
        model().startJobProcessing();
    }

    // Where the first result file lies, or would.
    [[nodiscard]] QString deliveredText() const
    {
        const QStringList folders = QDir(path(u"delivery"_s)).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        EXPECT_EQ(folders.size(), 1);
        return path(u"delivery/"_s + folders.value(0) + u"/Universal_ASCII/Smith 2 Mar.txt"_s);
    }

    int toldTwice = 0;

private:
    QObject m_scope;
};

TEST_F(RetryRoadTest, ASubmissionThatWasRefused)
{
    service.addOverride("jobdetails.php", {.reply = "0 0"});
    stopAndRetry(realJob({u"a.wav"_s, u"b.wav"_s}));
    EXPECT_EQ(toldTwice, 0) << "the service said no";
    EXPECT_EQ(service.jobs().size(), 1U);
}

TEST_F(RetryRoadTest, ASubmissionWhoseReplyWasLostIsToldToBePerhapsThereTwice)
{
    service.addOverride("jobdetails.php", {.cutAt = 2});
    const auto job = realJob({u"a.wav"_s});
    submit(job);
    // Half a reply may be a reply: "51" is an order without a deposition.
    ASSERT_TRUE(stops(job));
    service.clearOverrides();
    ASSERT_TRUE(model().retryJob(job));
    EXPECT_EQ(toldTwice, 1);
    EXPECT_TRUE(log.contains(u"may now hold it twice"_s));
    EXPECT_TRUE(reaches(job, JobStatusCompleted));
}

TEST_F(RetryRoadTest, ASegmentThatWasRefused)
{
    service.addOverride("add_segment.php", {.reply = "later", .times = 1});
    stopAndRetry(realJob({u"a.wav"_s, u"b.wav"_s}));
}

TEST_F(RetryRoadTest, AnUploadThatFailedFreesThePlaceThatItKept)
{
    model().setMaxNumberOfRunningUploads(1);
    service.addOverride("test_custupload2.php", {.status = 500, .times = 1});
    const auto job = realJob({u"a.wav"_s, u"b.wav"_s});
    stopAndRetry(job);
    EXPECT_EQ(model().numberOfRunningUploads(), -1) << "as after every job, by its transcript's reply";
}

TEST_F(RetryRoadTest, AnUploadThatWasRefused)
{
    model().setMaxNumberOfRunningUploads(1);
    service.addOverride("test_custupload2.php", {.reply = "DISK FULL", .times = 1});
    stopAndRetry(realJob({u"a.wav"_s, u"b.wav"_s}));
}

TEST_F(RetryRoadTest, ATranscriptThatWasRefused)
{
    service.addOverride("test_custupload2.php", {.delay = std::chrono::milliseconds(1), .times = 1});
    service.addOverride("test_custupload2.php", {.reply = "DISK FULL", .times = 1});
    stopAndRetry(realJob({u"a.wav"_s}));
}

TEST_F(RetryRoadTest, ADownloadThatFailed)
{
    service.addOverride("miscstuff.php", {.status = 500});
    stopAndRetry(realJob({u"a.wav"_s}));
}

TEST_F(RetryRoadTest, ADeliveryWithProblemsIsFetchedAnewThoughTheJobIsCompleted)
{
    service.addOverride("test_downloadjob2.php", {.where = "starting_point=0&file_num=0", .status = 500, .times = 1});
    const auto job = realJob({u"a.wav"_s});
    submit(job);
    ASSERT_TRUE(reaches(job, JobStatusCompleted));
    ASSERT_TRUE(model().canRetryJob(job));
    const QString text = deliveredText();
    EXPECT_FALSE(QFile::exists(text)) << "it came";
    ASSERT_TRUE(model().retryJob(job));
    EXPECT_EQ(job->status(), JobStatusDownloading);
    EXPECT_FALSE(model().canRetryJob(job)) << "it is under way";
    EXPECT_TRUE(reaches(job, JobStatusCompleted));
    EXPECT_TRUE(QFile::exists(text));
    EXPECT_FALSE(model().canRetryJob(job)) << "all is here";
    EXPECT_EQ(errorTexts(), QStringList());
}

TEST_F(RetryRoadTest, ADeliveryThatStopsWhenItIsFetchedAnewCanBeTriedOnceMore)
{
    service.addOverride("test_downloadjob2.php", {.where = "starting_point=0&file_num=0", .status = 500, .times = 1});
    const auto job = realJob({u"a.wav"_s});
    submit(job);
    ASSERT_TRUE(reaches(job, JobStatusCompleted));
    service.addOverride("miscstuff.php", {.status = 500});
    ASSERT_TRUE(model().retryJob(job));
    ASSERT_TRUE(stops(job));
    service.clearOverrides();
    // The service calls it done: no reply of its asks for the files again.
    ASSERT_TRUE(model().retryJob(job));
    EXPECT_TRUE(reaches(job, JobStatusCompleted));
    EXPECT_TRUE(QFile::exists(deliveredText()));
}

TEST_F(RetryRoadTest, ARecordingThatIsPutRight)
{
    model().setMaxNumberOfRunningUploads(1);
    const QString recording = GeneratedMedia::textFile(path(u"a.wav"_s));
    const auto job = orderOf({recording}, transcript());
    submit(job);
    ASSERT_TRUE(stops(job));
    (void)GeneratedMedia::sound(recording, 1);
    EXPECT_TRUE(model().retryJob(job));
    EXPECT_TRUE(reaches(job, JobStatusCompleted));
}

// Each case alone, with commands that the test answers.
class RetryTest : public EngineTest
{
protected:
    std::shared_ptr<UploadCommand> uploadOf(const std::shared_ptr<Job>& job, qsizetype file)
    {
        model().uploadMediaFile(job->mediaFiles().at(file), job);
        std::vector<std::shared_ptr<UploadCommand>> posted;
        EXPECT_TRUE(Waiting::until([&] { return !(posted = takeCommandsOf<UploadCommand>()).empty(); }));
        EXPECT_TRUE(Waiting::until([&] { return job->mediaFiles().at(file)->status() == JobStatusUploading; }));
        return posted.at(0);
    }
    std::shared_ptr<Job> jobToUpload()
    {
        const auto job = addJobAt(JobStatusSegmentAdded, {u"a.mov"_s, u"b.mov"_s});
        for (const auto& file : job->mediaFiles())
            file->setMp3FilePath(writeFile(file->name() + u".mp3"_s, "sound"));
        return job;
    }
};

TEST_F(RetryTest, AJobThatIsUnderWayHasNothingToTry)
{
    const auto job = addJobAt(JobStatusUploading);
    EXPECT_FALSE(model().canRetryJob(job));
    EXPECT_FALSE(model().retryJob(job));
    EXPECT_EQ(fileStatuses(*job), std::vector{JobStatusUploading + 0});
}

TEST_F(RetryTest, WhatIsUnderWayBesideTheStoppedFileIsLeftAlone)
{
    model().setMaxNumberOfRunningUploads(4);
    const auto job = jobToUpload();
    const auto failed = uploadOf(job, 0);
    const auto running = uploadOf(job, 1);
    answer(*failed, "DISK FULL");
    ASSERT_TRUE(model().retryJob(job));
    std::vector<std::shared_ptr<UploadCommand>> posted;
    EXPECT_TRUE(Waiting::until([&] { return !(posted = takeCommandsOf<UploadCommand>()).empty(); }));
    Waiting::turnMainLoopFor(std::chrono::milliseconds(50));
    EXPECT_EQ(posted.size() + takeCommandsOf<UploadCommand>().size(), 1U);
    EXPECT_EQ(posted.at(0)->uploadedObject(), job->mediaFiles().at(0));
    answer(*running, "UPLOAD COMPLETE");
    answer(*posted.at(0), "UPLOAD COMPLETE");
    EXPECT_EQ(fileStatuses(*job), (std::vector<int>{JobStatusUploaded, JobStatusUploaded}));
}

TEST_F(RetryTest, NothingThatWasNeverSentIsToldToBeThereTwice)
{
    int toldTwice = 0;
    const QObject scope;
    QObject::connect(&model(), &JobModel::jobMayBeHeldTwice, &scope, [&] { ++toldTwice; });
    const auto job = addJobAt(JobStatusIdle);
    model().submitJobDetails(job);
    const auto command = takeCommandsOf<SubmitJobDetailsCommand>().at(0);
    command->execute(); // to a port that nobody listens at
    model().curlCommandFailed(*command);
    ASSERT_TRUE(model().retryJob(job));
    EXPECT_EQ(toldTwice, 0);
    EXPECT_EQ(fileStatuses(*job), std::vector{JobStatusIdle + 0});
}

TEST_F(RetryTest, WordsThatAreNoRefusalMayHideASubmissionThatCameThrough)
{
    int toldTwice = 0;
    const QObject scope;
    QObject::connect(&model(), &JobModel::jobMayBeHeldTwice, &scope, [&] { ++toldTwice; });
    for (const QString& reply : {u""_s, u"3"_s, u"0"_s, u"x 883"_s, u"<html>"_s}) {
        const auto job = addJobAt(JobStatusSubmittingDetails);
        model().processJobSubmitJobDetailsResponse(job, reply);
        EXPECT_TRUE(model().retryJob(job));
    }
    EXPECT_EQ(toldTwice, 5);
}

TEST_F(RetryTest, ATranscriptWhoseReplyAloneWasLostIsNotSentIntoADelivery)
{
    const auto job = addJobAt(JobStatusUploaded);
    model().uploadTranscript(job); // which is not there
    ASSERT_TRUE(model().canRetryJob(job));
    job->setStatus(JobStatusCompleted);
    EXPECT_FALSE(model().canRetryJob(job));
    EXPECT_FALSE(model().retryJob(job));
}

TEST_F(RetryTest, OfAJobThatLeftTheListNothingIsKept)
{
    const auto job = addJobAt(JobStatusSubmittingDetails);
    model().removeJobsObject(job);
    model().processJobSubmitJobDetailsResponse(job, u"no"_s);
    EXPECT_FALSE(model().canRetryJob(job));
}

TEST_F(RetryTest, AFileThatTheServiceAsksForAgainIsNotSentTwice)
{
    model().setMaxNumberOfRunningUploads(4);
    const auto job = jobToUpload();
    const auto failed = uploadOf(job, 0);
    answer(*failed, "DISK FULL");
    job->setStatus(JobStatusOnServer);
    model().processStatusForSegment(1, 883, u"Processing_Media_Mono"_s, 0, -1);
    model().reprocessJob(job);
    job->mediaFiles().first()->setStatus(JobStatusConverting);
    EXPECT_FALSE(model().canRetryJob(job)) << "it is under way";
    model().endWork();
}

TEST_F(RetryTest, AJobThatWasRemovedHasNothingToTry)
{
    const auto job = addJobAt(JobStatusSubmittingDetails);
    model().processJobSubmitJobDetailsResponse(job, u"no"_s);
    ASSERT_TRUE(model().canRetryJob(job));
    model().removeJobsObject(job);
    EXPECT_FALSE(model().canRetryJob(job));
}

} // namespace
