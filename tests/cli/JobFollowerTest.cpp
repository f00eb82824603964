#include "cli/JobFollower.h"

#include "foundation/MainThread.h"
#include "support/TemporaryHome.h"
#include "support/Waiting.h"

#include <algorithm>
#include <string>
#include <thread>

namespace {

class SilentServices : public ApplicationServices
{
public:
    void presentError(const Error&) override {}
    [[nodiscard]] std::shared_ptr<FileLogger> fileLogger() const override { return nullptr; }
};

class RecordingReporter : public Reporter
{
public:
    void rowChanged(const ProgressRow& row) override { changes.push_back(row); }
    void rowsAre(const std::vector<ProgressRow>& rows) override { last = rows; }
    void showNote(const QString&) override {}
    void showError(const QString&) override {}
    void result(const QString&, const QJsonObject&) override {}

    // The states of a row in the order in which they were told.
    [[nodiscard]] std::vector<int> statesOf(int segment) const
    {
        std::vector<int> states;
        for (const ProgressRow& row : changes) {
            if (row.segment == segment)
                states.push_back(row.status);
        }
        return states;
    }

    std::vector<ProgressRow> changes;
    std::vector<ProgressRow> last;
};

class JobFollowerTest : public TemporaryHome
{
protected:
    // What is posted to the main thread is for the reporter.
    ~JobFollowerTest() override { MainThread::drain(); }

    static ServiceHosts hosts()
    {
        return {ServiceHosts::Host{QStringLiteral("127.0.0.1"), 9}, ServiceHosts::Host{QStringLiteral("127.0.0.1"), 9}};
    }
    [[nodiscard]] std::shared_ptr<Job> newJob() const
    {
        const auto job = Job::job();
        job->setTranscriptFile(path(QStringLiteral("Doe.txt")));
        job->addMediaFilesObject(MediaFile::mediaFileWithPath(path(QStringLiteral("a.wav"))));
        return job;
    }

    SilentServices services;
    JobModel model{services, hosts()};
    RecordingReporter reporter;
};

} // namespace

TEST_F(JobFollowerTest, tellsOfJobsThatAreThereAndOfThoseThatCome)
{
    model.addJobsObject(newJob());
    JobFollower follower(model, reporter);
    EXPECT_EQ(reporter.changes.size(), 2U);
    model.addJobsObject(newJob());
    EXPECT_EQ(reporter.changes.size(), 4U);
}

TEST_F(JobFollowerTest, missesNoStateThatAnotherThreadSets)
{
    JobFollower follower(model, reporter);
    const auto job = newJob();
    model.addJobsObject(job);
    std::thread([file = job->mediaFiles().front()] {
        for (int status = JobStatusExtractingInfo; status <= JobStatusUploaded; ++status)
            file->setStatus(status);
    }).join();
    const std::vector<int> expected{0, 3, 4, 5, 6, 7, 8, 9, 10};
    EXPECT_TRUE(Waiting::until([&] { return reporter.statesOf(1).size() == expected.size(); }));
    EXPECT_EQ(reporter.statesOf(1), expected);
}

TEST_F(JobFollowerTest, tellsAllRowsAtASteadyRate)
{
    const auto job = newJob();
    model.addJobsObject(job);
    JobFollower follower(model, reporter);
    EXPECT_TRUE(Waiting::until([&] { return reporter.last.size() == 2; }));
    job->mediaFiles().front()->setSourceDuration(10.0F);
    job->mediaFiles().front()->setDurationProcessed(4.0F);
    EXPECT_TRUE(Waiting::until([&] { return reporter.last[1].fraction().value_or(0) > 0.39; }));
}

TEST_F(JobFollowerTest, leavesTheServicesJobsOutOfTheRows)
{
    const auto job = newJob();
    job->setServerJob(true);
    model.addJobsObject(job);
    JobFollower follower(model, reporter);
    follower.showNow();
    EXPECT_TRUE(reporter.last.empty());
}

TEST_F(JobFollowerTest, numbersTheServicesSegmentsByTheirNames)
{
    const auto job = Job::job();
    job->setServerJob(true);
    model.addJobsObject(job);
    JobFollower follower(model, reporter);
    // Each comes in at the top.
    for (const int segment : {1, 2, 3}) {
        const auto file = MediaFile::serverMediaFile(segment);
        file->setName(QStringLiteral("Segment %1").arg(segment));
        job->addMediaFilesObject(file);
    }
    for (const int segment : {1, 2, 3}) {
        const auto told = std::find_if(reporter.changes.begin(), reporter.changes.end(),
                                       [&](const ProgressRow& row) { return row.segment == segment; });
        ASSERT_NE(told, reporter.changes.end());
        EXPECT_EQ(told->name, QStringLiteral("Segment %1").arg(segment));
    }
}
