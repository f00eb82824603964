#include "model/MediaFile.h"

#include "support/RecordedLog.h"
#include "support/TemporaryHome.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>

#include <limits>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

class MediaFileTest : public TemporaryHome
{
protected:
    static std::shared_ptr<MediaFile> readBack(const MediaFile& file)
    {
        return MediaFile::decode(QJsonDocument::fromJson(QJsonDocument(file.encode()).toJson()).object());
    }
};

class DerivedMediaFile : public MediaFile
{
public:
    explicit DerivedMediaFile(const QString& path) : MediaFile(path, /*isServerMediaFile=*/false) {}
};

struct RecordingObserver : MediaFileObserver
{
    void mediaFileChanged(MediaFileChange change) override { changes.push_back(change); }
    std::vector<MediaFileChange> changes;
};

TEST_F(MediaFileTest, IsNamedAfterItsFileAndKnowsItsSizeAndDate)
{
    const QString source = writeFile(u"media/clip.mov"_s, "12345");
    const auto file = MediaFile::mediaFileWithPath(source);
    EXPECT_EQ(file->sourceFilePath(), source);
    EXPECT_EQ(file->name(), u"clip.mov");
    EXPECT_EQ(file->sourceFileSizeInBytes(), 5);
    EXPECT_EQ(file->sourceFileLastModifiedDate(), QFileInfo(source).lastModified());
    EXPECT_EQ(file->status(), JobStatusIdle);
    EXPECT_FALSE(file->isServerMediaFile());
    EXPECT_TRUE(file->isLeaf());
    EXPECT_TRUE(file->childs().isEmpty());
    EXPECT_TRUE(defaults().isStored(source));
    EXPECT_TRUE(file->sourceFileURL().isEmpty()) << "the first bookmark is stored only now";
}

TEST_F(MediaFileTest, IsFoundByItsBookmarkTheSecondTime)
{
    const QString source = writeFile(u"clip.mov"_s, "12345");
    (void)MediaFile::mediaFileWithPath(source);
    const auto file = MediaFile::mediaFileWithPath(source);
    EXPECT_EQ(file->sourceFileURL(), QUrl::fromLocalFile(source));
    EXPECT_EQ(file->sourceFilePath(), source);
    EXPECT_EQ(file->name(), u"clip.mov");
}

TEST_F(MediaFileTest, AMissingFileHasNeitherSizeNorDate)
{
    const auto file = MediaFile::mediaFileWithPath(path(u"none.mov"_s));
    EXPECT_EQ(file->sourceFileSizeInBytes(), std::nullopt);
    EXPECT_FALSE(file->sourceFileLastModifiedDate().isValid());
    EXPECT_EQ(file->name(), u"none.mov");
}

TEST_F(MediaFileTest, AServerMediaFileHasAPlaceholderPathAndNothingElse)
{
    const RecordedLog log;
    const auto file = MediaFile::serverMediaFile(3);
    EXPECT_EQ(file->sourceFilePath(), u"Segment3.abc");
    EXPECT_TRUE(file->isServerMediaFile());
    EXPECT_EQ(file->name(), u"");
    EXPECT_EQ(file->sourceFileSizeInBytes(), std::nullopt);
    EXPECT_FALSE(file->sourceFileLastModifiedDate().isValid());
    EXPECT_EQ(log.text(), QString()) << "no bookmark is tried";
}

TEST_F(MediaFileTest, AServerMediaFileReadsBackAsALocalFileOfItsPath)
{
    const auto file = readBack(*MediaFile::serverMediaFile(3));
    ASSERT_TRUE(file);
    EXPECT_EQ(file->sourceFilePath(), u"Segment3.abc");
    EXPECT_FALSE(file->isServerMediaFile());
    EXPECT_EQ(file->name(), u"Segment3.abc");
    EXPECT_EQ(file->sourceFileSizeInBytes(), std::nullopt);
}

