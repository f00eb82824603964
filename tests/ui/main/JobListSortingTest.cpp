#include "JobListFixture.h"

using namespace Qt::StringLiterals;

namespace {

class JobListSortingTest : public JobListFixture
{
protected:
    void sortBy(JobListColumn column, Qt::SortOrder order = Qt::AscendingOrder)
    {
        list().sort(static_cast<int>(column), order);
    }
    // In both directions; the rows have different values.
    void expectOrder(JobListColumn column, QStringList expected)
    {
        sortBy(column);
        EXPECT_EQ(names(), expected);
        sortBy(column, Qt::DescendingOrder);
        std::reverse(expected.begin(), expected.end());
        EXPECT_EQ(names(), expected);
    }
};

} // namespace

TEST_F(JobListSortingTest, NamesAreSortedAsPeopleExpect)
{
    for (const auto& name : {u"Job 10"_s, u"job 9"_s, u"Äpfel"_s, u"Zeta"_s, u"apfel 2"_s})
        addJob(name);
    expectOrder(JobListColumn::Name, {u"Äpfel"_s, u"apfel 2"_s, u"job 9"_s, u"Job 10"_s, u"Zeta"_s});
}

TEST_F(JobListSortingTest, ManyRowsAreSortedLikeFew)
{
    QStringList expected;
    for (int number = 1; number <= 150; ++number)
        expected.append((number % 2 == 0 ? u"Job %1"_s : u"job %1"_s).arg(number));
    for (int i = 0; i < 150; ++i)
        addJob(expected.at(i * 7 % 150))->setScoreValue(i % 3);
    const QStringList engineOrder = names();
    expectOrder(JobListColumn::Name, expected);

    sortBy(JobListColumn::Status, Qt::DescendingOrder);
    EXPECT_EQ(names(), engineOrder) << "all are equal";
    sortBy(JobListColumn::Accuracy, Qt::DescendingOrder);
    QStringList byScore;
    for (const int score : {2, 1, 0}) {
        for (int i = score; i < 150; i += 3)
            byScore.append(engineOrder.at(i));
    }
    EXPECT_EQ(names(), byScore);
}

TEST_F(JobListSortingTest, TurningTheOrderOfAColumnRoundFollowsTheValuesOfNow)
{
    for (int number = 1; number <= 3; ++number)
        addJob(u"%1"_s.arg(number))->setScoreValue(number);
    sortBy(JobListColumn::Accuracy);
    engine().jobs().front()->setScoreValue(9);
    list().announceChanges();
    sortBy(JobListColumn::Accuracy, Qt::DescendingOrder);
    EXPECT_EQ(names(), (QStringList{u"1"_s, u"3"_s, u"2"_s}));
    sortBy(JobListColumn::Name, Qt::DescendingOrder);
    EXPECT_EQ(names(), (QStringList{u"3"_s, u"2"_s, u"1"_s}));
}

TEST_F(JobListSortingTest, FilesAreSortedBelowTheirJobsByTheSameColumn)
{
    const auto job = addJob(u"job"_s);
    for (const float seconds : {30.F, 10.F, 20.F}) {
        job->addMediaFilesObject(MediaFile::serverMediaFile(static_cast<int>(seconds)));
        job->mediaFiles().front()->setSourceDuration(seconds);
    }
    list().announceChanges();
    sortBy(JobListColumn::Duration);
    QStringList durations;
    for (int row = 0; row < 3; ++row)
        durations.append(
            list().index(row, static_cast<int>(JobListColumn::Duration), list().index(0, 0)).data().toString());
    EXPECT_EQ(durations, (QStringList{u"0:00:10"_s, u"0:00:20"_s, u"0:00:30"_s}));
}

TEST_F(JobListSortingTest, ARushJobIsSortedByItsNameNotByTheMark)
{
    addJob(u"B"_s);
    const auto rush = addJob(u"C"_s);
    rush->setRush(true);
    addJob(u"A"_s);
    sortBy(JobListColumn::Name);
    EXPECT_EQ(names(), (QStringList{u"A"_s, u"B"_s, u"(Rush) C"_s}));
}

