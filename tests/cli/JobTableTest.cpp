#include "cli/JobTable.h"

#include "support/TemporaryHome.h"

#include <gmock/gmock.h>

using JobTable::Row;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

class JobTableTest : public TemporaryHome
{
protected:
    [[nodiscard]] std::shared_ptr<Job> savedJob(std::optional<int> depoNum, const QStringList& recordings) const
    {
        const auto job = Job::job();
        job->setTranscriptFile(path(QStringLiteral("Saved.txt")));
        job->setDepoNum(depoNum);
        job->setOrderNum(depoNum ? std::optional(5120) : std::nullopt);
        Job::MediaFiles files;
        for (const QString& name : recordings) {
            files << MediaFile::mediaFileWithPath(path(name));
            files.back()->setSourceDuration(10.5F);
        }
        job->setMediaFiles(files);
        return job;
    }
};

const QString reply = QStringLiteral("Depo: 884 Roe Richard.txt Joining\nDepo: 883 Other name.txt Splitting\n"
                                     "Segment: 884 2 Joined 61000 70\nSegment: 884 1 Joined 2500 95\n"
                                     "Segment: 883 1 Uploaded 9000 -1\nSegment: 77 1 Joined 1000 50\n");

} // namespace

TEST_F(JobTableTest, isEmptyWithoutJobs)
{
    EXPECT_THAT(JobTable::rows(QString(), {}), IsEmpty());
    EXPECT_THAT(JobTable::rows(QStringLiteral("Segment: 77 1 Joined 1000 50"), {}), IsEmpty())
        << "A segment without its job is none.";
}

TEST_F(JobTableTest, hasEachJobBeforeItsSegmentsInTheOrderOfNumbers)
{
    const auto rows = JobTable::rows(reply, {});
    ASSERT_EQ(rows.size(), 5U);
    const std::vector<std::pair<int, int>> expected{{883, 0}, {883, 1}, {884, 0}, {884, 1}, {884, 2}};
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(std::pair(rows[i].depoNum, rows[i].segment), expected[i]);
        EXPECT_TRUE(rows[i].isOnService);
        EXPECT_FALSE(rows[i].isSaved);
    }
    EXPECT_EQ(rows[2].name, QStringLiteral("Roe Richard.txt"));
    EXPECT_EQ(rows[2].status, QStringLiteral("Joining"));
    EXPECT_EQ(rows[4].name, QStringLiteral("Segment 2"));
}

TEST_F(JobTableTest, givesAJobTheScoreOfItsWorstSegmentAndTheSumOfDurations)
{
    const auto rows = JobTable::rows(reply, {});
    ASSERT_EQ(rows.size(), 5U);
    EXPECT_EQ(rows[0].score, std::nullopt) << "-1 is none.";
    EXPECT_EQ(rows[2].score, 70);
    EXPECT_EQ(rows[3].score, 95);
    EXPECT_EQ(rows[2].duration, 63.5);
    EXPECT_EQ(rows[3].duration, 2.5);
}

TEST_F(JobTableTest, putsWhatTheServiceSaysBeforeWhatWasSaved)
{
    const auto rows = JobTable::rows(reply, {savedJob(883, {QStringLiteral("a.wav"), QStringLiteral("b.wav")})});
    ASSERT_EQ(rows.size(), 6U);
    EXPECT_TRUE(rows[0].isSaved && rows[0].isOnService);
    EXPECT_EQ(rows[0].status, QStringLiteral("Splitting"));
    EXPECT_EQ(rows[0].name, QStringLiteral("Saved.txt")) << "The user's own name for it.";
    EXPECT_EQ(rows[0].orderNum, 5120);
    EXPECT_EQ(rows[0].duration, 21.0);
    EXPECT_EQ(rows[1].name, QStringLiteral("a.wav"));
    EXPECT_EQ(rows[1].status, QStringLiteral("Uploaded"));
    EXPECT_EQ(rows[1].duration, 10.5) << "Measured here.";
    EXPECT_EQ(rows[2].name, QStringLiteral("b.wav"));
    EXPECT_FALSE(rows[2].isOnService);
    EXPECT_EQ(rows[2].status, QStringLiteral("Idle"));
}

