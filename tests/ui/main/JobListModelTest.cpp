#include "JobListFixture.h"

#include <set>

using namespace Qt::StringLiterals;

namespace {

class JobListModelTest : public JobListFixture
{
protected:
    QString shown(int row, JobListColumn column) { return at(row, column).data().toString(); }
};

} // namespace

TEST_F(JobListModelTest, JobsAreRowsAndTheirFilesRowsBelowThemInTheJobsOrder)
{
    const auto smith = addJob(u"Smith"_s);
    addJob(u"Adams"_s);
    addFile(*smith, u"b"_s);
    addFile(*smith, u"a"_s);

    const QAbstractItemModelTester tester(&list());
    EXPECT_EQ(names(), (QStringList{u"Smith"_s, u"Adams"_s}));
    EXPECT_EQ(names(at(0)), (QStringList{u"b"_s, u"a"_s}));
    EXPECT_EQ(names(at(1)), QStringList());
    EXPECT_EQ(list().parent(at(0, 1, JobListColumn::Name)), at(0));
    EXPECT_FALSE(list().parent(at(1)).isValid());
    EXPECT_EQ(list().mediaObject(at(0)), smith);
    EXPECT_EQ(list().mediaObject({}), nullptr);
    EXPECT_EQ(list().arrangedJob(0), smith);
    EXPECT_EQ(list().arrangedJob(2), nullptr);
    EXPECT_EQ(list().arrangedJob(-1), nullptr);
}

TEST_F(JobListModelTest, EachColumnShowsTheTransformedValueOfItsProperty)
{
    const auto job = addJob(u"Smith"_s, JobStatusConverting);
    job->setRush(true);
    job->setScoreValue(87);
    job->setDepoNum(4711);
    job->setTotalMediaDuration(3725.7F);
    job->setDeliveryFormat(DeliveryFormatOstrovaXML);
    const auto file = addFile(*job, u"tape"_s);
    file->setStatus(JobStatusOnServer);
    file->setServerStatus(u"JoinedCMS"_s);
    file->setSourceDuration(59.F);
    job->setTotalMediaDuration(3725.7F);
    list();

    EXPECT_EQ(shown(0, JobListColumn::Name), u"(Rush) Smith"_s);
    EXPECT_EQ(shown(0, JobListColumn::Accuracy), u"5"_s);
    EXPECT_EQ(shown(0, JobListColumn::JobNumber), u"4711"_s);
    EXPECT_EQ(shown(0, JobListColumn::Duration), u"1:02:05"_s);
    EXPECT_EQ(shown(0, JobListColumn::DeliveryFormat), u"Ostrova XML"_s);
    job->setDeliveryFormat(DeliveryFormatAll);
    EXPECT_EQ(shown(0, JobListColumn::DeliveryFormat), u"All formats"_s);
    EXPECT_EQ(at(0, 0, JobListColumn::Status).data().toString(), u"JoinedCMS"_s);
    EXPECT_EQ(at(0, 0, JobListColumn::Duration).data().toString(), u"0:00:59"_s);

    job->setStatus(JobStatusConverting);
    EXPECT_EQ(shown(0, JobListColumn::Status), u"Processing media files"_s);
}

TEST_F(JobListModelTest, AFileHasNoJobNumberAndNoDeliveryFormat)
{
    const auto job = addJob(u"Smith"_s);
    job->setDepoNum(4711);
    addFile(*job, u"tape"_s);
    EXPECT_FALSE(at(0, 0, JobListColumn::JobNumber).data().isValid());
    EXPECT_FALSE(at(0, 0, JobListColumn::DeliveryFormat).data().isValid());
}

TEST_F(JobListModelTest, WhatIsNotKnownYetShowsNothing)
{
    addJob(u"Smith"_s);
    for (const auto column : {JobListColumn::Accuracy, JobListColumn::JobNumber, JobListColumn::Duration}) {
        EXPECT_FALSE(at(0, column).data().isValid());
        EXPECT_FALSE(at(0, column).data(Qt::AccessibleTextRole).isValid());
        EXPECT_FALSE(at(0, column).data(Qt::ToolTipRole).isValid());
    }
}

