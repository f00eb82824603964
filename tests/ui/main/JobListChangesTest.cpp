#include "JobListFixture.h"

#include "support/Waiting.h"

#include <QElapsedTimer>
#include <QSet>

using namespace Qt::StringLiterals;

namespace {

class JobListChangesTest : public JobListFixture
{};

} // namespace

TEST_F(JobListChangesTest, AChangeIsAnnouncedForItsRowAlone)
{
    addJobs(5, 0);
    Announcements announced(list());
    engine().jobs()[2]->setServerStatus(u"Split"_s);
    list().announceChanges();
    ASSERT_EQ(announced.changed.size(), 1);
    EXPECT_EQ(announced.span(0), qMakePair(2, 2));
    EXPECT_EQ(announced.changed.at(0).at(1).toModelIndex().column(), jobListColumnCount - 1);
    EXPECT_EQ(announced.reset.size() + announced.rearranged.size(), 0);
}

TEST_F(JobListChangesTest, ChangesOfNeighboursAreOneSpanAndManyOfARowAreOne)
{
    addJobs(6, 0);
    Announcements announced(list());
    const auto jobs = engine().jobs();
    for (const int row : {4, 1, 2, 1, 1})
        jobs[static_cast<std::size_t>(row)]->setScoreValue(50);
    list().announceChanges();
    ASSERT_EQ(announced.changed.size(), 2);
    EXPECT_EQ(announced.span(0), qMakePair(1, 2));
    EXPECT_EQ(announced.span(1), qMakePair(4, 4));
}

TEST_F(JobListChangesTest, SpansOfFilesStayWithinTheirJob)
{
    addJobs(2, 2);
    Announcements announced(list());
    for (const auto& job : engine().jobs()) {
        for (const auto& file : job->mediaFiles())
            file->setScoreValue(50);
    }
    list().announceChanges();
    ASSERT_EQ(announced.changed.size(), 2);
    EXPECT_EQ(announced.span(0), qMakePair(0, 1));
    EXPECT_EQ(announced.changed.at(0).at(0).toModelIndex().parent(), at(0));
    EXPECT_EQ(announced.span(1), qMakePair(0, 1));
    EXPECT_EQ(announced.changed.at(1).at(0).toModelIndex().parent(), at(1));
}

TEST_F(JobListChangesTest, NothingIsAnnouncedWhenNothingChanged)
{
    addJobs(2, 1);
    Announcements announced(list());
    list().announceChanges();
    EXPECT_EQ(announced.all.size(), 0);
}

TEST_F(JobListChangesTest, ChangesAreGatheredAndAnnouncedOnceInAnInterval)
{
    const auto job = addJob(u"Smith"_s);
    JobListModel gathering(engine());
    gathering.setGatheringInterval(std::chrono::milliseconds(200));
    QElapsedTimer time;
    time.start();
    std::vector<qint64> announced;
    QObject::connect(&gathering, &JobListModel::changesAnnounced, &gathering,
                     [&] { announced.push_back(time.elapsed()); });
    int changes = 0;
    ASSERT_TRUE(Waiting::until([&] {
        job->setProcessedValue(++changes);
        return announced.size() == 3;
    }));
    EXPECT_GT(changes, 3);
    // A coarse timer may be a twentieth early.
    EXPECT_GE(announced[1] - announced[0], 180);
    EXPECT_GE(announced[2] - announced[1], 180);
}

TEST_F(JobListChangesTest, TheLastOfManyChangesIsAnnouncedByItself)
{
    const auto job = addJob(u"Smith"_s);
    JobListModel gathering(engine());
    gathering.setGatheringInterval(std::chrono::milliseconds(20));
    QString seen;
    QObject::connect(&gathering, &QAbstractItemModel::dataChanged, &gathering,
                     [&](const QModelIndex& index) { seen = index.data().toString(); });
    for (const auto& name : {u"A"_s, u"B"_s, u"C"_s}) {
        job->setName(name);
        EXPECT_TRUE(Waiting::until([&] { return seen == name; }));
    }
}