TEST_F(MediaFileTest, ItsProgressPairFollowsTheDurationsThenTheSizes)
{
    const auto file = MediaFile::serverMediaFile(1);
    file->setSourceDuration(90.5F);
    EXPECT_EQ(file->totalValue(), 90.5);
    file->setDurationProcessed(30.25F);
    EXPECT_EQ(file->processedValue(), 30.25);
    EXPECT_EQ(file->mp3Duration(), 30.25F);
    EXPECT_EQ(file->totalValue(), 90.5);
    file->setMp3TotalFileSize(qint64{1} << 40);
    EXPECT_EQ(file->totalValue(), 1099511627776.0);
    file->setMp3UploadedFileSize(1234567890123.0);
    EXPECT_EQ(file->processedValue(), 1234567890123.0);
    EXPECT_EQ(file->sourceDuration(), 90.5F);
    file->setMp3TotalFileSize(std::nullopt);
    EXPECT_EQ(file->totalValue(), std::nullopt);
    file->setSourceDuration(std::nullopt);
    file->setDurationProcessed(std::nullopt);
    EXPECT_EQ(file->processedValue(), std::nullopt);
    EXPECT_EQ(file->mp3Duration(), std::nullopt);
}

TEST_F(MediaFileTest, AnnouncesItsProgressBeforeWhatMovedIt)
{
    const auto file = MediaFile::serverMediaFile(1);
    std::vector<QString> heard;
    const auto hear = [&](auto signal, const QString& word) {
        QObject::connect(file.get(), signal, file.get(), [&heard, word] { heard.push_back(word); });
    };
    hear(&MediaFile::totalValueChanged, u"total"_s);
    hear(&MediaFile::processedValueChanged, u"processed"_s);
    hear(&MediaFile::mp3DurationChanged, u"mp3"_s);
    hear(&MediaFile::sourceDurationChanged, u"duration"_s);
    hear(&MediaFile::durationProcessedChanged, u"done"_s);
    hear(&MediaFile::mp3TotalFileSizeChanged, u"size"_s);
    hear(&MediaFile::mp3UploadedFileSizeChanged, u"uploaded"_s);
    file->setSourceDuration(1.F);
    file->setDurationProcessed(1.F);
    file->setMp3TotalFileSize(1);
    file->setMp3UploadedFileSize(1);
    EXPECT_EQ(heard, (std::vector{u"total"_s, u"duration"_s, u"processed"_s, u"mp3"_s, u"done"_s, u"total"_s, u"size"_s,
                                  u"processed"_s, u"uploaded"_s}));
}

TEST_F(MediaFileTest, FilesWithTheSamePathInAnotherLetterCaseAreEqualAndHashAlike)
{
    const auto a = MediaFile::mediaFileWithPath(u"/media/Clip É.MOV"_s);
    const auto b = MediaFile::mediaFileWithPath(u"/MEDIA/clip é.mov"_s);
    const auto c = MediaFile::mediaFileWithPath(u"/media/clip2.mov"_s);
    EXPECT_TRUE(a->isEqual(*b));
    EXPECT_TRUE(b->isEqual(*a));
    EXPECT_TRUE(a->isEqual(*a));
    EXPECT_EQ(a->hash(), b->hash());
    EXPECT_FALSE(a->isEqual(*c));
    // The sign for kelvin folds to k, but is its own upper case.
    const auto kelvin = MediaFile::mediaFileWithPath(u"/\u212A.mov"_s);
    const auto k = MediaFile::mediaFileWithPath(u"/k.mov"_s);
    EXPECT_TRUE(kelvin->isEqual(*k));
    EXPECT_EQ(kelvin->hash(), k->hash());
}

TEST_F(MediaFileTest, TheHashFollowsANewPath)
{
    const auto a = MediaFile::mediaFileWithPath(u"/a.mov"_s);
    const auto b = MediaFile::mediaFileWithPath(u"/b.mov"_s);
    a->setSourceFilePath(u"/B.MOV"_s);
    EXPECT_EQ(a->hash(), b->hash());
    EXPECT_TRUE(a->isEqual(*b));
    EXPECT_EQ(a->name(), u"B.MOV");
}

