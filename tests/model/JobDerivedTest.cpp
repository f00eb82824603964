#include "model/Job.h"
#include "support/RecordedLog.h"
#include "support/TemporaryHome.h"

#include <QMetaType>

#include <initializer_list>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

class JobDerivedTest : public TemporaryHome
{
protected:
    void addFiles(std::size_t count)
    {
        for (std::size_t i = 0; i < count; ++i)
            m_files.append(MediaFile::serverMediaFile(static_cast<int>(i)));
        m_job->setMediaFiles(m_files);
    }
    // The status of a job at `before` whose files come to these statuses.
    static int statusWith(int before, std::initializer_list<int> statuses)
    {
        const auto job = Job::job();
        Job::MediaFiles files;
        for (const int status : statuses) {
            files.append(MediaFile::serverMediaFile(static_cast<int>(files.size())));
            files.last()->setStatus(status);
        }
        job->setMediaFiles(files);
        job->setStatus(before);
        job->recalculateTotalStatus();
        return job->status();
    }
    void setLevel(int level) { m_job->setProcessingLevel(level); }

    std::shared_ptr<Job> m_job = Job::job();
    Job::MediaFiles m_files;
};

TEST_F(JobDerivedTest, TheStatusFollowsThatOfTheFiles)
{
    EXPECT_EQ(statusWith(4, {5, 6}), 5);
    EXPECT_EQ(statusWith(4, {6, 5}), 5);
    EXPECT_EQ(statusWith(2, {3, 4}), 9) << "a probed file beside one still being probed shows as uploading";
    EXPECT_EQ(statusWith(2, {3, 3}), 3);
    EXPECT_EQ(statusWith(4, {8, 9}), 9);
    EXPECT_EQ(statusWith(4, {15, 17}), 15);
    EXPECT_EQ(statusWith(4, {6, 8}), 4) << "no rule for these two, so it stays";
    EXPECT_EQ(statusWith(0, {7, 7, 7}), 7);
    EXPECT_EQ(statusWith(0, {17}), 17);
}

TEST_F(JobDerivedTest, ConvertingComesBeforeProbingBeforeUploadingBeforeDownloading)
{
    EXPECT_EQ(statusWith(0, {3, 5}), 5);
    EXPECT_EQ(statusWith(0, {5, 9}), 5);
    EXPECT_EQ(statusWith(0, {5, 15}), 5);
    EXPECT_EQ(statusWith(0, {15, 3}), 9);
    EXPECT_EQ(statusWith(0, {15, 9}), 9);
    EXPECT_EQ(statusWith(0, {9, 5, 9, 5, 9}), 5);
}

TEST_F(JobDerivedTest, NoFilesOrThreeDifferentStatusesLeaveTheStatus)
{
    EXPECT_EQ(statusWith(6, {}), 6);
    EXPECT_EQ(statusWith(6, {5, 9, 8}), 6);
    EXPECT_EQ(statusWith(6, {5, 5, 9, 3}), 6);
}

TEST_F(JobDerivedTest, FromTheServerOnTheFilesNoLongerDriveTheJob)
{
    EXPECT_EQ(statusWith(10, {5}), 5);
    for (const int status : {11, 12, 14, 17})
        EXPECT_EQ(statusWith(status, {5, 9}), status);
}

TEST_F(JobDerivedTest, TheStatusIsRecomputedInsideTheChange)
{
    addFiles(2);
    std::vector<int> seen;
    QObject::connect(m_files[1].get(), &MediaObject::statusChanged, m_job.get(),
                     [&] { seen.push_back(m_job->status()); });
    m_files[0]->setStatus(5);
    m_files[1]->setStatus(5);
    EXPECT_EQ(seen, std::vector{5});
    m_files[1]->setStatus(6);
    m_files[0]->setStatus(6);
    EXPECT_EQ(m_job->status(), 6);
}