// Rows that come and go

TEST_F(JobListChangesTest, AJobThatComesIsARowAtTheEndWithItsFiles)
{
    addJobs(2, 1);
    const QAbstractItemModelTester tester(&list());
    Announcements announced(list());
    auto job = makeJob(u"Smith"_s);
    addFile(*job, u"tape"_s);
    engine().addJobsObject(job);
    EXPECT_EQ(list().rowCount(), 2) << "gathered, not yet announced";
    list().announceChanges();
    ASSERT_EQ(announced.inserted.size(), 1);
    EXPECT_EQ(names(), (QStringList{u"Job 1"_s, u"Job 2"_s, u"Smith"_s}));
    EXPECT_EQ(names(at(2)), QStringList{u"tape"_s});
    EXPECT_EQ(announced.reset.size() + announced.rearranged.size(), 0);

    job->setScoreValue(1);
    list().announceChanges();
    EXPECT_EQ(announced.changed.size(), 1) << "the new row is followed";
}

TEST_F(JobListChangesTest, AJobThatGoesTakesItsRowsAlong)
{
    addJobs(3, 2);
    const QAbstractItemModelTester tester(&list());
    Announcements announced(list());
    const auto gone = engine().jobs()[1];
    engine().removeJobsObject(gone);
    list().announceChanges();
    ASSERT_EQ(announced.removed.size(), 1);
    EXPECT_EQ(names(), (QStringList{u"Job 1"_s, u"Job 3"_s}));

    gone->setScoreValue(1);
    gone->mediaFiles().first()->setScoreValue(1);
    engine().jobs()[1]->setScoreValue(2);
    list().announceChanges();
    ASSERT_EQ(announced.changed.size(), 1) << "rows that are gone are changed by nobody";
    EXPECT_EQ(announced.span(0), qMakePair(1, 1));
}

TEST_F(JobListChangesTest, AJobThatComesAndGoesWithinOneIntervalIsNeverSeen)
{
    addJobs(2, 0);
    Announcements announced(list());
    const auto job = addJob(u"Smith"_s);
    engine().removeJobsObject(job);
    list().announceChanges();
    EXPECT_EQ(announced.inserted.size() + announced.removed.size(), 0);
}

TEST_F(JobListChangesTest, AJobThatComesGoesAndComesAgainWithinOneIntervalHasOneRow)
{
    list();
    const auto job = addJob(u"Smith"_s);
    engine().removeJobsObject(job);
    engine().addJobsObject(job);
    job->setScoreValue(1);
    list().announceChanges();
    EXPECT_EQ(names(), QStringList{u"Smith"_s});
    Announcements announced(list());
    job->setScoreValue(2);
    list().announceChanges();
    EXPECT_EQ(announced.changed.size(), 1);
}

TEST_F(JobListChangesTest, AJobTakenOutAndPutBackMovesToTheEngineOrdersEnd)
{
    addJobs(3, 1);
    const QAbstractItemModelTester tester(&list());
    const QPersistentModelIndex first = at(0);
    const auto job = engine().jobs()[0];
    engine().removeJobsObject(job);
    engine().addJobsObject(job);
    list().announceChanges();
    EXPECT_EQ(names(), (QStringList{u"Job 2"_s, u"Job 3"_s, u"Job 1"_s}));
    EXPECT_EQ(first, at(2));
}

TEST_F(JobListChangesTest, FilesComeAndGoBelowTheirJob)
{
    addJobs(2, 0);
    const QAbstractItemModelTester tester(&list());
    Announcements announced(list());
    const auto job = engine().jobs()[1];
    const auto one = addFile(*job, u"one"_s);
    addFile(*job, u"two"_s);
    list().announceChanges();
    ASSERT_EQ(announced.inserted.size(), 1);
    EXPECT_EQ(announced.inserted.at(0).at(0).toModelIndex(), at(1));
    EXPECT_EQ(names(at(1)), (QStringList{u"one"_s, u"two"_s}));

    job->removeMediaFilesObject(one);
    list().announceChanges();
    ASSERT_EQ(announced.removed.size(), 1);
    EXPECT_EQ(names(at(1)), QStringList{u"two"_s});
    EXPECT_EQ(announced.reset.size(), 0);
}