TEST_F(JobTableTest, keepsJobsWithoutANumberApart)
{
    const auto rows = JobTable::rows(QString(), {savedJob(std::nullopt, {QStringLiteral("a.wav")}),
                                                 savedJob(std::nullopt, {QStringLiteral("b.wav")})});
    ASSERT_EQ(rows.size(), 4U);
    EXPECT_EQ(rows[1].name, QStringLiteral("a.wav"));
    EXPECT_EQ(rows[3].name, QStringLiteral("b.wav"));
}

TEST_F(JobTableTest, linesStandBelowTheirHeadings)
{
    const Row job{.depoNum = 883,
                  .orderNum = 5120,
                  .name = QStringLiteral("Doe.txt"),
                  .status = QStringLiteral("Preparing and Uploading"),
                  .score = 92,
                  .duration = 3725.9,
                  .isSaved = true,
                  .isOnService = true};
    const QString line = JobTable::line(job);
    const QString header = JobTable::header();
    for (const auto& [heading, text] :
         {std::pair("JOB", "883"), std::pair("ORDER", "5120"), std::pair("STATUS", "Preparing"),
          std::pair("WHERE", "service, saved"), std::pair("NAME", "Doe.txt")})
        EXPECT_EQ(line.indexOf(QLatin1StringView(text)), header.indexOf(QLatin1StringView(heading))) << heading;
    EXPECT_EQ(line.indexOf(QStringLiteral("92")) + 2, header.indexOf(QStringLiteral("SCORE")) + 5);
    EXPECT_EQ(line.indexOf(QStringLiteral("1:02:05")) + 7, header.indexOf(QStringLiteral("DURATION")) + 8);
}

TEST_F(JobTableTest, linesHaveDashesForWhatIsNotKnown)
{
    EXPECT_EQ(JobTable::line({.name = QStringLiteral("x"), .status = QStringLiteral("Idle"), .isSaved = true})
                  .simplified()
                  .toStdString(),
              "- - Idle - - saved x");
    EXPECT_THAT(JobTable::line({.depoNum = 883, .segment = 2, .isOnService = true}).toStdString(), StartsWith("  2  "));
}

TEST_F(JobTableTest, objectsHaveNullsForWhatIsNotKnown)
{
    const QJsonObject job = JobTable::object({.depoNum = 883, .name = QStringLiteral("x")});
    EXPECT_EQ(job.value(QStringLiteral("event")).toString(), QStringLiteral("job"));
    EXPECT_TRUE(job.value(QStringLiteral("order")).isNull());
    EXPECT_TRUE(job.value(QStringLiteral("score")).isNull());
    EXPECT_TRUE(job.value(QStringLiteral("duration")).isNull());
    EXPECT_FALSE(job.contains(QStringLiteral("segment")));
    const QJsonObject file = JobTable::object({.depoNum = 883, .segment = 2, .score = 0, .duration = 1.5});
    EXPECT_EQ(file.value(QStringLiteral("event")).toString(), QStringLiteral("file"));
    EXPECT_EQ(file.value(QStringLiteral("segment")).toInt(), 2);
    EXPECT_TRUE(file.value(QStringLiteral("score")).isDouble()) << "A score of 0 is a score.";
    EXPECT_EQ(file.value(QStringLiteral("duration")).toDouble(), 1.5);
}

TEST_F(JobTableTest, hoursMayHaveThreeDigits)
{
    EXPECT_EQ(JobTable::hoursMinutesSeconds(0.99), QStringLiteral("0:00:00"));
    EXPECT_EQ(JobTable::hoursMinutesSeconds(59.5), QStringLiteral("0:00:59"));
    EXPECT_EQ(JobTable::hoursMinutesSeconds(3725), QStringLiteral("1:02:05"));
    EXPECT_EQ(JobTable::hoursMinutesSeconds(100.0 * 3600), QStringLiteral("100:00:00"));
}
