#include "cli/RowText.h"

#include "model/JobStatus.h"

#include <gtest/gtest.h>

namespace {

ProgressRow row(int status, const QString& statusText)
{
    ProgressRow made;
    made.name = QStringLiteral("Smith.txt");
    made.status = status;
    made.statusText = statusText;
    return made;
}

ProgressRow uploading(double processed, double total)
{
    ProgressRow made = row(JobStatusUploading, QStringLiteral("Uploading files"));
    made.depoNum = 883;
    made.processed = processed;
    made.total = total;
    return made;
}

} // namespace

TEST(RowText, namesAJobByItsNumberOnceItHasOne)
{
    ProgressRow job = row(JobStatusIdle, QStringLiteral("Idle"));
    EXPECT_EQ(RowText::plain(job), QStringLiteral("Smith.txt: Idle"));
    job.depoNum = 0;
    EXPECT_EQ(RowText::plain(job), QStringLiteral("Smith.txt: Idle"));
    job.depoNum = 883;
    EXPECT_EQ(RowText::plain(job), QStringLiteral("883 Smith.txt: Idle"));
}

TEST(RowText, indentsAFileBelowItsJob)
{
    ProgressRow file = uploading(1, 3);
    file.segment = 2;
    EXPECT_EQ(RowText::plain(file), QStringLiteral("  2. Smith.txt: Uploading files 33 %"));
}

TEST(RowText, hasPercentWhereSomethingRunsAlone)
{
    for (const int status : {JobStatusConverting, JobStatusUploading, JobStatusReprocessing, JobStatusDownloading}) {
        ProgressRow moving = uploading(2, 5);
        moving.status = status;
        EXPECT_TRUE(RowText::isMoving(moving));
        EXPECT_TRUE(RowText::plain(moving).endsWith(QStringLiteral(" 40 %"))) << status;
    }
    for (const int status : {JobStatusIdle, JobStatusConverted, JobStatusUploaded, JobStatusCompleted}) {
        ProgressRow resting = uploading(2, 5);
        resting.status = status;
        EXPECT_EQ(RowText::plain(resting), QStringLiteral("883 Smith.txt: Uploading files")) << status;
    }
    EXPECT_EQ(RowText::plain(uploading(2, 0)), QStringLiteral("883 Smith.txt: Uploading files"));
}

TEST(RowText, neverExceedsTheWhole)
{
    EXPECT_TRUE(RowText::plain(uploading(7, 5)).endsWith(QStringLiteral(" 100 %")));
    EXPECT_TRUE(RowText::plain(uploading(-1, 5)).endsWith(QStringLiteral(" 0 %")));
    EXPECT_TRUE(RowText::live(uploading(7, 5), 100).contains(QStringLiteral("[####################] 100 %")));
}

TEST(RowText, drawsABarOfTwentySigns)
{
    EXPECT_TRUE(RowText::live(uploading(2, 5), 100).contains(QStringLiteral("[########............]  40 %")));
    EXPECT_TRUE(RowText::live(uploading(0, 5), 100).contains(QStringLiteral("[....................]   0 %")));
}

TEST(RowText, showsTheScoreWhereNothingRuns)
{
    ProgressRow scored = row(JobStatusOnServer, QStringLiteral("Joined"));
    scored.score = 92;
    EXPECT_TRUE(RowText::live(scored, 100).endsWith(QStringLiteral("score 92")));
}

TEST(RowText, keepsALiveLineWithinTheTerminal)
{
    ProgressRow longName = uploading(2, 5);
    longName.name = QString(300, u'x');
    for (const int columns : {80, 100, 200})
        EXPECT_LT(RowText::live(longName, columns).size(), columns);
    EXPECT_TRUE(RowText::live(longName, 80).contains(QChar(0x2026)));
    EXPECT_LE(RowText::live(longName, 20).size(), 19);
    EXPECT_LE(RowText::live(longName, 1).size(), 0);
}
