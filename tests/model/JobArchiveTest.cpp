#include "model/Job.h"
#include "support/RecordedLog.h"
#include "support/TemporaryHome.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <limits>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

class JobArchiveTest : public TemporaryHome
{
protected:
    static std::shared_ptr<Job> readBack(const Job& job)
    {
        return Job::decode(QJsonDocument::fromJson(QJsonDocument(job.encode().value()).toJson()).object());
    }
    static std::shared_ptr<Job> decoded(const QByteArray& json)
    {
        QJsonParseError error;
        const QJsonDocument document = QJsonDocument::fromJson(json, &error);
        EXPECT_EQ(error.error, QJsonParseError::NoError) << json.constData();
        return Job::decode(document.object());
    }
};

TEST_F(JobArchiveTest, ReadsBackWhatIsArchived)
{
    const QString transcript = writeFile(u"Smith.txt"_s, "x");
    const auto job = Job::job();
    job->setTranscriptFile(transcript);
    job->setMediaFiles({MediaFile::mediaFileWithPath(writeFile(u"b.mov"_s, "12")),
                        MediaFile::mediaFileWithPath(writeFile(u"a.mov"_s, "123"))});
    job->setDeliveryFormat(DeliveryFormatMDB);
    job->setDeponentFirstName(u"Ann"_s);
    job->setDeponentLastName(u"Smith"_s);
    job->setDepositionDate(QDateTime(QDate(2011, 3, 4), QTime(12, 0, 0, 7)));
    job->setShortCaption(u"Smith v. Jones"_s);
    job->setRush(true);
    job->setViaInterpreter(true);
    job->setMan24ProdID(124);
    job->setMan24Rate(24.5);
    job->setMan48ProdID(u"148"_s);
    job->setMan48Rate(u"48.50"_s);
    job->setMan72ProdID(172);
    job->setMan72Rate(72);
    job->setUnattendedProdID(200);
    job->setUnattendedRate(20);
    job->setAutoSyncProdID(100);
    job->setAutoSyncRate(10);
    job->setOrderNum(815);
    job->setDepoNum(4711);
    job->setRushRateMultiplier(u"1.5"_s);
    job->setTranscriptUploaded(true);
    for (const auto& file : job->mediaFiles())
        file->setStatus(JobStatusUploaded);
    ASSERT_EQ(job->status(), JobStatusUploaded);

    const auto back = readBack(*job);
    ASSERT_TRUE(back);
    EXPECT_EQ(back->transcriptFile(), transcript);
    EXPECT_EQ(back->name(), u"Smith.txt");
    EXPECT_EQ(back->transcriptFileURL(), QUrl::fromLocalFile(transcript));
    ASSERT_EQ(back->mediaFiles().size(), 2);
    EXPECT_EQ(back->mediaFiles()[0]->name(), u"b.mov");
    EXPECT_EQ(back->mediaFiles()[1]->sourceFileSizeInBytes(), 3);
    EXPECT_EQ(back->deliveryFormat(), DeliveryFormatMDB);
    EXPECT_EQ(back->deponentFirstName(), u"Ann");
    EXPECT_EQ(back->deponentLastName(), u"Smith");
    EXPECT_EQ(back->depositionDate(), job->depositionDate());
    EXPECT_EQ(back->depositionDate().timeSpec(), Qt::LocalTime);
    EXPECT_EQ(back->shortCaption(), u"Smith v. Jones");
    EXPECT_TRUE(back->rush());
    EXPECT_TRUE(back->viaInterpreter());
    EXPECT_EQ(back->man24ProdID().toInt(), 124);
    EXPECT_EQ(back->man24Rate(), QVariant(24.5));
    EXPECT_EQ(back->man48ProdID(), QVariant(u"148"_s)) << "a text stays a text";
    EXPECT_EQ(back->man48Rate(), QVariant(u"48.50"_s));
    EXPECT_EQ(back->man72ProdID().toInt(), 172);
    EXPECT_EQ(back->man72Rate().toInt(), 72);
    EXPECT_EQ(back->unattendedProdID().toInt(), 200);
    EXPECT_EQ(back->unattendedRate().toInt(), 20);
    EXPECT_EQ(back->autoSyncProdID().toInt(), 100);
    EXPECT_EQ(back->autoSyncRate().toInt(), 10);
    EXPECT_EQ(back->orderNum(), 815);
    EXPECT_EQ(back->depoNum(), 4711);
    EXPECT_EQ(back->rushRateMultiplier(), QVariant(u"1.5"_s));
    EXPECT_TRUE(back->transcriptUploaded());
    EXPECT_FALSE(back->serverJob());
    EXPECT_TRUE(back->encode() == job->encode()) << "archived again, it is as it was";
}