TEST_F(JobDerivedTest, EachRecomputationIsLoggedWithTheJobsNumber)
{
    const RecordedLog log;
    addFiles(1);
    m_files[0]->setStatus(5);
    EXPECT_TRUE(log.contains(u"[info] [main] Job #0 status updated. Current status = 5"_s));
    m_job->setDepoNum(4711);
    m_files[0]->setStatus(6);
    EXPECT_TRUE(log.contains(u"[info] [main] Job #4711 status updated. Current status = 6"_s));
    m_job->setMediaFiles({});
    m_job->recalculateTotalStatus();
    EXPECT_EQ(log.count(u"[info] [main] Job #4711 status updated. Current status = 6"_s), 2);
    m_job->setStatus(11);
    m_job->recalculateTotalStatus();
    EXPECT_EQ(log.count(u"status updated"_s), 3);
}

TEST_F(JobDerivedTest, SumsTheFilesAndHasNoneForZero)
{
    addFiles(3);
    m_files[0]->setSourceDuration(1.5F);
    m_files[2]->setSourceDuration(2.F);
    m_files[0]->setDurationProcessed(0.5F);
    m_files[1]->setDurationProcessed(0.25F);
    m_files[0]->setMp3TotalFileSize(1000);
    m_files[1]->setMp3TotalFileSize(24);
    m_files[0]->setMp3UploadedFileSize(100.9);
    m_files[1]->setMp3UploadedFileSize(0.9);
    EXPECT_EQ(m_job->totalMediaDuration(), 3.5F);
    EXPECT_EQ(m_job->processedMediaDuration(), 0.75F);
    EXPECT_EQ(m_job->totalMediaFileSize(), 1024.F);
    EXPECT_EQ(m_job->uploadedMediaFileSize(), 100.F) << "whole bytes of each file";
    for (const auto& file : m_files) {
        file->setSourceDuration(std::nullopt);
        file->setDurationProcessed(0.F);
        file->setMp3TotalFileSize(0);
        file->setMp3UploadedFileSize(std::nullopt);
    }
    EXPECT_EQ(m_job->totalMediaDuration(), std::nullopt);
    EXPECT_EQ(m_job->processedMediaDuration(), std::nullopt);
    EXPECT_EQ(m_job->totalMediaFileSize(), std::nullopt);
    EXPECT_EQ(m_job->uploadedMediaFileSize(), std::nullopt);
}

TEST_F(JobDerivedTest, DurationsAreAddedInDoublePrecisionAndSizesStoredInSingle)
{
    addFiles(3);
    m_files[0]->setSourceDuration(16777216.F);
    m_files[1]->setSourceDuration(1.F);
    m_files[2]->setSourceDuration(1.F);
    EXPECT_EQ(m_job->totalMediaDuration(), 16777218.F) << "adding in single precision would lose both ones";
    m_files[0]->setMp3TotalFileSize(16777217);
    EXPECT_EQ(m_job->totalMediaFileSize(), 16777216.F) << "bytes above 16 MiB lose their last bits";
}

TEST_F(JobDerivedTest, ProgressIsInTimeUntilUploadingAndInBytesFromThenOn)
{
    addFiles(1);
    m_job->setStatus(JobStatusSegmentAdded);
    m_files[0]->setSourceDuration(10.F);
    m_files[0]->setDurationProcessed(4.F);
    EXPECT_EQ(m_job->totalValue(), 10);
    EXPECT_EQ(m_job->processedValue(), 4);
    m_files[0]->setMp3TotalFileSize(500);
    m_files[0]->setMp3UploadedFileSize(100);
    EXPECT_EQ(m_job->totalValue(), 10);
    EXPECT_EQ(m_job->processedValue(), 4);

    m_job->setStatus(JobStatusUploading);
    m_files[0]->setSourceDuration(20.F);
    m_files[0]->setDurationProcessed(8.F);
    EXPECT_EQ(m_job->totalValue(), 10);
    EXPECT_EQ(m_job->processedValue(), 4);
    m_files[0]->setMp3UploadedFileSize(200);
    EXPECT_EQ(m_job->processedValue(), 200);
    EXPECT_EQ(m_job->totalValue(), 500) << "an upload's progress brings its total with it";
    m_files[0]->setMp3TotalFileSize(600);
    EXPECT_EQ(m_job->totalValue(), 600);
}