TEST_F(JobListSortingTest, StatusesAreSortedByProgressOfWorkNotByTheirWords)
{
    addJob(u"done"_s, JobStatusCompleted);
    addJob(u"idle"_s, JobStatusIdle);
    addJob(u"upload"_s, JobStatusUploading);
    expectOrder(JobListColumn::Status, {u"idle"_s, u"upload"_s, u"done"_s});
}

TEST_F(JobListSortingTest, StatusesOnTheServerAreSortedByTheirWords)
{
    addJob(u"up"_s, JobStatusOnServer)->setServerStatus(u"Uploading"_s);
    addJob(u"split"_s, JobStatusOnServer)->setServerStatus(u"Split"_s);
    expectOrder(JobListColumn::Status, {u"split"_s, u"up"_s});
}

TEST_F(JobListSortingTest, ProgressIsSortedByWhatIsDoneOfTheWhole)
{
    const auto add = [this](const QString& name, double done, double total) {
        const auto job = addJob(name, JobStatusConverting);
        job->setTotalValue(total);
        job->setProcessedValue(done);
    };
    add(u"half"_s, 500, 1000);
    add(u"most"_s, 9, 10);
    add(u"some"_s, 100, 1000);
    // Nothing runs, so nothing is shown, whatever the numbers say.
    addJob(u"idle"_s, JobStatusIdle)->setProcessedValue(7);
    expectOrder(JobListColumn::Progress, {u"idle"_s, u"some"_s, u"half"_s, u"most"_s});
}

TEST_F(JobListSortingTest, AccuracyIsSortedByTheScoreBelowIt)
{
    addJob(u"b"_s)->setScoreValue(85);
    addJob(u"c"_s)->setScoreValue(99);
    addJob(u"none"_s);
    addJob(u"a"_s)->setScoreValue(81);
    expectOrder(JobListColumn::Accuracy, {u"none"_s, u"a"_s, u"b"_s, u"c"_s});
}

TEST_F(JobListSortingTest, JobNumbersAreSortedAsNumbers)
{
    addJob(u"100"_s)->setDepoNum(100);
    addJob(u"9"_s)->setDepoNum(9);
    addJob(u"none"_s);
    expectOrder(JobListColumn::JobNumber, {u"none"_s, u"9"_s, u"100"_s});
}

TEST_F(JobListSortingTest, DurationsAreSortedBySecondsNotByTheirTexts)
{
    addJob(u"long"_s)->setTotalMediaDuration(36000.F);
    addJob(u"short"_s)->setTotalMediaDuration(7200.F);
    expectOrder(JobListColumn::Duration, {u"short"_s, u"long"_s});
}

TEST_F(JobListSortingTest, DeliveryFormatsAreSortedByName)
{
    addJob(u"b"_s)->setDeliveryFormat(DeliveryFormatPTFVID);
    addJob(u"a"_s)->setDeliveryFormat(DeliveryFormatFlashCS3CaptionXML);
    addJob(u"c"_s)->setDeliveryFormat(DeliveryFormatRealLegalXML);
    expectOrder(JobListColumn::DeliveryFormat, {u"a"_s, u"b"_s, u"c"_s});
}

TEST_F(JobListSortingTest, EqualRowsKeepTheEnginesOrderEitherWay)
{
    for (const auto& name : {u"third"_s, u"first"_s, u"second"_s})
        addJob(name, JobStatusUploaded);
    const QStringList engineOrder = names();
    sortBy(JobListColumn::Status);
    EXPECT_EQ(names(), engineOrder);
    sortBy(JobListColumn::Status, Qt::DescendingOrder);
    EXPECT_EQ(names(), engineOrder);
}

TEST_F(JobListSortingTest, WithoutAColumnTheEnginesOrderIsBack)
{
    const auto job = addJob(u"C"_s);
    addFile(*job, u"b"_s);
    addFile(*job, u"a"_s);
    addJob(u"A"_s);
    sortBy(JobListColumn::Name);
    EXPECT_EQ(names(), (QStringList{u"A"_s, u"C"_s}));
    EXPECT_EQ(names(at(1)), (QStringList{u"a"_s, u"b"_s}));
    list().sort(-1);
    EXPECT_EQ(names(), (QStringList{u"C"_s, u"A"_s}));
    EXPECT_EQ(names(at(0)), (QStringList{u"b"_s, u"a"_s}));
}

