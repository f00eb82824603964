#include "model/JobStatus.h"

#include "foundation/Assertion.h"
#include "model/Job.h"
#include "support/RecordedLog.h"
#include "support/TemporaryHome.h"

#include <limits>
#include <map>

using namespace Qt::StringLiterals;

namespace {

class JobStatusTest : public TemporaryHome
{};

TEST_F(JobStatusTest, EveryStatusHasItsNumberAndText)
{
    const std::map<int, QString> texts{
        {JobStatusIdle, u"Idle"_s},
        {JobStatusSubmittingDetails, u"Submitting Job"_s},
        {JobStatusDetailsSubmitted, u"Submitting Job"_s},
        {JobStatusExtractingInfo, u"Preparing for processing"_s},
        {JobStatusInfoExtracted, u"Waiting for processing"_s},
        {JobStatusConverting, u"Processing media files"_s},
        {JobStatusConverted, u"Media files processed"_s},
        {JobStatusAddingSegment, u"Submitting Job"_s},
        {JobStatusSegmentAdded, u"Job submitted"_s},
        {JobStatusUploading, u"Uploading files"_s},
        {JobStatusUploaded, u"Files uploaded"_s},
        {JobStatusOnServer, u"Whatever"_s},
        {JobStatusReprocessRequested, u"Processing media files"_s},
        {JobStatusReprocessing, u"Processing media files"_s},
        {JobStatusReadyForDownload, u"Ready for download"_s},
        {JobStatusDownloading, u"Downloading"_s},
        {JobStatusDownloaded, u"Downloaded"_s},
        {JobStatusCompleted, u"Completed"_s},
    };
    ASSERT_EQ(texts.size(), 18u);
    EXPECT_EQ(texts.rbegin()->first, 17);
    const auto file = MediaFile::serverMediaFile(1);
    file->setServerStatus(u"Whatever"_s);
    for (const auto& [status, text] : texts) {
        file->setStatus(status);
        EXPECT_EQ(jobStatusText(*file), text) << status;
    }
}

TEST_F(JobStatusTest, AnyOtherNumberIsUnknown)
{
    const auto file = MediaFile::serverMediaFile(1);
    for (const int status : {-1, 18, 255, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        file->setStatus(status);
        EXPECT_EQ(file->status(), status);
        EXPECT_EQ(jobStatusText(*file), u"unknown");
    }
}

TEST_F(JobStatusTest, AJobOnTheServerShowsPlainWordsAndItsFilesTheServicesWord)
{
    const std::map<QString, QString> words{
        {u"Uploading"_s, u"Preparing and Uploading"_s},
        {u"AutoSplitting"_s, u"In Process"_s},
        {u"Split"_s, u"In Process"_s},
        {u"Splitting"_s, u"In Process"_s},
        {u"SplitDone"_s, u"In Process"_s},
        {u"Join"_s, u"In Process"_s},
        {u"Joining"_s, u"In Process"_s},
        {u"JoinedCMS"_s, u"In Process"_s},
        {u"JoiningCMS"_s, u"In Process"_s},
        {u"Joined"_s, u"Completed"_s},
        {u"Done"_s, u"Completed"_s},
        {u"joined"_s, u"Unknown"_s},
        {u"Joined "_s, u"Unknown"_s},
        {u""_s, u"Unknown"_s},
        {u"Anything"_s, u"Unknown"_s},
    };
    const auto job = Job::job();
    const auto file = MediaFile::serverMediaFile(1);
    job->setStatus(JobStatusOnServer);
    file->setStatus(JobStatusOnServer);
    for (const auto& [word, shown] : words) {
        job->setServerStatus(word);
        file->setServerStatus(word);
        EXPECT_EQ(jobStatusText(*job), shown) << qPrintable(word);
        EXPECT_EQ(jobStatusText(*file), word);
    }
}

TEST_F(JobStatusTest, WithoutAServerStatusAJobIsUnknownAndAFileShowsNothing)
{
    EXPECT_EQ(userStringForServerStatus(*Job::job()), u"Unknown");
    EXPECT_TRUE(userStringForServerStatus(*MediaFile::serverMediaFile(1)).isNull());
}

TEST_F(JobStatusTest, WhatIsNoMediaObjectIsAProgrammingError)
{
    const QObject object;
    if constexpr (Assertion::stopsTheProgram) {
        EXPECT_DEATH((void)userStringForServerStatus(object), "Invalid media object type");
    } else {
        const RecordedLog log;
        EXPECT_EQ(userStringForServerStatus(object), u"Invalid");
        EXPECT_TRUE(log.contains(u"Invalid media object type"_s));
    }
}

} // namespace
