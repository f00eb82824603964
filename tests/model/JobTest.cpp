#include "model/Job.h"

#include "foundation/Assertion.h"
#include "support/RecordedLog.h"
#include "support/TemporaryHome.h"

#include <QFile>

#include <chrono>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

class JobTest : public TemporaryHome
{
protected:
    static std::shared_ptr<MediaFile> file(const QString& path) { return MediaFile::mediaFileWithPath(path); }
    static QStringList names(const Job& job)
    {
        QStringList all;
        for (const auto& each : job.mediaFiles())
            all.append(each->name());
        return all;
    }
};

TEST_F(JobTest, BeginsAsALocalJobOfTodayAtAutoSyncWithoutFiles)
{
    const QDateTime before = QDateTime::currentDateTime();
    const auto job = Job::job();
    EXPECT_GE(job->depositionDate(), before);
    EXPECT_LE(job->depositionDate(), QDateTime::currentDateTime());
    EXPECT_TRUE(job->mediaFiles().isEmpty());
    EXPECT_EQ(job->processingLevel(), ProcessingLevelAutoSync);
    EXPECT_EQ(job->deliveryFormat(), DeliveryFormatAll);
    EXPECT_EQ(job->status(), JobStatusIdle);
    EXPECT_FALSE(job->serverJob());
    EXPECT_FALSE(job->transcriptUploaded());
    EXPECT_TRUE(job->transcriptFileURL().isEmpty());
    EXPECT_EQ(job->orderNum(), std::nullopt);
    EXPECT_EQ(job->depoNum(), std::nullopt);
    EXPECT_FALSE(job->rush());
    EXPECT_FALSE(job->viaInterpreter());
    EXPECT_EQ(job->name(), u"");
}

TEST_F(JobTest, IsNamedAfterItsTranscriptAndKeepsItsBookmark)
{
    const QString transcript = writeFile(u"texts/Smith.txt"_s, "x");
    const auto job = Job::job();
    job->setTranscriptFile(transcript);
    EXPECT_EQ(job->transcriptFile(), transcript);
    EXPECT_EQ(job->name(), u"Smith.txt");
    EXPECT_EQ(MediaObject::getBookmarkedURL(transcript), QUrl::fromLocalFile(transcript));
}

TEST_F(JobTest, ItsMediaFilesAreItsRows)
{
    const auto job = Job::job();
    const auto a = file(u"/a.mov"_s);
    const auto b = file(u"/b.mov"_s);
    job->setMediaFiles({a, b});
    EXPECT_FALSE(job->isLeaf());
    EXPECT_EQ(job->childs(), (QList<std::shared_ptr<MediaObject>>{a, b}));
}

TEST_F(JobTest, ANewFileGoesToTheTop)
{
    const auto job = Job::job();
    job->addMediaFilesObject(file(u"/a.mov"_s));
    job->addMediaFilesObject(file(u"/b.mov"_s));
    job->insertObject(file(u"/c.mov"_s), 1);
    job->insertObject(file(u"/d.mov"_s), 3);
    EXPECT_EQ(names(*job), QStringList({u"b.mov"_s, u"c.mov"_s, u"a.mov"_s, u"d.mov"_s}));
}

TEST_F(JobTest, TheSameFileIsKeptOnceWhateverItsLetterCase)
{
    const auto job = Job::job();
    const auto kept = file(u"/media/a.mov"_s);
    job->addMediaFilesObject(kept);
    job->addMediaFilesObject(kept);
    job->addMediaFilesObject(file(u"/media/A.MOV"_s));
    job->insertObject(file(u"/MEDIA/a.mov"_s), 1);
    EXPECT_EQ(job->mediaFiles(), (Job::MediaFiles{kept}));
}

TEST_F(JobTest, AFileIsRecognisedByThePathThatItWasGivenLater)
{
    const auto job = Job::job();
    const auto a = file(u"/a.mov"_s);
    job->addMediaFilesObject(a);
    a->setSourceFilePath(u"/b.mov"_s);
    job->addMediaFilesObject(file(u"/B.mov"_s));
    EXPECT_EQ(job->mediaFiles().size(), 1);
    job->addMediaFilesObject(file(u"/a.mov"_s));
    EXPECT_EQ(job->mediaFiles().size(), 2);
    job->removeMediaFilesObject(a);
    job->addMediaFilesObject(a);
    EXPECT_EQ(job->mediaFiles().size(), 2);
    job->setMediaFiles({file(u"/c.mov"_s)});
    job->addMediaFilesObject(file(u"/C.mov"_s));
    EXPECT_EQ(job->mediaFiles().size(), 1);
}