TEST_F(JobListChangesTest, AFilePutOnTopIsShownOnTop)
{
    const auto job = addJob(u"Smith"_s);
    addFile(*job, u"one"_s);
    const QPersistentModelIndex one = at(0, 0, JobListColumn::Name);
    const auto second = MediaFile::serverMediaFile(9);
    second->setName(u"nine"_s);
    job->addMediaFilesObject(second);
    list().announceChanges();
    EXPECT_EQ(names(at(0)), (QStringList{u"nine"_s, u"one"_s}));
    EXPECT_EQ(one.row(), 1);
}

TEST_F(JobListChangesTest, FilesInAnotherOrderKeepTheirIndexes)
{
    const auto job = addJob(u"Smith"_s);
    for (const auto& name : {u"a"_s, u"b"_s, u"c"_s})
        addFile(*job, name);
    const QAbstractItemModelTester tester(&list());
    const QPersistentModelIndex first = at(0, 0, JobListColumn::Name);
    auto files = job->mediaFiles();
    std::reverse(files.begin(), files.end());
    Announcements announced(list());
    job->setMediaFiles(files);
    list().announceChanges();
    EXPECT_EQ(names(at(0)), (QStringList{u"c"_s, u"b"_s, u"a"_s}));
    EXPECT_EQ(first.row(), 2);
    EXPECT_EQ(announced.inserted.size() + announced.removed.size() + announced.reset.size(), 0);
}

TEST_F(JobListChangesTest, AFileThatAJobHoldsTwiceHasOneRow)
{
    const auto job = addJob(u"Smith"_s);
    const auto file = addFile(*job, u"a"_s);
    list();
    job->setMediaFiles({file, file});
    list().announceChanges();
    EXPECT_EQ(names(at(0)), QStringList{u"a"_s});
}

TEST_F(JobListChangesTest, ManyScatteredJobsGoInOneSpan)
{
    addJobs(100, 1);
    const QAbstractItemModelTester tester(&list());
    const QPersistentModelIndex kept = at(51);
    Announcements announced(list());
    const auto jobs = engine().jobs();
    for (std::size_t i = 0; i < jobs.size(); i += 2)
        engine().removeJobsObject(jobs[i]);
    list().announceChanges();
    EXPECT_EQ(announced.removed.size(), 1);
    EXPECT_EQ(announced.reset.size(), 0);
    EXPECT_EQ(list().rowCount(), 50);
    EXPECT_EQ(kept.row(), 25);
    EXPECT_EQ(kept.data().toString(), u"Job 52"_s);
}

TEST_F(JobListChangesTest, ResettingTheEngineRemovesTheRowsAndBuildsThemFromTheReply)
{
    addJobs(50, 2);
    Announcements announced(list());
    engine().resetAndLoadFromServer();
    engine().processCheckJobsStatusOnServerResponse(JobModel::simulatedCheckStatusResponseNumOfDepos(30, 2));
    list().announceChanges();
    EXPECT_EQ(announced.removed.size(), 1);
    EXPECT_EQ(announced.inserted.size(), 1);
    EXPECT_EQ(announced.reset.size(), 0);
    EXPECT_EQ(list().rowCount(), 30);
    EXPECT_EQ(list().rowCount(at(0)), 2);
}

TEST_F(JobListChangesTest, StatusesComeInTheEnginesOrderHoweverTheListIsSorted)
{
    addJob(u"C"_s, 17);
    addJob(u"A"_s, 12);
    addJob(u"B"_s, 3);
    list().sort(static_cast<int>(JobListColumn::Name));
    EXPECT_EQ(names(), (QStringList{u"A"_s, u"B"_s, u"C"_s}));
    EXPECT_EQ(list().jobStatuses(), (QVariantList{17, 12, 3}));
}