TEST_F(MediaFileTest, IsNeverEqualToAnObjectOfAnotherClass)
{
    const auto file = MediaFile::mediaFileWithPath(u"/a.mov"_s);
    const DerivedMediaFile derived(u"/a.mov"_s);
    const MediaObject object;
    EXPECT_FALSE(file->isEqual(derived));
    EXPECT_FALSE(file->isEqual(object));
    EXPECT_FALSE(file->isEqual(QObject()));
}

TEST_F(MediaFileTest, IsOrderedByItsFileNameWhateverTheLetterCase)
{
    const auto A = MediaFile::mediaFileWithPath(u"/z/A.mov"_s);
    const auto b = MediaFile::mediaFileWithPath(u"/a/b.mov"_s);
    const auto B = MediaFile::mediaFileWithPath(u"/c/B.MOV"_s);
    EXPECT_LT(A->caseInsensitiveCompareByFileName(*b), 0);
    EXPECT_GT(b->caseInsensitiveCompareByFileName(*A), 0);
    EXPECT_EQ(b->caseInsensitiveCompareByFileName(*B), 0);
    EXPECT_LT(A->caseInsensitiveCompareByFileName(*B), 0);
}

TEST_F(MediaFileTest, ARefusedAccessIsLogged)
{
    const RecordedLog log;
    const QString source = writeFile(u"clip.mov"_s, "12345");
    const auto file = MediaFile::mediaFileWithPath(source);
    file->startAccessingBookmarkedURL();
    file->setSourceFileURL(QUrl::fromLocalFile(source));
    file->startAccessingBookmarkedURL();
    file->stopAccessingBookmarkedURL();
    EXPECT_EQ(log.text(), QString());
    ASSERT_TRUE(QFile::remove(source));
    file->startAccessingBookmarkedURL();
    EXPECT_TRUE(log.contains(u"[error] [main] Unable to start accessing security scoped url = file://"_s + source));
}

TEST_F(MediaFileTest, ObserversAreToldOnceForEachTimeTheyWereAdded)
{
    const auto file = MediaFile::serverMediaFile(1);
    const auto observer = std::make_shared<RecordingObserver>();
    file->addObserver(observer);
    file->setSourceDuration(1.F);
    file->setDurationProcessed(1.F);
    file->setStatus(3);
    file->setMp3TotalFileSize(1);
    file->setMp3UploadedFileSize(1);
    file->setServerStatus(u"Joined"_s);
    file->setName(u"not observed"_s);
    using enum MediaFileChange;
    EXPECT_EQ(observer->changes,
              (std::vector{SourceDuration, DurationProcessed, Status, Mp3TotalFileSize, Mp3UploadedFileSize, Status}));
    file->addObserver(observer);
    observer->changes.clear();
    file->setStatus(4);
    EXPECT_EQ(observer->changes.size(), 2u);
    file->removeObserver(observer.get());
    file->setStatus(5);
    EXPECT_EQ(observer->changes.size(), 3u);
    file->removeObserver(observer.get());
    file->removeObserver(observer.get());
    file->setStatus(6);
    EXPECT_EQ(observer->changes.size(), 3u);
}

TEST_F(MediaFileTest, AnObserverThatIsGoneIsToldNothing)
{
    const auto file = MediaFile::serverMediaFile(1);
    auto observer = std::make_shared<RecordingObserver>();
    const std::weak_ptr<RecordingObserver> watched = observer;
    file->addObserver(observer);
    observer.reset();
    EXPECT_TRUE(watched.expired()) << "observing keeps nobody alive";
    file->setStatus(3);
}