TEST_F(JobTest, InsertingRecomputesTheStatusAlsoWhenTheFileIsThereAlready)
{
    const auto job = Job::job();
    const auto a = file(u"/a.mov"_s);
    a->setStatus(JobStatusConverted);
    job->addMediaFilesObject(a);
    EXPECT_EQ(job->status(), JobStatusConverted);
    job->setStatus(JobStatusIdle);
    job->addMediaFilesObject(a);
    EXPECT_EQ(job->status(), JobStatusConverted);
    a->setSourceDuration(1.F);
    EXPECT_EQ(job->totalMediaDuration(), 1.F);
}

TEST_F(JobTest, AFileRefusedAsPresentIsNotObserved)
{
    const auto job = Job::job();
    job->addMediaFilesObject(file(u"/a.mov"_s));
    const auto refused = file(u"/A.mov"_s);
    job->addMediaFilesObject(refused);
    int recomputed = 0;
    QObject::connect(job.get(), &Job::totalMediaDurationChanged, job.get(), [&] { ++recomputed; });
    refused->setSourceDuration(1.F);
    EXPECT_EQ(recomputed, 0);
}

TEST_F(JobTest, ThePriceOfANewJobIsTheEmptyText)
{
    EXPECT_EQ(Job::job()->jobTotal(), u"");
    EXPECT_FALSE(Job::job()->jobTotal().isNull());
}

TEST_F(JobTest, ARemovedFileIsNoLongerObservedAndNoLongerCounted)
{
    const auto job = Job::job();
    const auto a = file(u"/a.mov"_s);
    const auto b = file(u"/b.mov"_s);
    job->addMediaFilesObject(a);
    job->addMediaFilesObject(b);
    job->setAutoSyncRate(3600);
    a->setSourceDuration(1.F);
    b->setSourceDuration(2.F);
    EXPECT_EQ(job->jobTotal(), u"3.00");
    job->removeObjectFromMediaFilesAtIndex(0);
    EXPECT_EQ(job->mediaFiles(), (Job::MediaFiles{a}));
    EXPECT_EQ(job->totalMediaDuration(), 1.F);
    EXPECT_EQ(job->jobTotal(), u"1.00");
    int recomputed = 0;
    QObject::connect(job.get(), &Job::totalMediaDurationChanged, job.get(), [&] { ++recomputed; });
    b->setSourceDuration(5.F);
    EXPECT_EQ(recomputed, 0);
    a->setSourceDuration(5.F);
    EXPECT_EQ(recomputed, 1);
}

TEST_F(JobTest, AFileIsRemovedWhereAnEqualOneIs)
{
    const auto job = Job::job();
    job->setMediaFiles({file(u"/a.mov"_s), file(u"/b.mov"_s), file(u"/c.mov"_s)});
    job->removeMediaFilesObject(file(u"/B.MOV"_s));
    EXPECT_EQ(names(*job), QStringList({u"a.mov"_s, u"c.mov"_s}));
    job->removeMediaFilesObject(file(u"/b.mov"_s));
    job->removeMediaFilesObject(nullptr);
    EXPECT_EQ(names(*job), QStringList({u"a.mov"_s, u"c.mov"_s}));
}

TEST_F(JobTest, FilesSetAgainAreObservedTwiceAndRemovalTakesBackOneObservation)
{
    const auto job = Job::job();
    const auto a = file(u"/a.mov"_s);
    job->addMediaFilesObject(a);
    job->setMediaFiles(job->mediaFiles());
    int recomputed = 0;
    QObject::connect(job.get(), &Job::totalMediaDurationChanged, job.get(), [&] { ++recomputed; });
    a->setSourceDuration(1.F);
    EXPECT_EQ(recomputed, 2);
    job->removeMediaFilesObject(a);
    recomputed = 0;
    a->setSourceDuration(2.F);
    EXPECT_EQ(recomputed, 1);
}

TEST_F(JobTest, ReplacedFilesStayObserved)
{
    const auto job = Job::job();
    const auto a = file(u"/a.mov"_s);
    job->setMediaFiles({a});
    job->setMediaFiles({});
    int recomputed = 0;
    QObject::connect(job.get(), &Job::totalMediaDurationChanged, job.get(), [&] { ++recomputed; });
    a->setSourceDuration(1.F);
    EXPECT_EQ(recomputed, 1);
    EXPECT_EQ(job->totalMediaDuration(), std::nullopt);
}

