#include "engine/InterruptedWork.h"

#include "support/TemporaryHome.h"

#include <string>

using namespace Qt::StringLiterals;

namespace {

struct WorkCase
{
    const char* name;
    int jobStatus;
    std::vector<int> files;
    bool transcriptUploaded = false;
    std::optional<int> newJobStatus = std::nullopt;
    std::vector<int> toConvert = {}; // places from 1
    std::vector<int> toUpload = {};
    bool transcriptToUpload = false;
    bool areMp3sLost = false;
};

class InterruptedWorkTest : public TemporaryHome, public testing::WithParamInterface<WorkCase>
{
protected:
    static std::vector<int> placesOf(const Job& job, const std::vector<std::shared_ptr<MediaFile>>& files)
    {
        std::vector<int> places;
        for (const auto& file : files)
            places.push_back(static_cast<int>(job.mediaFiles().indexOf(file)) + 1);
        return places;
    }
};

TEST_P(InterruptedWorkTest, GoesOn)
{
    const WorkCase& tested = GetParam();
    const auto job = Job::job();
    for (std::size_t i = 0; i < tested.files.size(); ++i) {
        const auto file = MediaFile::mediaFileWithPath(path(QString::number(i) + u".wav"_s));
        job->insertObject(file, job->mediaFiles().size());
        file->setStatus(tested.files[i]);
        file->setMp3FilePath(tested.areMp3sLost ? path(u"lost.mp3"_s) : writeFile(u"sound.mp3"_s, "sound"));
    }
    job->setStatus(tested.jobStatus);
    job->setTranscriptUploaded(tested.transcriptUploaded);

    const InterruptedWork work = InterruptedWork::of(*job);
    EXPECT_EQ(work.jobStatus, tested.newJobStatus);
    EXPECT_EQ(placesOf(*job, work.toConvert), tested.toConvert);
    EXPECT_EQ(placesOf(*job, work.toUpload), tested.toUpload);
    EXPECT_EQ(work.transcriptToUpload, tested.transcriptToUpload);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, InterruptedWorkTest,
    testing::Values(
        // The finder takes these.
        WorkCase{.name = "NotSubmitted", .jobStatus = 0, .files = {0, 0}},
        WorkCase{.name = "Submitted", .jobStatus = 2, .files = {2, 2}},
        WorkCase{.name = "AllRead", .jobStatus = 4, .files = {4, 4}},
        WorkCase{.name = "WithoutFiles", .jobStatus = 3, .files = {}},
        // Some were read and some not.
        WorkCase{.name = "SomeRead", .jobStatus = 9, .files = {4, 2}, .newJobStatus = 2},
        WorkCase{.name = "SomeReadOfThree", .jobStatus = 3, .files = {4, 4, 2}, .newJobStatus = 2},
        // Some were converted and some not.
        WorkCase{.name = "Converted", .jobStatus = 6, .files = {6}, .toConvert = {1}},
        WorkCase{.name = "SomeConverted", .jobStatus = 5, .files = {6, 4}, .toConvert = {1, 2}},
        WorkCase{.name = "SomeAnnounced", .jobStatus = 5, .files = {8, 4}, .toConvert = {2}, .toUpload = {1}},
        WorkCase{.name = "SomeUploaded", .jobStatus = 9, .files = {4, 10, 6, 8}, .toConvert = {1, 3}, .toUpload = {4}},
        WorkCase{.name = "AllAnnounced", .jobStatus = 8, .files = {8, 8}, .toUpload = {1, 2}},
        WorkCase{.name = "LastUploading", .jobStatus = 9, .files = {10, 8}, .toUpload = {2}},
        // Somebody emptied the temporary folder meanwhile.
        WorkCase{.name = "Mp3sLost", .jobStatus = 9, .files = {10, 8, 6}, .toConvert = {2, 3}, .areMp3sLost = true},
        // The transcript follows the last recording.
        WorkCase{.name = "TranscriptNotSent", .jobStatus = 10, .files = {10, 10}, .transcriptToUpload = true},
        WorkCase{.name = "AllSent", .jobStatus = 10, .files = {10, 10}, .transcriptUploaded = true},
        WorkCase{.name = "OnServerWithoutTranscript", .jobStatus = 11, .files = {11}, .transcriptToUpload = true},
        WorkCase{.name = "OnServer", .jobStatus = 11, .files = {11}, .transcriptUploaded = true},
        // The service says again what it lacks.
        WorkCase{
            .name = "AskedAgain", .jobStatus = 12, .files = {11, 11}, .transcriptUploaded = true, .newJobStatus = 11},
        WorkCase{.name = "AskedAgainWithoutTranscript",
                 .jobStatus = 12,
                 .files = {11},
                 .newJobStatus = 11,
                 .transcriptToUpload = true},
        WorkCase{
            .name = "Reprocessing", .jobStatus = 13, .files = {4, 11}, .transcriptUploaded = true, .newJobStatus = 11},
        WorkCase{.name = "ReprocessedUploading",
                 .jobStatus = 13,
                 .files = {8, 11},
                 .transcriptUploaded = true,
                 .newJobStatus = 11},
        // Delivery: the transcript is there, whatever the record says.
        WorkCase{.name = "ReadyForDownload", .jobStatus = 14, .files = {17}},
        WorkCase{.name = "Completed", .jobStatus = 17, .files = {17}}),
    [](const auto& tested) { return std::string(tested.param.name); });

} // namespace