TEST_F(JobArchiveTest, HoldsExactlyTheMembersThatAreNotDerived)
{
    EXPECT_EQ(Job::job()->encode()->keys(),
              QStringList({u"autoSyncProdID"_s,     u"autoSyncRate"_s,     u"deliveryFormat"_s, u"depoNum"_s,
                           u"deponentFirstName"_s,  u"deponentLastName"_s, u"depositionDate"_s, u"man24ProdID"_s,
                           u"man24Rate"_s,          u"man48ProdID"_s,      u"man48Rate"_s,      u"man72ProdID"_s,
                           u"man72Rate"_s,          u"mediaFiles"_s,       u"orderNum"_s,       u"rush"_s,
                           u"rushRateMultiplier"_s, u"shortCaption"_s,     u"status"_s,         u"transcriptFile"_s,
                           u"transcriptUploaded"_s, u"unattendedProdID"_s, u"unattendedRate"_s, u"viaInterpreter"_s}));
}

TEST_F(JobArchiveTest, AServerJobIsNotArchived)
{
    const auto job = Job::job();
    EXPECT_TRUE(job->encode());
    job->setServerJob(true);
    EXPECT_EQ(job->encode(), std::nullopt);
}

TEST_F(JobArchiveTest, WhatIsMissingStaysMissing)
{
    const auto job = Job::job();
    job->setDepositionDate({});
    const auto back = readBack(*job);
    ASSERT_TRUE(back);
    EXPECT_TRUE(back->transcriptFile().isNull());
    EXPECT_TRUE(back->deponentFirstName().isNull());
    EXPECT_TRUE(back->shortCaption().isNull());
    EXPECT_FALSE(back->depositionDate().isValid());
    EXPECT_FALSE(back->man24Rate().isValid());
    EXPECT_FALSE(back->autoSyncProdID().isValid());
    EXPECT_EQ(back->orderNum(), std::nullopt);
    EXPECT_EQ(back->depoNum(), std::nullopt);
    EXPECT_FALSE(back->transcriptUploaded());
}

TEST_F(JobArchiveTest, AJobReadBackIsAtMan24WithRushAndAtMan72WithoutWhateverItWasOrderedWith)
{
    for (const bool viaInterpreter : {true, false}) {
        for (const int level : {0, 1, 2, 3, 4}) {
            const auto job = Job::job();
            job->setViaInterpreter(viaInterpreter);
            job->setProcessingLevel(level);
            EXPECT_EQ(readBack(*job)->processingLevel(), ProcessingLevelMan72);
            job->setRush(true);
            job->setProcessingLevel(level);
            EXPECT_EQ(readBack(*job)->processingLevel(), ProcessingLevelMan24);
        }
    }
}

TEST_F(JobArchiveTest, PriceAndProgressAreComputedAgain)
{
    const auto job = Job::job();
    const auto file = MediaFile::mediaFileWithPath(u"/a.mov"_s);
    file->setSourceDuration(1800.F);
    job->setMediaFiles({file});
    job->setMan72Rate(60);
    const auto back = readBack(*job);
    EXPECT_EQ(back->totalMediaDuration(), 1800.F);
    EXPECT_EQ(back->totalValue(), 1800);
    EXPECT_EQ(back->jobTotal(), u"30.00");
    back->mediaFiles()[0]->setSourceDuration(3600.F);
    EXPECT_EQ(back->jobTotal(), u"60.00") << "its files are observed";
}

TEST_F(JobArchiveTest, AnInterruptedOrFinishedDownloadIsOfferedAgain)
{
    const std::vector<std::pair<int, int>> table{{0, 0},   {1, 1},   {5, 5},   {9, 9},   {10, 10}, {11, 11}, {12, 12},
                                                 {13, 13}, {14, 14}, {15, 14}, {16, 14}, {17, 14}, {99, 14}, {-1, 14}};
    for (const auto& [stored, back] : table) {
        const auto job = Job::job();
        job->setStatus(stored);
        EXPECT_EQ(readBack(*job)->status(), back) << stored;
    }
}

TEST_F(JobArchiveTest, TheStatusIsRecomputedFromTheFilesReadBack)
{
    const auto job = Job::job();
    const auto file = MediaFile::mediaFileWithPath(u"/a.mov"_s);
    job->setMediaFiles({file});
    file->setStatus(JobStatusUploading);
    EXPECT_EQ(job->status(), JobStatusUploading);
    EXPECT_EQ(readBack(*job)->status(), JobStatusSegmentAdded);
}