TEST_F(JobDerivedTest, TheSumSettersMoveTheProgressToo)
{
    m_job->setTotalMediaDuration(7.F);
    m_job->setProcessedMediaDuration(3.F);
    EXPECT_EQ(m_job->totalValue(), 7);
    EXPECT_EQ(m_job->processedValue(), 3);
    m_job->setStatus(JobStatusUploading);
    m_job->setTotalMediaFileSize(70.F);
    EXPECT_EQ(m_job->totalValue(), 70);
    m_job->setUploadedMediaFileSize(std::nullopt);
    EXPECT_EQ(m_job->processedValue(), std::nullopt);
}

TEST_F(JobDerivedTest, ThePriceIsTheRateOfTheLevelForTheHoursOfMedia)
{
    m_job->setTotalMediaDuration(5400.F);
    m_job->setAutoSyncRate(90);
    m_job->setMan24Rate(u"100"_s);
    m_job->setMan48Rate(80.5);
    m_job->setMan72Rate(60);
    m_job->setUnattendedRate(10);
    const std::vector<std::pair<int, QString>> prices{{0, u"135.00"_s}, {1, u"150.00"_s}, {2, u"120.75"_s},
                                                      {3, u"90.00"_s},  {4, u"15.00"_s},  {5, u""_s},
                                                      {-1, u""_s}};
    for (const auto& [level, price] : prices) {
        setLevel(level);
        EXPECT_EQ(m_job->jobTotal(), price) << level;
    }
}

TEST_F(JobDerivedTest, EachRateOfTheLevelInForceMovesThePrice)
{
    m_job->setTotalMediaDuration(3600.F);
    setLevel(ProcessingLevelMan48);
    m_job->setMan48Rate(2);
    EXPECT_EQ(m_job->jobTotal(), u"2.00");
    setLevel(ProcessingLevelMan72);
    m_job->setMan72Rate(3);
    EXPECT_EQ(m_job->jobTotal(), u"3.00");
    setLevel(ProcessingLevelUnattended);
    m_job->setUnattendedRate(4);
    EXPECT_EQ(m_job->jobTotal(), u"4.00");
    setLevel(ProcessingLevelMan24);
    m_job->setMan24Rate(5);
    EXPECT_EQ(m_job->jobTotal(), u"5.00");
    m_job->setTotalMediaDuration(7200.F);
    EXPECT_EQ(m_job->jobTotal(), u"10.00");
}

TEST_F(JobDerivedTest, WithoutRateOrMediaThereIsNoPrice)
{
    m_job->setTotalMediaDuration(3600.F);
    EXPECT_EQ(m_job->jobTotal(), u"");
    m_job->setAutoSyncRate(0);
    EXPECT_EQ(m_job->jobTotal(), u"");
    m_job->setAutoSyncRate(u"free"_s);
    EXPECT_EQ(m_job->jobTotal(), u"");
    m_job->setAutoSyncRate(u"1e999"_s);
    EXPECT_EQ(m_job->jobTotal(), u"");
    m_job->setAutoSyncRate(1);
    EXPECT_EQ(m_job->jobTotal(), u"1.00");
    m_job->setTotalMediaDuration(0.F);
    EXPECT_EQ(m_job->jobTotal(), u"");
    m_job->setTotalMediaDuration(std::nullopt);
    EXPECT_EQ(m_job->jobTotal(), u"");
    EXPECT_FALSE(m_job->jobTotal().isNull());
}

TEST_F(JobDerivedTest, ThePriceIsComputedInDoublePrecision)
{
    setLevel(ProcessingLevelMan72);
    m_job->setMan72Rate(16777217);
    m_job->setTotalMediaDuration(3600.F);
    EXPECT_EQ(m_job->jobTotal(), u"16777217.00");
}

