// Jobs that were saved in the middle of their work go on to their end in the next run.

#include "EngineTest.h"

#include "commands/AddJobSegmentsCommand.h"
#include "commands/SubmitJobDetailsCommand.h"
#include "commands/UploadCommand.h"
#include "engine/DestinationFileName.h"
#include "engine/Mp3Location.h"
#include "engine/SavedState.h"
#include "foundation/MainThread.h"
#include "support/GeneratedMedia.h"

#include <QFile>

#include <algorithm>
#include <string>

using namespace Qt::StringLiterals;

namespace {

enum class Transcript { Missing, Sent };

struct SavedCase
{
    const char* name;
    int jobStatus;
    std::vector<int> files;
    Transcript transcript = Transcript::Missing;
    // The service lacks the first segment's audio again.
    bool isAskedAgain = false;
};

class ResumeTest : public ServiceEngineTest, public testing::WithParamInterface<SavedCase>
{
protected:
    void perform(CUrlCommand& command, const QByteArray& expected)
    {
        command.execute();
        ASSERT_EQ(command.data(), expected);
    }
    // Does with the service what was done when a file was at that status.
    void catchUp(const std::shared_ptr<Job>& job, const std::shared_ptr<MediaFile>& file, int segment, int status)
    {
        if (status >= 4)
            file->setSourceDuration(0.3F);
        if (status >= 6) {
            file->setMp3FilePath(Mp3Location::ofMediaFile(model().tempFilesFolder(), *job, *file));
            GeneratedMedia::sound(file->mp3FilePath(), 0.3);
            file->setMp3Duration(0.3F);
        }
        if (status >= 8)
            perform(*AddJobSegmentsCommand::addJobSegmentsCommandWithUser(hosts, u"demo"_s, u"demo1234"_s, job, file),
                    "");
        if (status >= 10)
            perform(*UploadCommand::uploadCommandWithUser(hosts, u"demo"_s, u"demo1234"_s, job, file->mp3FilePath(),
                                                          DestinationFileName::ofSegment(*job, segment)),
                    "UPLOAD COMPLETE");
    }
    void sendTranscript(const std::shared_ptr<Job>& job)
    {
        perform(*UploadCommand::uploadCommandWithUser(hosts, u"demo"_s, u"demo1234"_s, job, job->transcriptFile(),
                                                      DestinationFileName::ofTranscript(*job)),
                "UPLOAD COMPLETE");
        job->setTranscriptUploaded(true);
    }
    std::shared_ptr<Job> jobAsSaved(const SavedCase& saved)
    {
        QStringList names;
        for (std::size_t i = 0; i < saved.files.size(); ++i)
            names.append(QString::number(i + 1) + u".wav"_s);
        auto job = realJob(names, 0.3);
        if (*std::max_element(saved.files.begin(), saved.files.end()) >= 2) {
            SubmitJobDetailsCommand submission(hosts, u"demo"_s, u"demo1234"_s, job);
            perform(submission, "5120 883");
            job->setOrderNum(5120);
            job->setDepoNum(883);
        }
        const bool isOnServer = saved.jobStatus >= 11;
        for (std::size_t i = 0; i < saved.files.size(); ++i)
            catchUp(job, job->mediaFiles()[static_cast<qsizetype>(i)], static_cast<int>(i) + 1,
                    isOnServer ? 10 : saved.files[i]);
        if (saved.transcript == Transcript::Sent)
            sendTranscript(job);
        if (saved.isAskedAgain) {
            EXPECT_TRUE(service.askAgain(883, {1, DemoService::Channels::Mono}));
        }
        for (std::size_t i = 0; i < saved.files.size(); ++i)
            job->mediaFiles()[static_cast<qsizetype>(i)]->setStatus(saved.files[i]);
        job->setStatus(saved.jobStatus);
        return job;
    }
};

TEST_P(ResumeTest, TheJobIsCompleted)
{
    const QString folder = path(u"temp"_s);
    if (GetParam().isAskedAgain)
        service.setTurnaround(std::chrono::milliseconds(1));
    ASSERT_FALSE(SavedState::write(model().stateFilePath(folder), {jobAsSaved(GetParam())}));
    service.clearRequests();

    model().loadState(folder);
    ASSERT_EQ(model().jobs().size(), 1U);
    const auto job = model().jobs().front();
    model().startJobProcessing();
    ASSERT_TRUE(reaches(job, 17));
    const auto held = service.job(883);
    ASSERT_TRUE(held);
    EXPECT_TRUE(held->delivered);
    EXPECT_TRUE(errorTexts().isEmpty()) << errorTexts().join(u" | "_s).toStdString();
    EXPECT_TRUE(engine->stops.empty());
    expectNoRefusals();
    // What was done is not done again.
    const auto& files = GetParam().files;
    EXPECT_EQ(service.count("jobdetails.php"), files.front() < 2 ? 1 : 0);
    const auto unannounced = std::count_if(files.begin(), files.end(), [](int status) { return status < 8; });
    EXPECT_EQ(service.count("add_segment.php"), GetParam().jobStatus < 10 ? unannounced : 0);
    const auto unsent = std::count_if(files.begin(), files.end(), [](int status) { return status < 10; });
    EXPECT_EQ(service.count("test_custupload2.php"), (GetParam().jobStatus < 10 ? unsent : 0) +
                                                         (GetParam().transcript == Transcript::Missing ? 1 : 0) +
                                                         (GetParam().isAskedAgain ? 1 : 0));
}

INSTANTIATE_TEST_SUITE_P(
    Saved, ResumeTest,
    testing::Values(SavedCase{"New", 0, {0, 0}}, SavedCase{"Submitting", 1, {1, 1}}, SavedCase{"Submitted", 2, {2, 2}},
                    SavedCase{"ReadingTheFirst", 9, {3, 2}}, SavedCase{"OneRead", 9, {4, 2}},
                    SavedCase{"ReadingTheSecond", 9, {4, 3}}, SavedCase{"TwoOfThreeRead", 9, {4, 4, 2}},
                    SavedCase{"Read", 4, {4, 4}}, SavedCase{"ConvertingAll", 5, {5, 5}},
                    SavedCase{"ConvertingOne", 5, {5, 4}}, SavedCase{"OneConverted", 5, {6, 4}},
                    SavedCase{"OneConvertedOneConverting", 5, {5, 6}}, SavedCase{"AllConverted", 6, {6, 6}},
                    SavedCase{"AnnouncingOne", 5, {7, 4}}, SavedCase{"AnnouncingAll", 7, {7, 7}},
                    SavedCase{"OneAnnounced", 5, {8, 4}}, SavedCase{"OneAnnouncedOneConverted", 5, {6, 8}},
                    SavedCase{"AllAnnounced", 8, {8, 8}}, SavedCase{"UploadingOne", 9, {9, 4}},
                    SavedCase{"UploadingAll", 9, {9, 9}}, SavedCase{"UploadingTheSecond", 9, {8, 9}},
                    SavedCase{"OneUploaded", 9, {10, 4}}, SavedCase{"OneUploadedOneConverting", 5, {10, 5}},
                    SavedCase{"OneUploadedOneAnnounced", 9, {8, 10}}, SavedCase{"OneUploadedOneUploading", 9, {10, 9}},
                    SavedCase{"EachAtAnother", 9, {10, 8, 4}}, SavedCase{"EachAtYetAnother", 9, {9, 7, 5}},
                    SavedCase{"TranscriptNotSent", 10, {10, 10}}, SavedCase{"AllSent", 10, {10, 10}, Transcript::Sent},
                    SavedCase{"OnServerWithoutTranscript", 11, {11, 11}},
                    SavedCase{"OnServer", 11, {11, 11}, Transcript::Sent},
                    SavedCase{"AskedAgain", 12, {12, 11}, Transcript::Sent, true},
                    SavedCase{"Reprocessing", 13, {13, 11}, Transcript::Sent, true},
                    SavedCase{"ReprocessingConverting", 13, {5, 11}, Transcript::Sent, true},
                    SavedCase{"ReprocessingUploading", 13, {9, 11}, Transcript::Sent, true},
                    SavedCase{"ReprocessedUploaded", 13, {10, 11}, Transcript::Sent},
                    SavedCase{"ReadyForDownload", 14, {11, 11}, Transcript::Sent},
                    SavedCase{"Downloading", 15, {17, 17}, Transcript::Sent}),
    [](const auto& tested) { return std::string(tested.param.name); });

class InterruptedRunTest : public ServiceEngineTest
{};

TEST_F(InterruptedRunTest, AJobGoesOnAfterBeingSavedAndEndedAtEachOfItsStatuses)
{
    const QString folder = path(u"temp"_s);
    for (const int stop : {1, 3, 4, 5, 9, 10, 11, 14}) {
        restartEngine();
        const auto job = realJob({QString::number(stop) + u"a.wav"_s, QString::number(stop) + u"b.wav"_s}, 0.3);
        bool isSaved = false;
        const QObject scope; // the connection's end, before what it writes to goes
        QObject::connect(job.get(), &MediaObject::statusChanged, &scope, [&] {
            if (job->status() < stop || isSaved)
                return;
            isSaved = true;
            MainThread::post([&] { model().saveState(folder); });
        });
        model().addJobsObject(job);
        model().startJobProcessing();
        ASSERT_TRUE(Waiting::until([&] { return isSaved && QFile::exists(model().stateFilePath(folder)); }));
        restartEngine();
        model().loadState(folder);
        ASSERT_LE(model().jobs().size(), 1U);
        if (model().jobs().empty())
            continue; // It was already completed when it was saved.
        const auto loaded = model().jobs().front();
        model().startJobProcessing();
        EXPECT_TRUE(reaches(loaded, 17)) << "saved at " << stop;
        EXPECT_TRUE(engine->stops.empty());
        ASSERT_TRUE(QFile::remove(model().stateFilePath(folder)));
    }
}

} // namespace