TEST_F(JobArchiveTest, ATranscriptThatIsGoneKeepsItsPath)
{
    const RecordedLog log;
    const QString transcript = writeFile(u"Smith.txt"_s, "x");
    const auto job = Job::job();
    job->setTranscriptFile(transcript);
    ASSERT_TRUE(QFile::remove(transcript));
    const auto back = readBack(*job);
    EXPECT_EQ(back->transcriptFile(), transcript);
    EXPECT_EQ(back->name(), u"Smith.txt");
    EXPECT_TRUE(back->transcriptFileURL().isEmpty());
    EXPECT_TRUE(
        log.contains(u"[error] [main] Unable to create url from persisted bookmark, filePath = "_s + transcript));
}

TEST_F(JobArchiveTest, WhatNeverWasAJobIsNone)
{
    EXPECT_FALSE(decoded("{}"));
    EXPECT_FALSE(decoded("{\"status\": 4, \"mediaFiles\": []}"));
    EXPECT_FALSE(decoded("{\"transcriptFile\": 7}"));
    EXPECT_FALSE(decoded("{\"transcriptFile\": {}}"));
}

TEST_F(JobArchiveTest, ValuesOfTheWrongTypeCountAsMissing)
{
    const auto job = decoded(R"({"transcriptFile": "/x/a.txt", "mediaFiles": {"sourceFilePath": "/a.mov"},
        "deliveryFormat": "5", "deponentFirstName": 1, "deponentLastName": [], "depositionDate": "yesterday",
        "shortCaption": {}, "rush": "yes", "viaInterpreter": 1, "man24ProdID": [1], "man24Rate": {},
        "autoSyncRate": null, "orderNum": "12", "depoNum": true, "status": "5", "rushRateMultiplier": [],
        "transcriptUploaded": 1})");
    ASSERT_TRUE(job);
    EXPECT_TRUE(job->mediaFiles().isEmpty());
    EXPECT_EQ(job->deliveryFormat(), DeliveryFormatAll);
    EXPECT_TRUE(job->deponentFirstName().isNull());
    EXPECT_TRUE(job->deponentLastName().isNull());
    EXPECT_FALSE(job->depositionDate().isValid());
    EXPECT_TRUE(job->shortCaption().isNull());
    EXPECT_FALSE(job->rush());
    EXPECT_FALSE(job->viaInterpreter());
    EXPECT_FALSE(job->man24ProdID().isValid());
    EXPECT_FALSE(job->man24Rate().isValid());
    EXPECT_FALSE(job->autoSyncRate().isValid());
    EXPECT_EQ(job->orderNum(), std::nullopt);
    EXPECT_EQ(job->depoNum(), std::nullopt);
    EXPECT_EQ(job->status(), 0);
    EXPECT_FALSE(job->rushRateMultiplier().isValid());
    EXPECT_FALSE(job->transcriptUploaded());
}

TEST_F(JobArchiveTest, NumbersOutOfRangeDoNoHarm)
{
    const auto job = decoded(R"({"transcriptFile": null, "deliveryFormat": 1e300, "status": 1e300,
        "depoNum": 1e300, "orderNum": -1e300, "man72Rate": 1e308, "rushRateMultiplier": 1e308, "rush": true,
        "autoSyncRate": 1e308, "mediaFiles": [{"sourceFilePath": "/a.mov", "sourceDuration": 3e38},
                                              {"sourceFilePath": "/b.mov", "sourceDuration": 3e38}]})");
    ASSERT_TRUE(job);
    EXPECT_EQ(job->deliveryFormat(), DeliveryFormatAll);
    EXPECT_EQ(job->status(), JobStatusReadyForDownload);
    EXPECT_EQ(job->depoNum(), std::numeric_limits<int>::max());
    EXPECT_EQ(job->orderNum(), std::numeric_limits<int>::min());
    EXPECT_EQ(job->jobTotal(), u"");
}

TEST_F(JobArchiveTest, AMediaFileThatCannotBeReadIsLeftOut)
{
    const auto job = decoded(R"({"transcriptFile": null, "mediaFiles":
        [7, null, "x", {}, {"sourceFilePath": "/a.mov"}, {"sourceFilePath": 7}, [{"sourceFilePath": "/b.mov"}]]})");
    ASSERT_TRUE(job);
    ASSERT_EQ(job->mediaFiles().size(), 1);
    EXPECT_EQ(job->mediaFiles()[0]->name(), u"a.mov");
}

} // namespace