TEST_F(MediaFileTest, ReadsBackWhatIsArchived)
{
    const QString source = writeFile(u"clip.mov"_s, "12345");
    const auto file = MediaFile::mediaFileWithPath(source);
    file->setSourceDuration(90.1F);
    file->setMp3FilePath(u"/tmp/1/clip.mov.mp3"_s);
    file->setMp3Duration(90.2F);
    file->setStreamsInfo(u"Stream #0:0\nStream #0:1"_s);
    file->setStatus(JobStatusConverted);
    file->setServerStatus(u"x"_s);
    file->setScoreValue(3);
    EXPECT_EQ(file->encode().keys(), QStringList({u"mp3Duration"_s, u"mp3FilePath"_s, u"sourceDuration"_s,
                                                  u"sourceFilePath"_s, u"status"_s, u"streamsInfo"_s}));
    const auto back = readBack(*file);
    ASSERT_TRUE(back);
    EXPECT_EQ(back->sourceFilePath(), source);
    EXPECT_EQ(back->name(), u"clip.mov");
    EXPECT_EQ(back->sourceDuration(), 90.1F);
    EXPECT_EQ(back->totalValue(), static_cast<double>(90.1F));
    EXPECT_EQ(back->mp3FilePath(), u"/tmp/1/clip.mov.mp3");
    EXPECT_EQ(back->mp3Duration(), 90.2F);
    EXPECT_EQ(back->streamsInfo(), u"Stream #0:0\nStream #0:1");
    EXPECT_EQ(back->status(), JobStatusConverted);
    EXPECT_EQ(back->sourceFileSizeInBytes(), 5);
    EXPECT_TRUE(back->serverStatus().isNull());
    EXPECT_EQ(back->scoreValue(), std::nullopt);
}

TEST_F(MediaFileTest, WhatIsMissingStaysMissing)
{
    const auto file = MediaFile::mediaFileWithPath(u"/none.mov"_s);
    EXPECT_TRUE(file->encode().value(u"sourceDuration").isNull());
    EXPECT_TRUE(file->encode().value(u"mp3FilePath").isNull());
    const auto back = readBack(*file);
    EXPECT_EQ(back->sourceDuration(), std::nullopt);
    EXPECT_EQ(back->totalValue(), std::nullopt);
    EXPECT_EQ(back->mp3Duration(), std::nullopt);
    EXPECT_TRUE(back->mp3FilePath().isNull());
    EXPECT_TRUE(back->streamsInfo().isNull());
}

TEST_F(MediaFileTest, WorkThatWasInFlightGoesBackToWhereItCanBeDoneAgain)
{
    const std::vector<std::pair<int, int>> table{{0, 0},   {1, 0},   {2, 2},   {3, 2},   {4, 4},   {5, 4},   {6, 6},
                                                 {7, 6},   {8, 8},   {9, 8},   {10, 10}, {11, 11}, {12, 11}, {13, 11},
                                                 {14, 11}, {15, 11}, {16, 16}, {17, 17}, {18, 18}, {-1, -1}};
    for (const auto& [stored, back] : table) {
        const auto file = MediaFile::serverMediaFile(1);
        file->setStatus(stored);
        EXPECT_EQ(readBack(*file)->status(), back) << stored;
    }
}

TEST_F(MediaFileTest, AnArchiveWithoutASourcePathIsNoMediaFile)
{
    EXPECT_FALSE(MediaFile::decode({}));
    EXPECT_FALSE(MediaFile::decode({{u"sourceFilePath"_s, QJsonValue::Null}}));
    EXPECT_FALSE(MediaFile::decode({{u"sourceFilePath"_s, 7}}));
    EXPECT_FALSE(MediaFile::decode({{u"sourceFilePath"_s, u""_s}}));
}

TEST_F(MediaFileTest, ValuesOfTheWrongTypeCountAsMissing)
{
    const auto file = MediaFile::decode({{u"sourceFilePath"_s, u"/a.mov"_s},
                                         {u"sourceDuration"_s, u"90"_s},
                                         {u"mp3FilePath"_s, 7},
                                         {u"mp3Duration"_s, 1e300},
                                         {u"status"_s, QJsonArray{1}},
                                         {u"streamsInfo"_s, true}});
    ASSERT_TRUE(file);
    EXPECT_EQ(file->sourceDuration(), std::nullopt);
    EXPECT_TRUE(file->mp3FilePath().isNull());
    EXPECT_EQ(file->mp3Duration(), std::nullopt);
    EXPECT_EQ(file->status(), 0);
    EXPECT_TRUE(file->streamsInfo().isNull());
    const auto huge = MediaFile::decode({{u"sourceFilePath"_s, u"/a.mov"_s}, {u"status"_s, 1e300}});
    EXPECT_EQ(huge->status(), std::numeric_limits<int>::max());
}

} // namespace