TEST_F(JobListChangesTest, ThousandsOfRowsAreAnnouncedInTurnsOfTheMainLoop)
{
    const int jobCount = static_cast<int>(JobListModel::rowsPerTurn) * 2;
    JobListModel gathering(engine());
    gathering.setGatheringInterval(std::chrono::milliseconds(0));
    Announcements announced(gathering);
    addJobs(jobCount, 1);
    ASSERT_TRUE(Waiting::until([&] { return announced.all.size() > 0; }));
    EXPECT_EQ(gathering.rowCount(), jobCount);
    EXPECT_EQ(announced.inserted.size(), 4);

    for (const auto& job : engine().jobs()) {
        job->setScoreValue(1);
        job->mediaFiles().first()->setScoreValue(1);
    }
    announced.all.clear();
    ASSERT_TRUE(Waiting::until([&] { return announced.all.size() > 0; }));
    QSet<QModelIndex> jobsChanged;
    int spansOfJobs = 0;
    for (int i = 0; i < announced.changed.size(); ++i) {
        if (announced.changed.at(i).at(0).toModelIndex().parent().isValid())
            continue;
        ++spansOfJobs;
        for (int row = announced.span(i).first; row <= announced.span(i).second; ++row)
            jobsChanged.insert(gathering.index(row, 0));
    }
    EXPECT_EQ(jobsChanged.size(), jobCount) << "every row is announced";
    EXPECT_EQ(spansOfJobs, 4) << "a turn's share each";
}

TEST_F(JobListChangesTest, RowsThatChangeAllTheTimeDoNotKeepOthersFromTheirTurn)
{
    const int jobCount = static_cast<int>(JobListModel::rowsPerTurn) * 2;
    addJobs(jobCount, 0);
    JobListModel gathering(engine());
    gathering.setGatheringInterval(std::chrono::milliseconds(0));
    const auto jobs = engine().jobs();
    int restless = 0;
    std::optional<int> restlessBeforeTheLast;
    QObject::connect(&gathering, &QAbstractItemModel::dataChanged, &gathering,
                     [&](const QModelIndex& first, const QModelIndex& last) {
                         if (last.row() == jobCount - 1 && !restlessBeforeTheLast)
                             restlessBeforeTheLast = restless;
                         if (first.row() == 0 && ++restless < 20) {
                             for (int i = 0; i < jobCount / 2; ++i)
                                 jobs[static_cast<std::size_t>(i)]->setProcessedValue(restless);
                         }
                     });
    for (const auto& job : jobs)
        job->setProcessedValue(1);
    ASSERT_TRUE(Waiting::until([&] { return restlessBeforeTheLast.has_value(); }));
    EXPECT_LE(*restlessBeforeTheLast, 2);
    EXPECT_TRUE(Waiting::until([&] { return restless == 20; })) << "what comes meanwhile is announced too";
}

TEST_F(JobListChangesTest, ThousandsOfChangesAreAnnouncedInSpansAndNeverByReset)
{
    addJobs(10000, 4);
    Announcements announced(list());
    for (const auto& job : engine().jobs()) {
        job->setServerStatus(u"Split"_s);
        for (const auto& file : job->mediaFiles())
            file->setServerStatus(u"Split"_s);
    }
    list().announceChanges();
    // The files of each job are one span; the jobs of each turn are one.
    EXPECT_LE(announced.changed.size(), 10000 + 50000 / static_cast<int>(JobListModel::rowsPerTurn) + 1);
    EXPECT_EQ(announced.all.size(), 1);
    EXPECT_EQ(announced.reset.size() + announced.rearranged.size(), 0);

    engine().resetAndLoadFromServer();
    list().announceChanges();
    EXPECT_EQ(announced.removed.size(), 1);
    EXPECT_EQ(list().rowCount(), 0);
}
