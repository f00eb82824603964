#include "engine/DestinationFileName.h"
#include "engine/Mp3Location.h"
#include "foundation/Assertion.h"
#include "support/RecordedLog.h"
#include "support/TemporaryHome.h"

#include <limits>

using namespace Qt::StringLiterals;

namespace {

class FileNamesTest : public TemporaryHome
{
protected:
    FileNamesTest()
    {
        job->setOrderNum(5120);
        job->setDepoNum(883);
    }
    const std::shared_ptr<MediaFile>& addFile(const QString& path)
    {
        job->insertObject(MediaFile::mediaFileWithPath(path), job->mediaFiles().size());
        return files.emplace_back(job->mediaFiles().last());
    }

    const std::shared_ptr<Job> job = Job::job();
    std::vector<std::shared_ptr<MediaFile>> files;
};

TEST_F(FileNamesTest, TheTranscriptsNameTellsOrderDepositionAndItsOwnName)
{
    const std::vector<std::pair<QString, QString>> cases{
        {u"/home/ann/Smith 2 Mar.txt"_s, u"5120_883.txt[Smith 2 Mar.txt,-1]"_s},
        {u"/a/v1.2.TXT"_s, u"5120_883.TXT[v1.2.TXT,-1]"_s},
        {u"/a.b/.txt"_s, u"5120_883.txt[.txt,-1]"_s},
        {u"/a/name."_s, u"5120_883.[name.,-1]"_s},
        {u"/a/M\u00fcller \u201cA\u201d & [B] 100%1 {}.txt"_s,
         u"5120_883.txt[M\u00fcller \u201cA\u201d & [B] 100%1 {}.txt,-1]"_s},
    };
    for (const auto& [transcript, name] : cases) {
        job->setTranscriptFile(transcript);
        EXPECT_EQ(DestinationFileName::ofTranscript(*job), name);
    }
}

TEST_F(FileNamesTest, ATranscriptWithoutAPointHasTheEmptyName)
{
    job->setTranscriptFile(u"/folder.with.points/Smith"_s);
    EXPECT_EQ(DestinationFileName::ofTranscript(*job), u""_s);
    job->setTranscriptFile(u""_s);
    EXPECT_EQ(DestinationFileName::ofTranscript(*job), u""_s);
}

TEST_F(FileNamesTest, ASegmentsNameTellsItsPlaceAndItsWholeSecondsInMilliseconds)
{
    addFile(u"/m/first.mov"_s)->setMp3Duration(std::nullopt);
    const auto& second = addFile(u"/m/clip.mov"_s);
    const std::vector<std::pair<std::optional<float>, QString>> cases{
        {247.0F, u"247000"_s},  {247.99F, u"247000"_s},      {0.5F, u"0"_s},
        {std::nullopt, u"0"_s}, {360000.0F, u"360000000"_s}, {4000000.0F, u"4000000000"_s},
    };
    for (const auto& [duration, words] : cases) {
        second->setMp3Duration(duration);
        EXPECT_EQ(DestinationFileName::ofSegment(*job, 2), u"5120_883_2.mp3[clip.mov,"_s + words + u"]"_s);
    }
    EXPECT_EQ(DestinationFileName::ofSegment(*job, 1), u"5120_883_1.mp3[first.mov,0]"_s);
}

TEST_F(FileNamesTest, ADurationThatIsNoNumberOrTooLargeStaysWithinANumber)
{
    const auto& file = addFile(u"/m/clip.mov"_s);
    file->setMp3Duration(std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ(DestinationFileName::ofSegment(*job, 1), u"5120_883_1.mp3[clip.mov,0]"_s);
    file->setMp3Duration(std::numeric_limits<float>::infinity());
    EXPECT_EQ(DestinationFileName::ofSegment(*job, 1), u"5120_883_1.mp3[clip.mov,2147483647000]"_s);
}

TEST_F(FileNamesTest, ARecordingWithoutAPointHasTheEmptyName)
{
    addFile(u"/m.x/clip"_s);
    EXPECT_EQ(DestinationFileName::ofSegment(*job, 1), u""_s);
}

TEST_F(FileNamesTest, AJobWithoutNumbersCountsAsZero)
{
    job->setOrderNum(std::nullopt);
    job->setDepoNum(std::nullopt);
    job->setTranscriptFile(u"/a.txt"_s);
    addFile(u"/b.mov"_s);
    EXPECT_EQ(DestinationFileName::ofTranscript(*job), u"0_0.txt[a.txt,-1]"_s);
    EXPECT_EQ(DestinationFileName::ofSegment(*job, 1), u"0_0_1.mp3[b.mov,0]"_s);
    EXPECT_EQ(Mp3Location::folderOfJob(u"/tmp/q"_s, *job), u"/tmp/q/0"_s);
}

TEST_F(FileNamesTest, ASegmentThatTheJobHasNotIsAProgrammingError)
{
    addFile(u"/b.mov"_s);
    for (const int segment : {0, 2, -1}) {
        if constexpr (Assertion::stopsTheProgram) {
            EXPECT_DEATH((void)DestinationFileName::ofSegment(*job, segment), "Invalid segment number");
        } else {
            const RecordedLog log;
            EXPECT_EQ(DestinationFileName::ofSegment(*job, segment), u""_s);
            EXPECT_TRUE(log.contains(u"Invalid segment number"_s));
        }
    }
}

TEST_F(FileNamesTest, TheMp3LiesInTheJobsFolderUnderTheSourcesWholeName)
{
    EXPECT_EQ(Mp3Location::folderOfJob(u"/tmp/q"_s, *job), u"/tmp/q/883"_s);
    for (const auto& [source, mp3] : std::vector<std::pair<QString, QString>>{
             {u"/m/clip.mov"_s, u"/tmp/q/883/clip.mov.mp3"_s},
             {u"/m/sound.mp3"_s, u"/tmp/q/883/sound.mp3.mp3"_s},
             {u"/"_s, u"/tmp/q/883/.mp3"_s},
             {u"/m/no point"_s, u"/tmp/q/883/no point.mp3"_s},
             {u"/m/-dash \u00e9 [1] %s.wav"_s, u"/tmp/q/883/-dash \u00e9 [1] %s.wav.mp3"_s}})
        EXPECT_EQ(Mp3Location::ofMediaFile(u"/tmp/q"_s, *job, *addFile(source)), mp3);
}

TEST_F(FileNamesTest, RecordingsOfOneNameFromTwoCamerasDoNotOverwriteEachOther)
{
    const auto& first = addFile(u"/card1/00001.mts"_s);
    const QString firstMp3 = Mp3Location::ofMediaFile(u"/t"_s, *job, *first);
    const auto other = addFile(u"/card2/other.mts"_s);
    const auto second = addFile(u"/card2/00001.MTS"_s);
    const auto third = addFile(u"/card3/00001.mts"_s);
    EXPECT_EQ(firstMp3, u"/t/883/00001.mts.mp3"_s);
    EXPECT_EQ(Mp3Location::ofMediaFile(u"/t"_s, *job, *other), u"/t/883/other.mts.mp3"_s);
    EXPECT_EQ(Mp3Location::ofMediaFile(u"/t"_s, *job, *second), u"/t/883/00001.MTS.3.mp3"_s);
    EXPECT_EQ(Mp3Location::ofMediaFile(u"/t"_s, *job, *third), u"/t/883/00001.mts.4.mp3"_s);
}

TEST_F(FileNamesTest, ARecordingNamedAsAnotherWithItsPlaceIsNotConvertedOverIt)
{
    const auto first = addFile(u"/card1/clip"_s);
    const auto second = addFile(u"/card2/clip"_s);
    const auto third = addFile(u"/card3/clip.2"_s);
    EXPECT_EQ(Mp3Location::ofMediaFile(u"/t"_s, *job, *first), u"/t/883/clip.mp3"_s);
    EXPECT_EQ(Mp3Location::ofMediaFile(u"/t"_s, *job, *second), u"/t/883/clip.2.mp3"_s);
    EXPECT_EQ(Mp3Location::ofMediaFile(u"/t"_s, *job, *third), u"/t/883/clip.2.3.mp3"_s);
}

TEST_F(FileNamesTest, ARecordingNamedAheadAsALaterOneWithItsPlaceKeepsItsName)
{
    const auto first = addFile(u"/a/clip.3"_s);
    const auto second = addFile(u"/b/clip"_s);
    const auto third = addFile(u"/c/CLIP"_s);
    EXPECT_EQ(Mp3Location::ofMediaFile(u"/t"_s, *job, *first), u"/t/883/clip.3.mp3"_s);
    EXPECT_EQ(Mp3Location::ofMediaFile(u"/t"_s, *job, *third), u"/t/883/CLIP.3.3.mp3"_s);
    EXPECT_EQ(Mp3Location::ofMediaFile(u"/t"_s, *job, *second), u"/t/883/clip.mp3"_s);
}

TEST_F(FileNamesTest, ANameTooLongForTheFileSystemIsCutAndKeptApartByItsPlace)
{
    const QString longest = QString(251, u'a');
    EXPECT_EQ(Mp3Location::ofMediaFile(u"/t"_s, *job, *addFile(u"/m/"_s + longest)),
              u"/t/883/"_s + longest + u".mp3"_s);
    const QString first = Mp3Location::ofMediaFile(u"/t"_s, *job, *addFile(u"/m/"_s + QString(252, u'b')));
    const QString second = Mp3Location::ofMediaFile(u"/t"_s, *job, *addFile(u"/m/"_s + QString(252, u'b') + u"c"_s));
    const QString wide = Mp3Location::ofMediaFile(u"/t"_s, *job, *addFile(u"/m/"_s + QString(126, u'\u00e9')));
    EXPECT_TRUE(first.endsWith(u"b.2.mp3"_s)) << first.toStdString();
    EXPECT_TRUE(second.endsWith(u"b.3.mp3"_s)) << second.toStdString();
    EXPECT_TRUE(wide.endsWith(u"\u00e9.4.mp3"_s)) << wide.toStdString();
    for (const QString& mp3 : {first, second, wide})
        EXPECT_LE(mp3.mid(7).toUtf8().size(), 255);
}

} // namespace
