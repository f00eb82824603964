#include "model/Job.h"
#include "support/TemporaryHome.h"

#include <functional>

using RowChangedTest = TemporaryHome;

namespace {

template <typename Object>
struct Change
{
    const char* name;
    std::function<void(Object&)> make;
};

template <typename Object>
void expectEachAnnounced(Object& object, const std::vector<Change<Object>>& changes)
{
    int announced = 0;
    const auto connection = QObject::connect(&object, &MediaObject::rowChanged, [&] { ++announced; });
    for (const auto& change : changes) {
        announced = 0;
        change.make(object);
        EXPECT_GE(announced, 1) << change.name;
    }
    QObject::disconnect(connection);
}

} // namespace

TEST_F(RowChangedTest, followsEverythingThatAListShowsOfAJob)
{
    const auto job = Job::job();
    expectEachAnnounced<Job>(*job,
                             {{"name", [](Job& j) { j.setName(QStringLiteral("Smith")); }},
                              {"rush", [](Job& j) { j.setRush(true); }},
                              {"status", [](Job& j) { j.setStatus(JobStatusOnServer); }},
                              {"server status", [](Job& j) { j.setServerStatus(QStringLiteral("Join")); }},
                              {"total", [](Job& j) { j.setTotalValue(10); }},
                              {"processed", [](Job& j) { j.setProcessedValue(5); }},
                              {"score", [](Job& j) { j.setScoreValue(80); }},
                              {"job number", [](Job& j) { j.setDepoNum(883); }},
                              {"duration", [](Job& j) { j.setTotalMediaDuration(3.5F); }},
                              {"format", [](Job& j) { j.setDeliveryFormat(DeliveryFormatLOG); }},
                              {"a file more", [](Job& j) { j.addMediaFilesObject(MediaFile::serverMediaFile(1)); }},
                              {"other files", [](Job& j) { j.setMediaFiles({MediaFile::serverMediaFile(2)}); }},
                              {"a file less", [](Job& j) { j.removeObjectFromMediaFilesAtIndex(0); }}});
}

TEST_F(RowChangedTest, followsEverythingThatAListShowsOfARecording)
{
    const auto file = MediaFile::serverMediaFile(1);
    expectEachAnnounced<MediaFile>(*file,
                                   {{"path", [](MediaFile& f) { f.setSourceFilePath(QStringLiteral("/a/b.mov")); }},
                                    {"status", [](MediaFile& f) { f.setStatus(JobStatusConverting); }},
                                    {"server status", [](MediaFile& f) { f.setServerStatus(QStringLiteral("Join")); }},
                                    {"score", [](MediaFile& f) { f.setScoreValue(80); }},
                                    {"duration", [](MediaFile& f) { f.setSourceDuration(3.5F); }},
                                    {"processed", [](MediaFile& f) { f.setDurationProcessed(1.5F); }},
                                    {"size", [](MediaFile& f) { f.setMp3TotalFileSize(100); }},
                                    {"uploaded", [](MediaFile& f) { f.setMp3UploadedFileSize(50.0); }}});
}

TEST_F(RowChangedTest, followsAJobWhoseStatusFollowsItsFiles)
{
    const auto job = Job::job();
    const auto file = MediaFile::mediaFileWithPath(path(QStringLiteral("a.mov")));
    job->addMediaFilesObject(file);
    int announced = 0;
    QObject::connect(job.get(), &MediaObject::rowChanged, [&] { ++announced; });
    file->setStatus(JobStatusConverting);
    EXPECT_EQ(job->status(), JobStatusConverting);
    EXPECT_GE(announced, 1);
}