TEST_F(JobListSortingTest, IndexesThatAreKeptFollowTheirRows)
{
    const auto job = addJob(u"C"_s);
    addFile(*job, u"tape"_s);
    addJob(u"A"_s);
    const QAbstractItemModelTester tester(&list());
    const QPersistentModelIndex row = at(0, JobListColumn::Status);
    const QPersistentModelIndex file = at(0, 0, JobListColumn::Name);
    sortBy(JobListColumn::Name);
    EXPECT_EQ(row, at(1, JobListColumn::Status));
    EXPECT_EQ(file, at(1, 0, JobListColumn::Name));
    EXPECT_EQ(file.parent(), at(1));
}

TEST_F(JobListSortingTest, AChangeOfWhatIsSortedByMovesTheRowsOnceForAllChanges)
{
    addJobs(100, 0);
    sortBy(JobListColumn::Accuracy, Qt::DescendingOrder);
    Announcements announced(list());
    const auto jobs = engine().jobs();
    for (std::size_t i = 0; i < jobs.size(); ++i)
        jobs[i]->setScoreValue(static_cast<int>(i));
    list().announceChanges();
    EXPECT_EQ(announced.rearranged.size(), 1);
    EXPECT_EQ(announced.reset.size(), 0);
    EXPECT_EQ(names().first(), u"Job 100"_s);
    EXPECT_EQ(names().last(), u"Job 1"_s);
}

TEST_F(JobListSortingTest, AChangeThatLeavesTheOrderMovesNothing)
{
    addJobs(3, 0);
    sortBy(JobListColumn::Name);
    Announcements announced(list());
    engine().jobs()[1]->setScoreValue(7);
    list().announceChanges();
    EXPECT_EQ(announced.changed.size(), 1);
    EXPECT_EQ(announced.rearranged.size(), 0);
}

TEST_F(JobListSortingTest, ANewRowGoesWhereItBelongs)
{
    addJob(u"A"_s);
    addJob(u"C"_s);
    sortBy(JobListColumn::Name);
    addJob(u"B"_s);
    list().announceChanges();
    EXPECT_EQ(names(), (QStringList{u"A"_s, u"B"_s, u"C"_s}));
}

TEST_F(JobListSortingTest, FilesAreSortedWithinTheirJobOnly)
{
    const auto one = addJob(u"one"_s);
    addFile(*one, u"x"_s)->setScoreValue(90);
    addFile(*one, u"y"_s)->setScoreValue(10);
    const auto two = addJob(u"two"_s);
    addFile(*two, u"z"_s)->setScoreValue(50);
    sortBy(JobListColumn::Accuracy);
    EXPECT_EQ(names(at(0)), (QStringList{u"y"_s, u"x"_s}));
    EXPECT_EQ(names(at(1)), QStringList{u"z"_s});
}

TEST_F(JobListSortingTest, TheSortRoleIsTheValueBelowTheText)
{
    const auto job = addJob(u"Smith"_s, JobStatusConverting);
    job->setScoreValue(87);
    job->setTotalMediaDuration(90.F);
    job->setTotalValue(4);
    job->setProcessedValue(1);
    const auto value = [this](JobListColumn column) { return at(0, column).data(JobListModel::SortRole); };
    EXPECT_EQ(value(JobListColumn::Status), QVariant(JobStatusConverting + 0));
    EXPECT_EQ(value(JobListColumn::Progress), QVariant(0.25));
    EXPECT_EQ(value(JobListColumn::Accuracy), QVariant(87));
    EXPECT_EQ(value(JobListColumn::Duration), QVariant(90.F));
}

TEST_F(JobListSortingTest, AValueThatIsNoNumberIsSortedAsMissing)
{
    addJob(u"one"_s)->setTotalMediaDuration(1.F);
    addJob(u"odd"_s)->setTotalMediaDuration(std::numeric_limits<float>::quiet_NaN());
    addJob(u"minus"_s)->setTotalMediaDuration(-1.F);
    sortBy(JobListColumn::Duration);
    EXPECT_EQ(names(), (QStringList{u"odd"_s, u"minus"_s, u"one"_s}));
}