TEST_F(JobTest, SettingFilesCountsTheirDurations)
{
    const auto job = Job::job();
    const auto a = file(u"/a.mov"_s);
    a->setSourceDuration(1800.F);
    job->setAutoSyncRate(90);
    job->setMediaFiles({a, nullptr});
    EXPECT_EQ(job->mediaFiles().size(), 1);
    EXPECT_EQ(job->totalMediaDuration(), 1800.F);
    EXPECT_EQ(job->jobTotal(), u"45.00");
}

TEST_F(JobTest, AJobThatIsGoneLeavesItsFilesAlone)
{
    auto job = Job::job();
    const std::weak_ptr<Job> watched = job;
    const auto a = file(u"/a.mov"_s);
    job->setMediaFiles({a});
    job.reset();
    EXPECT_TRUE(watched.expired());
    a->setStatus(JobStatusConverting);
    a->setSourceDuration(1.F);
    EXPECT_EQ(a->status(), JobStatusConverting);
}

TEST_F(JobTest, AnIndexOutOfRangeIsAProgrammingError)
{
    const auto job = Job::job();
    if constexpr (Assertion::stopsTheProgram) {
        EXPECT_DEATH(job->removeObjectFromMediaFilesAtIndex(0), "media file index out of range");
        EXPECT_DEATH(job->insertObject(file(u"/a.mov"_s), 1), "media file index out of range");
        EXPECT_DEATH(job->insertObject(file(u"/a.mov"_s), -1), "media file index out of range");
        EXPECT_DEATH(job->addMediaFilesObject(nullptr), "no media file to insert");
    } else {
        job->removeObjectFromMediaFilesAtIndex(0);
        job->insertObject(file(u"/a.mov"_s), 7);
        job->insertObject(file(u"/b.mov"_s), -1);
        job->addMediaFilesObject(nullptr);
        EXPECT_EQ(names(*job), QStringList({u"b.mov"_s, u"a.mov"_s}));
    }
}

TEST_F(JobTest, ARefusedAccessToTheTranscriptIsLogged)
{
    const RecordedLog log;
    const QString transcript = writeFile(u"Smith.txt"_s, "x");
    const auto job = Job::job();
    job->startAccessingBookmarkedURL();
    job->setTranscriptFileURL(QUrl::fromLocalFile(transcript));
    job->startAccessingBookmarkedURL();
    job->stopAccessingBookmarkedURL();
    EXPECT_EQ(log.text(), QString());
    ASSERT_TRUE(QFile::remove(transcript));
    job->startAccessingBookmarkedURL();
    EXPECT_TRUE(log.contains(u"[error] [main] Unable to start accessing security scoped url = file://"_s + transcript));
}

TEST_F(JobTest, EachLevelHasItsProduct)
{
    const auto job = Job::job();
    job->setAutoSyncProdID(100);
    job->setMan24ProdID(u"124"_s);
    job->setMan48ProdID(148);
    job->setMan72ProdID(172);
    job->setUnattendedProdID(200);
    EXPECT_EQ(job->prodIDForProcessingLevel(ProcessingLevelAutoSync), QVariant(100));
    EXPECT_EQ(job->prodIDForProcessingLevel(ProcessingLevelMan24), QVariant(u"124"_s));
    EXPECT_EQ(job->prodIDForProcessingLevel(ProcessingLevelMan48), QVariant(148));
    EXPECT_EQ(job->prodIDForProcessingLevel(ProcessingLevelMan72), QVariant(172));
    EXPECT_EQ(job->prodIDForProcessingLevel(ProcessingLevelUnattended), QVariant(200));
}

TEST_F(JobTest, TheProductOfAnUnknownLevelIsAProgrammingError)
{
    const auto job = Job::job();
    for (const int level : {-1, 5}) {
        if constexpr (Assertion::stopsTheProgram) {
            EXPECT_DEATH((void)job->prodIDForProcessingLevel(level), "unknown processing level");
        } else {
            EXPECT_FALSE(job->prodIDForProcessingLevel(level).isValid());
        }
    }
}

// The limit is far above what this takes, and far below what comparing each file with all others would.
TEST_F(JobTest, TensOfThousandsOfSegmentsAreTakenInReasonableTime)
{
    const auto job = Job::job();
    job->setStatus(JobStatusOnServer);
    const auto start = std::chrono::steady_clock::now();
    constexpr int count = 40000;
    for (int i = 0; i < count; ++i)
        job->addMediaFilesObject(MediaFile::serverMediaFile(i));
    EXPECT_EQ(job->mediaFiles().size(), count);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

} // namespace
