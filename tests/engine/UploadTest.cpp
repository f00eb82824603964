// Sending recordings and transcripts: what is posted, what the replies do, and the gate.

#include "EngineTest.h"

#include "commands/AddJobSegmentsCommand.h"
#include "commands/UploadCommand.h"
#include "foundation/Assertion.h"

using namespace Qt::StringLiterals;

namespace {

using Uploads = std::vector<std::shared_ptr<UploadCommand>>;

class UploadTest : public EngineTest
{
protected:
    // A job whose converted recordings are there and accepted, with a transcript.
    std::shared_ptr<Job> acceptedJob(const QStringList& names, int depoNum = 883)
    {
        auto job = addJobAt(8, names, depoNum);
        job->setTranscriptFile(writeFile(u"Smith 2 Mar.txt"_s, "Q. Is it so?\r\n"));
        for (const auto& file : job->mediaFiles())
            file->setMp3FilePath(
                writeFile(u"temp/"_s + QString::number(depoNum) + u"/"_s + file->name() + u".mp3"_s, "the sound"));
        (void)takeCommands();
        return job;
    }
    // Waits until so many uploads are posted, and no more are.
    Uploads uploads(std::size_t number)
    {
        Uploads found;
        const auto take = [&] {
            for (const auto& upload : takeCommandsOf<UploadCommand>())
                found.push_back(upload);
        };
        EXPECT_TRUE(Waiting::until([&] {
            take();
            return found.size() >= number;
        }));
        Waiting::turnMainLoopFor(std::chrono::milliseconds(40));
        take();
        EXPECT_EQ(found.size(), number);
        return found;
    }
    Uploads uploadAll(const std::shared_ptr<Job>& job)
    {
        for (const auto& file : job->mediaFiles())
            model().uploadMediaFile(file, job);
        return uploads(static_cast<std::size_t>(job->mediaFiles().size()));
    }
};

TEST_F(UploadTest, ARecordingIsPostedWithItsSizeAndSetToUploading)
{
    const auto job = acceptedJob({u"a.mov"_s});
    const auto posted = uploadAll(job);
    ASSERT_EQ(posted.size(), 1U);
    const auto file = job->mediaFiles().first();
    EXPECT_EQ(posted[0]->job(), job);
    EXPECT_EQ(posted[0]->uploadedObject(), file);
    EXPECT_EQ(posted[0]->observer(), &model());
    EXPECT_EQ(file->mp3TotalFileSize(), 9);
    EXPECT_EQ(file->status(), 9);
    EXPECT_EQ(model().numberOfRunningUploads(), 1);
    EXPECT_EQ(logLines(u"info"_s, u"Will upload media file: "_s + file->mp3FilePath()), 1);
}

TEST_F(UploadTest, TheNamesAreThoseThatTheServiceRelatesToTheJob)
{
    const auto job = acceptedJob({u"a.mov"_s, u"clip.mov"_s});
    job->mediaFiles().at(1)->setMp3Duration(247.9F);
    EXPECT_EQ(model().transcriptDestFileNameForJob(*job), u"5120_883.txt[Smith 2 Mar.txt,-1]"_s);
    EXPECT_EQ(model().mediaDestFileNameForJob(*job, 2), u"5120_883_2.mp3[clip.mov,247000]"_s);
}

TEST_F(UploadTest, TheTranscriptIsSentOnceAfterTheLastRecording)
{
    const auto job = acceptedJob({u"a.mov"_s, u"b.mov"_s});
    const auto posted = uploadAll(job);
    ASSERT_EQ(posted.size(), 2U);
    answer(*posted[1], "UPLOAD COMPLETE");
    EXPECT_TRUE(uploads(0).empty());
    EXPECT_EQ(job->status(), 9);
    answer(*posted[0], "UPLOAD COMPLETE");
    const auto transcripts = uploads(1);
    ASSERT_EQ(transcripts.size(), 1U);
    EXPECT_EQ(transcripts[0]->uploadedObject(), job);
    EXPECT_EQ(transcripts[0]->job(), job);
    EXPECT_EQ(transcripts[0]->observer(), &model());
    EXPECT_FALSE(job->transcriptUploaded());
    answer(*transcripts[0], "UPLOAD COMPLETE");
    EXPECT_TRUE(job->transcriptUploaded());
    EXPECT_EQ(job->status(), 10);
    EXPECT_EQ(fileStatuses(*job), (std::vector<int>{10, 10}));
    EXPECT_TRUE(uploads(0).empty());
    EXPECT_EQ(
        logLines(u"info"_s, u"Job = 883, media file name = a.mov, upload file command response = UPLOAD COMPLETE"_s),
        1);
    EXPECT_EQ(logLines(u"info"_s,
                       u"Job = 883, all media files are uploaded. Will upload transcript: "_s + job->transcriptFile()),
              1);
    EXPECT_EQ(logLines(u"info"_s, u"Job = 883, all files are uploaded"_s), 1);
    EXPECT_TRUE(errorTexts().isEmpty());
    EXPECT_TRUE(engine->stops.empty());
}

// The service may go on with a job before the reply to its last upload is here.
TEST_F(UploadTest, ALateReplyToTheTranscriptDoesNotTakeTheJobBackFromItsDelivery)
{
    for (const auto& [status, after] : {std::pair(9, 10), std::pair(10, 10), std::pair(11, 10), std::pair(12, 12),
                                        std::pair(14, 14), std::pair(15, 15), std::pair(17, 17)}) {
        const auto job = acceptedJob({u"a.mov"_s}, status);
        job->setStatus(status);
        model().processJobUploadedJobFileResponse(job, job, u"UPLOAD COMPLETE"_s);
        EXPECT_EQ(job->status(), after) << status;
        EXPECT_TRUE(job->transcriptUploaded());
    }
}

TEST_F(UploadTest, AnyOtherReplyIsAnErrorEvenWithALineEndAfterTheWords)
{
    for (const QByteArray& reply : {QByteArray("UPLOAD COMPLETE\n"), QByteArray("upload complete"), QByteArray(),
                                    QByteArray(" UPLOAD COMPLETE"), QByteArray("disk full")}) {
        restartEngine();
        const auto job = acceptedJob({u"a.mov"_s});
        const auto posted = uploadAll(job);
        ASSERT_EQ(posted.size(), 1U);
        answer(*posted[0], reply);
        const QString said = QString::fromUtf8(reply);
        const QString text = u"Possible file( "_s + job->mediaFiles().first()->mp3FilePath() +
                             u" ) uploading error for job(883), server resonse( "_s + said + u" )"_s;
        EXPECT_EQ(services().errors, (QList<Error>{{ErrorDomain::SyncBase, 0, text}}));
        ASSERT_EQ(engine->stops.size(), 1U);
        EXPECT_EQ(engine->stops[0].job, job);
        EXPECT_EQ(engine->stops[0].reason, text);
        EXPECT_EQ(fileStatuses(*job), std::vector<int>{9});
        EXPECT_EQ(model().numberOfRunningUploads(), 0) << "a reply is a reply";
        EXPECT_TRUE(uploads(0).empty()) << "nothing is tried again";
        EXPECT_GE(logLines(u"error"_s, u"Job = 883, upload file command response = "_s + said), 1);
    }
}

TEST_F(UploadTest, ARefusedTranscriptIsPresentedWithItsOwnPath)
{
    const auto job = acceptedJob({u"a.mov"_s});
    model().uploadTranscript(job);
    const auto posted = uploads(1);
    ASSERT_EQ(posted.size(), 1U);
    answer(*posted[0], "no");
    EXPECT_EQ(errorTexts(), QStringList{u"Possible file( "_s + job->transcriptFile() +
                                        u" ) uploading error for job(883), server resonse( no )"_s});
    EXPECT_FALSE(job->transcriptUploaded());
    EXPECT_EQ(engine->stops.size(), 1U);
}

TEST_F(UploadTest, ARecordingThatCannotBeReadStopsTheJobAndKeepsItsPlaceAtTheGate)
{
    const auto job = acceptedJob({u"a.mov"_s});
    const auto file = job->mediaFiles().first();
    file->setMp3FilePath(path(u"gone.mp3"_s));
    file->setMp3TotalFileSize(5);
    model().uploadMediaFile(file, job);
    ASSERT_TRUE(Waiting::until([&] { return !engine->stops.empty(); }));
    EXPECT_EQ(engine->stops[0].job, job);
    EXPECT_EQ(engine->stops[0].reason, u"No audio could be made of "_s + file->sourceFilePath() + u": "_s +
                                           path(u"gone.mp3"_s) + u" cannot be read"_s);
    EXPECT_EQ(file->status(), 8);
    EXPECT_EQ(file->mp3TotalFileSize(), std::nullopt);
    EXPECT_EQ(model().numberOfRunningUploads(), 1);
    EXPECT_TRUE(uploads(0).empty());
    EXPECT_TRUE(errorTexts().isEmpty());
}

TEST_F(UploadTest, ATranscriptThatCannotBeReadStopsTheJob)
{
    const auto job = acceptedJob({u"a.mov"_s});
    job->setTranscriptFile(path(u"gone.txt"_s));
    const auto posted = uploadAll(job);
    ASSERT_EQ(posted.size(), 1U);
    answer(*posted[0], "UPLOAD COMPLETE");
    ASSERT_EQ(engine->stops.size(), 1U);
    EXPECT_EQ(engine->stops[0].reason, u"The transcript "_s + path(u"gone.txt"_s) + u" cannot be read"_s);
    EXPECT_TRUE(uploads(0).empty());
    EXPECT_EQ(model().numberOfRunningUploads(), 0);
}

TEST_F(UploadTest, AFileThatIsNotTheJobsIsAProgrammingError)
{
    const auto job = acceptedJob({u"a.mov"_s});
    const auto stranger = MediaFile::mediaFileWithPath(path(u"b.mov"_s));
    if constexpr (Assertion::stopsTheProgram) {
        EXPECT_DEATH(
            {
                model().uploadMediaFile(stranger, job);
                Waiting::turnMainLoopFor(std::chrono::seconds(10));
            },
            "Invalid media file");
    } else {
        model().uploadMediaFile(stranger, job);
        EXPECT_TRUE(Waiting::until([&] { return log.contains(u"Invalid media file"_s); }));
        EXPECT_TRUE(uploads(0).empty());
    }
}

TEST_F(UploadTest, OnlyAsManyRecordingsAsTheLimitAreUnderWay)
{
    model().setMaxNumberOfRunningUploads(2);
    const auto job = acceptedJob({u"a.mov"_s, u"b.mov"_s, u"c.mov"_s, u"d.mov"_s});
    for (const auto& file : job->mediaFiles())
        model().uploadMediaFile(file, job);
    const auto first = uploads(2);
    ASSERT_EQ(first.size(), 2U);
    EXPECT_FALSE(model().isUploadGateBlocked());
    answer(*first[0], "UPLOAD COMPLETE");
    EXPECT_EQ(uploads(1).size(), 1U);
}

// The transcript's reply gives back a place that the transcript never took.
TEST_F(UploadTest, EachCompletedJobRaisesTheEffectiveLimitByOne)
{
    model().setMaxNumberOfRunningUploads(1);
    for (int number = 1; number <= 3; ++number) {
        const auto job = acceptedJob({u"a.mov"_s}, number);
        const auto media = uploadAll(job);
        ASSERT_EQ(media.size(), 1U);
        answer(*media[0], "UPLOAD COMPLETE");
        const auto transcripts = uploads(1);
        ASSERT_EQ(transcripts.size(), 1U);
        answer(*transcripts[0], "UPLOAD COMPLETE");
        EXPECT_EQ(model().numberOfRunningUploads(), -number);
    }
    const auto job = acceptedJob({u"a.mov"_s, u"b.mov"_s, u"c.mov"_s, u"d.mov"_s, u"e.mov"_s, u"f.mov"_s}, 4);
    for (const auto& file : job->mediaFiles())
        model().uploadMediaFile(file, job);
    EXPECT_EQ(uploads(4).size(), 4U);
}

TEST_F(UploadTest, ATransferThatFailsKeepsItsPlaceForAsLongAsTheProgramRuns)
{
    model().setMaxNumberOfRunningUploads(1);
    const auto job = acceptedJob({u"a.mov"_s, u"b.mov"_s});
    for (const auto& file : job->mediaFiles())
        model().uploadMediaFile(file, job);
    const auto first = uploads(1);
    ASSERT_EQ(first.size(), 1U);
    EXPECT_FALSE(model().isUploadGateBlocked());
    model().curlCommandFailed(*first[0]);
    EXPECT_EQ(model().numberOfRunningUploads(), 1);
    EXPECT_TRUE(uploads(0).empty());
    EXPECT_TRUE(Waiting::until([&] { return model().isUploadGateBlocked(); }));
}

TEST_F(UploadTest, AFailedTranscriptIsAReplyTheGateNoLongerWaitsFor)
{
    model().setMaxNumberOfRunningUploads(1);
    const auto job = acceptedJob({u"a.mov"_s, u"b.mov"_s});
    for (const auto& file : job->mediaFiles())
        model().uploadMediaFile(file, job);
    const auto first = uploads(1);
    ASSERT_EQ(first.size(), 1U);
    model().uploadTranscript(job);
    const auto transcripts = uploads(1);
    ASSERT_EQ(transcripts.size(), 1U);
    model().curlCommandFailed(*first[0]);
    EXPECT_FALSE(model().isUploadGateBlocked());
    model().curlCommandFailed(*transcripts[0]);
    EXPECT_TRUE(Waiting::until([&] { return model().isUploadGateBlocked(); }));
}

TEST_F(UploadTest, TheLastReprocessedFileBringsTheJobBackWithoutTheTranscript)
{
    const auto job = acceptedJob({u"a.mov"_s, u"b.mov"_s, u"c.mov"_s});
    const auto files = job->mediaFiles();
    job->setStatus(13);
    files[0]->setStatus(13);
    files[1]->setStatus(11);
    files[2]->setStatus(9);
    model().processJobUploadedJobFileResponse(job, files[2], u"UPLOAD COMPLETE"_s);
    EXPECT_EQ(job->status(), 13);
    files[0]->setStatus(9);
    model().processJobUploadedJobFileResponse(job, files[0], u"UPLOAD COMPLETE"_s);
    EXPECT_EQ(job->status(), 10);
    EXPECT_EQ(fileStatuses(*job), (std::vector<int>{10, 11, 10}));
    EXPECT_TRUE(uploads(0).empty());
}

TEST_F(UploadTest, AtOtherStatusesOfTheJobAFinishedUploadChangesItsFileAlone)
{
    for (const int status : {11, 12, 14, 15, 17}) {
        const auto job = acceptedJob({u"a.mov"_s}, status);
        job->setStatus(status);
        model().processJobUploadedJobFileResponse(job, job->mediaFiles().first(), u"UPLOAD COMPLETE"_s);
        EXPECT_EQ(job->status(), status);
        EXPECT_EQ(fileStatuses(*job), std::vector<int>{10});
    }
    EXPECT_TRUE(uploads(0).empty());
}

TEST_F(UploadTest, AReplyForAFileThatIsGoneOnlyFreesItsPlace)
{
    const auto job = acceptedJob({u"a.mov"_s});
    const auto posted = uploadAll(job);
    ASSERT_EQ(posted.size(), 1U);
    job->removeObjectFromMediaFilesAtIndex(0);
    answer(*posted[0], "UPLOAD COMPLETE");
    EXPECT_EQ(model().numberOfRunningUploads(), 0);
    EXPECT_TRUE(uploads(0).empty());
    EXPECT_FALSE(job->transcriptUploaded());
}

TEST_F(UploadTest, ProgressOfARecordingIsKeptInItAndThatOfATranscriptNowhere)
{
    const auto job = acceptedJob({u"a.mov"_s});
    const auto posted = uploadAll(job);
    ASSERT_EQ(posted.size(), 1U);
    const auto file = job->mediaFiles().first();
    model().curlCommandProgress(*posted[0], 1, 2, 4.0, 9);
    EXPECT_EQ(file->mp3UploadedFileSize(), 4.0);
    EXPECT_EQ(job->uploadedMediaFileSize(), 4.0F);
    model().uploadTranscript(job);
    const auto transcripts = uploads(1);
    ASSERT_EQ(transcripts.size(), 1U);
    const auto processed = job->processedValue();
    const auto total = job->totalValue();
    model().curlCommandProgress(*transcripts[0], 1, 2, 3, 4);
    EXPECT_EQ(job->processedValue(), processed);
    EXPECT_EQ(job->totalValue(), total);
}

} // namespace
