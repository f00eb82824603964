#include "JobListFixture.h"

#include "foundation/MainThread.h"
#include "support/Waiting.h"

#include <atomic>
#include <thread>

using namespace Qt::StringLiterals;

namespace {

class JobListThreadsTest : public JobListFixture
{};

} // namespace

TEST_F(JobListThreadsTest, ChangesOnOtherThreadsAreAnnouncedOnTheMainThread)
{
    addJobs(4, 2);
    JobListModel gathering(engine());
    gathering.setGatheringInterval(std::chrono::milliseconds(5));
    bool cameElsewhere = false;
    QObject::connect(&gathering, &QAbstractItemModel::dataChanged, &gathering,
                     [&] { cameElsewhere = cameElsewhere || !MainThread::isCurrent(); });
    std::vector<std::jthread> workers;
    for (const auto& job : engine().jobs()) {
        workers.emplace_back([job] {
            for (int i = 1; i <= 500; ++i) {
                job->setScoreValue(i);
                for (const auto& file : job->mediaFiles())
                    file->setProcessedValue(i);
            }
            job->setName(u"ended"_s);
        });
    }
    const QModelIndex last = gathering.index(3, 0);
    Announcements announced(gathering);
    workers.clear();
    EXPECT_TRUE(Waiting::until([&] { return announced.changed.size() > 0 && last.data().toString() == u"ended"_s; }));
    EXPECT_FALSE(cameElsewhere);
    EXPECT_EQ(announced.reset.size(), 0);
}

TEST_F(JobListThreadsTest, ABatchOfChangesOfAnotherThreadWakesTheListOnce)
{
    const auto changes = std::make_shared<RowChanges>();
    int woken = 0;
    changes->setWake([&] { ++woken; });
    std::jthread([&] {
        for (RowChanges::RowId row = 1; row <= 1000; ++row)
            changes->changed(row % 10);
    }).join();
    MainThread::drain();
    EXPECT_EQ(woken, 1);
    EXPECT_EQ(changes->take().size(), 10U);
    EXPECT_TRUE(changes->take().empty());

    std::jthread([&] { changes->changed(1); }).join();
    MainThread::drain();
    EXPECT_EQ(woken, 2) << "taking ends the batch";
}

TEST_F(JobListThreadsTest, RowsThatChangeByTurnsAreGatheredOnceEachTheLastFirst)
{
    const auto changes = std::make_shared<RowChanges>();
    for (int round = 0; round < 10'000; ++round) {
        for (const RowChanges::RowId row : {3, 1, 2})
            changes->changed(row);
    }
    EXPECT_EQ(changes->take(), (std::vector<RowChanges::RowId>{3, 2, 1}));
}

TEST_F(JobListThreadsTest, TheListMayGoWhileAnotherThreadChangesItsRows)
{
    addJobs(2, 2);
    std::vector<std::unique_ptr<JobListModel>> lists;
    for (int i = 0; i < 50; ++i) {
        lists.push_back(std::make_unique<JobListModel>(engine()));
        lists.back()->setGatheringInterval(std::chrono::milliseconds(0));
    }
    std::atomic<bool> ends = false;
    std::atomic<int> rounds = 0;
    std::jthread worker([&, jobs = engine().jobs()] {
        while (!ends) {
            for (const auto& job : jobs) {
                job->setScoreValue(++rounds);
                job->mediaFiles().first()->setProcessedValue(rounds);
            }
        }
    });
    for (auto& list : lists) {
        const int before = rounds;
        EXPECT_TRUE(Waiting::until([&] { return rounds > before; }));
        list.reset();
    }
    ends = true;
    worker.join();
    MainThread::drain();
}

TEST_F(JobListThreadsTest, ALocalJobIsFollowedFromTheMomentItArrives)
{
    list();
    Announcements announced(list());
    const auto job = addJob(u"Smith"_s);
    addFile(*job, u"tape"_s);
    std::jthread([job] {
        job->setName(u"Adams"_s);
        job->mediaFiles().first()->setScoreValue(50);
    }).join();
    MainThread::drain();
    EXPECT_EQ(list().rowCount(), 0) << "gathered, not yet announced";
    list().announceChanges();
    EXPECT_EQ(names(), QStringList{u"Adams"_s});
    EXPECT_EQ(names(at(0)), QStringList{u"tape"_s});
    EXPECT_EQ(announced.inserted.size(), 1);
}

TEST_F(JobListThreadsTest, AFileThatAnotherThreadAddsIsShown)
{
    const auto job = addJob(u"Smith"_s);
    JobListModel gathering(engine());
    gathering.setGatheringInterval(std::chrono::milliseconds(0));
    std::jthread([job] { addFile(*job, u"tape"_s); }).join();
    EXPECT_TRUE(Waiting::until([&] { return gathering.rowCount(gathering.index(0, 0)) == 1; }));
}