TEST_F(JobDerivedTest, RushMultipliesTheTwoRatesThatHaveIt)
{
    m_job->setAutoSyncRate(u"10"_s);
    m_job->setMan24Rate(20);
    EXPECT_EQ(m_job->autoSyncRushRate(), QVariant(u"10"_s)) << "the value itself while rush is off";
    EXPECT_EQ(m_job->man24RushRate(), QVariant(20));
    m_job->setRush(true);
    EXPECT_EQ(m_job->autoSyncRushRate(), QVariant(0.F)) << "no multiplier yet";
    m_job->setRushRateMultiplier(1.5);
    EXPECT_EQ(m_job->autoSyncRushRate(), QVariant(15.F));
    EXPECT_EQ(m_job->man24RushRate(), QVariant(30.F));
    EXPECT_EQ(m_job->man24RushRate().typeId(), QMetaType::Float);
    m_job->setTotalMediaDuration(3600.F);
    EXPECT_EQ(m_job->jobTotal(), u"15.00");
    m_job->setRush(false);
    EXPECT_EQ(m_job->jobTotal(), u"10.00");
    EXPECT_EQ(m_job->man24RushRate(), QVariant(20));
}

TEST_F(JobDerivedTest, SwitchingRushEitherWayMovesAManualJobToALevelThatHasIt)
{
    for (const int level : {ProcessingLevelMan48, ProcessingLevelMan72}) {
        for (const bool rush : {true, false}) {
            const auto job = Job::job();
            job->setProcessingLevel(level);
            job->setRush(rush);
            EXPECT_EQ(job->processingLevel(), ProcessingLevelAutoSync);
            EXPECT_EQ(job->rush(), rush);
            job->setViaInterpreter(true);
            job->setProcessingLevel(level);
            job->setRush(rush);
            EXPECT_EQ(job->processingLevel(), ProcessingLevelMan24);
        }
    }
    for (const int level : {ProcessingLevelAutoSync, ProcessingLevelMan24, ProcessingLevelUnattended}) {
        setLevel(level);
        m_job->setRush(true);
        EXPECT_EQ(m_job->processingLevel(), level);
    }
}

TEST_F(JobDerivedTest, SwitchingTheInterpreterEitherWayMovesAnAutoSyncJobToAManualLevel)
{
    for (const bool viaInterpreter : {true, false}) {
        const auto job = Job::job();
        job->setViaInterpreter(viaInterpreter);
        EXPECT_EQ(job->processingLevel(), ProcessingLevelMan72);
        EXPECT_EQ(job->viaInterpreter(), viaInterpreter);
        const auto rushed = Job::job();
        rushed->setRush(true);
        rushed->setViaInterpreter(viaInterpreter);
        EXPECT_EQ(rushed->processingLevel(), ProcessingLevelMan24);
    }
    for (const int level : {1, 2, 3, 4}) {
        setLevel(level);
        m_job->setViaInterpreter(true);
        EXPECT_EQ(m_job->processingLevel(), level);
    }
}

TEST_F(JobDerivedTest, AMoveOfLevelMovesThePrice)
{
    m_job->setTotalMediaDuration(3600.F);
    m_job->setAutoSyncRate(1);
    m_job->setMan24Rate(2);
    m_job->setMan72Rate(3);
    m_job->setViaInterpreter(true);
    EXPECT_EQ(m_job->jobTotal(), u"3.00");
    m_job->setRushRateMultiplier(2);
    m_job->setRush(true);
    EXPECT_EQ(m_job->jobTotal(), u"4.00");
}

TEST_F(JobDerivedTest, WhatFollowsFromAChangeIsAnnouncedBeforeTheChange)
{
    std::vector<QString> heard;
    const auto hear = [&](auto signal, const QString& word) {
        QObject::connect(m_job.get(), signal, m_job.get(), [&heard, word] { heard.push_back(word); });
    };
    hear(&Job::autoSyncRushRateChanged, u"rush rate"_s);
    hear(&Job::jobTotalChanged, u"price"_s);
    hear(&Job::processingLevelChanged, u"level"_s);
    hear(&Job::rushChanged, u"rush"_s);
    hear(&Job::man48RateChanged, u"rate"_s);
    setLevel(ProcessingLevelMan48);
    EXPECT_EQ(heard, (std::vector{u"price"_s, u"level"_s}));
    heard.clear();
    m_job->setMan48Rate(1);
    EXPECT_EQ(heard, (std::vector{u"price"_s, u"rate"_s}));
    heard.clear();
    m_job->setRush(true);
    EXPECT_EQ(heard, (std::vector{u"price"_s, u"level"_s, u"rush rate"_s, u"price"_s, u"rush"_s}));
}

} // namespace