TEST_F(JobListModelTest, ProgressGivesItsPairAndIsSeenOnlyWhileSomethingRuns)
{
    const auto job = addJob(u"Smith"_s, JobStatusUploading);
    job->setTotalValue(200);
    job->setProcessedValue(85);
    const QModelIndex progress = at(0, JobListColumn::Progress);
    EXPECT_EQ(progress.data().toDouble(), 85);
    EXPECT_EQ(progress.data(JobListModel::TotalValueRole).toDouble(), 200);
    EXPECT_EQ(progress.data(JobListModel::ProcessedValueRole).toDouble(), 85);
    EXPECT_TRUE(progress.data(JobListModel::ProgressVisibleRole).toBool());
    EXPECT_EQ(progress.data(Qt::AccessibleTextRole).toString(), u"42 %"_s);
    EXPECT_EQ(progress.data(Qt::ToolTipRole).toString(), u"42 %"_s);

    job->setStatus(JobStatusUploaded);
    EXPECT_FALSE(progress.data(JobListModel::ProgressVisibleRole).toBool());
    EXPECT_FALSE(progress.data().isValid()) << "a reader would speak the bare number";
    EXPECT_FALSE(progress.data(Qt::AccessibleTextRole).isValid());
}

TEST_F(JobListModelTest, ProgressWithoutATotalOrBeyondItStaysBetweenNothingAndAll)
{
    const auto job = addJob(u"Smith"_s, JobStatusConverting);
    const QModelIndex progress = at(0, JobListColumn::Progress);
    const auto spoken = [&] { return progress.data(Qt::AccessibleTextRole).toString(); };
    EXPECT_EQ(spoken(), u"0 %"_s);
    job->setProcessedValue(5);
    EXPECT_EQ(spoken(), u"0 %"_s);
    job->setTotalValue(4);
    EXPECT_EQ(spoken(), u"100 %"_s);
    job->setTotalValue(std::nullopt);
    EXPECT_EQ(spoken(), u"0 %"_s);
}

TEST_F(JobListModelTest, NumbersAreSpokenWithWhatTheyAre)
{
    const auto job = addJob(u"Smith"_s);
    job->setScoreValue(100);
    job->setDepoNum(12);
    EXPECT_EQ(at(0, JobListColumn::Accuracy).data(Qt::AccessibleTextRole).toString(), u"Accuracy 6"_s);
    EXPECT_EQ(at(0, JobListColumn::Accuracy).data(Qt::ToolTipRole).toString(), u"Accuracy 6 (score 100)"_s);
    EXPECT_EQ(at(0, JobListColumn::JobNumber).data(Qt::AccessibleTextRole).toString(), u"Job number 12"_s);
}

TEST_F(JobListModelTest, TheNamesTooltipTellsThePathAndReadsNoMarkup)
{
    const auto job = addJob(u"x"_s);
    job->setTranscriptFile(u"/depositions/Smith.txt"_s);
    EXPECT_EQ(at(0).data(Qt::ToolTipRole).toString(), u"Smith.txt\n/depositions/Smith.txt"_s);
    const auto file = addFile(*job, u"<b>Segment</b> 1"_s);
    list().announceChanges();
    const QString toolTip = at(0, 0, JobListColumn::Name).data(Qt::ToolTipRole).toString();
    EXPECT_FALSE(toolTip.contains(u"<b>"_s)) << qPrintable(toolTip);
    EXPECT_FALSE(toolTip.contains(u"Segment1.abc"_s)) << "the placeholder is no path of the user's";
}

TEST_F(JobListModelTest, EveryRowHasAnInternalIdOfItsOwn)
{
    addJobs(20, 3);
    std::set<quintptr> ids;
    for (int row = 0; row < 20; ++row) {
        ids.insert(at(row).internalId());
        for (int file = 0; file < 3; ++file)
            ids.insert(at(row, file, JobListColumn::Name).internalId());
    }
    EXPECT_EQ(ids.size(), 80U);
}

TEST_F(JobListModelTest, EveryColumnHasATitle)
{
    std::set<QString> titles;
    for (int column = 0; column < list().columnCount(); ++column)
        titles.insert(list().headerData(column, Qt::Horizontal).toString());
    EXPECT_EQ(titles.size(), static_cast<std::size_t>(jobListColumnCount));
    EXPECT_FALSE(titles.contains(QString()));
}
