#include "ui/main/MainWindowController.h"

#include "JobListFixture.h"

#include "ui/controls/ImageTextCell.h"
#include "ui/controls/ProgressCell.h"

using namespace Qt::StringLiterals;

namespace {

const QString pleaseDoNotClose = u"Please do not close Quillpost - local processing in progress"_s;
const QString youMayClose = u"You may close Quillpost - local processing complete"_s;
const QString noWorkPending = u"No work pending - click to request refresh"_s;

class MainWindowControllerTest : public JobListFixture
{
protected:
    MainWindowController& controller()
    {
        if (!m_controller)
            m_controller = std::make_unique<MainWindowController>(application);
        m_controller->jobsArrayController().announceChanges();
        return *m_controller;
    }
    QString footerFor(const QList<int>& statuses)
    {
        controller();
        for (const auto& job : engine().jobs())
            engine().removeJobsObject(job);
        for (const int status : statuses)
            addJob(u"Job"_s, status);
        return controller().footerText();
    }
    ImageTextCell nameCell(const MediaObject& item)
    {
        ImageTextCell cell;
        controller().outlineViewWillDisplayCell(cell, JobListColumn::Name, item);
        return cell;
    }
    ProgressCell outlineProgress(const MediaObject& item)
    {
        ProgressCell cell;
        cell.minValue = 7;
        controller().outlineViewWillDisplayCell(cell, JobListColumn::Progress, item);
        return cell;
    }
    ProgressCell tableProgress(int row)
    {
        ProgressCell cell;
        cell.minValue = 7;
        controller().tableViewWillDisplayCell(cell, JobListColumn::Progress, row);
        return cell;
    }

private:
    std::unique_ptr<MainWindowController> m_controller;
};

} // namespace

TEST_F(MainWindowControllerTest, ItRegistersTheFiveTransformersOfTheMainWindow)
{
    controller();
    for (const auto& name : {u"JobStatusToStringTransformer"_s, u"StatusToProgressVisibilityTransformer"_s,
                             u"ScoreToAccuracyTransformer"_s, u"HasUncompletedLocalJobsToStringTransformer"_s,
                             u"MediaObjectToDepoNumTransformer"_s})
        EXPECT_NE(ValueTransformers::named(name), nullptr) << qPrintable(name);
}

TEST_F(MainWindowControllerTest, TheContactIDIsKept)
{
    QSignalSpy changed(&controller(), &MainWindowController::userContactIDChanged);
    controller().setUserContactID(u"C-17"_s);
    EXPECT_EQ(controller().userContactID(), u"C-17"_s);
    EXPECT_EQ(changed.size(), 1);
}

TEST_F(MainWindowControllerTest, TheTitleNamesTheUserOnceLoggedIn)
{
    EXPECT_EQ(controller().windowTitle(), u"Quillpost"_s);
    QSignalSpy changed(&controller(), &MainWindowController::windowTitleChanged);
    application.name = u"ann%1"_s;
    controller().setUserContactID(u"1"_s);
    EXPECT_EQ(changed.size(), 1);
    EXPECT_EQ(controller().windowTitle(), u"Quillpost - ann%1"_s);
}

// Cells

TEST_F(MainWindowControllerTest, TheOutlinesProgressReachesFromNothingToTheTotal)
{
    const auto job = addJob(u"Smith"_s);
    job->setTotalValue(250.5);
    const ProgressCell cell = outlineProgress(*job);
    EXPECT_EQ(cell.minValue, 0);
    EXPECT_EQ(cell.maxValue, 250.5);
}

TEST_F(MainWindowControllerTest, AnEmptyJobsProgressHasTheMaximumOneInTheOutlineButNoneInTheTable)
{
    const auto job = addJob(u"Smith"_s);
    job->setTotalValue(0);
    EXPECT_EQ(outlineProgress(*job).maxValue, 1);
    EXPECT_EQ(tableProgress(0).maxValue, 0);
    EXPECT_EQ(tableProgress(0).minValue, 0);
}

TEST_F(MainWindowControllerTest, ATotalBelowOneOrMissingCountsAsNoneInTheOutline)
{
    const auto job = addJob(u"Smith"_s);
    for (const auto& total : {std::optional<double>(0.9), std::optional<double>(-0.9), std::optional<double>()}) {
        job->setTotalValue(total);
        EXPECT_EQ(outlineProgress(*job).maxValue, 1);
        EXPECT_EQ(tableProgress(0).maxValue, total);
    }
    job->setTotalValue(1);
    EXPECT_EQ(outlineProgress(*job).maxValue, 1);
    job->setTotalValue(-2);
    EXPECT_EQ(outlineProgress(*job).maxValue, -2);
}

TEST_F(MainWindowControllerTest, TheTablesRowIsTheJobAsTheListIsArranged)
{
    addJob(u"B"_s)->setTotalValue(2);
    addJob(u"A"_s)->setTotalValue(1);
    EXPECT_EQ(tableProgress(0).maxValue, 2);
    controller().jobsArrayController().sort(static_cast<int>(JobListColumn::Name));
    EXPECT_EQ(tableProgress(0).maxValue, 1);
    EXPECT_EQ(tableProgress(2).minValue, 7) << "no such row";
}

TEST_F(MainWindowControllerTest, ARushJobIsMarkedAndItsFilesShowTheSoundIcon)
{
    const auto job = addJob(u"Smith"_s);
    const auto file = addFile(*job, u"tape"_s);
    EXPECT_EQ(nameCell(*job).title, u"Smith"_s);
    job->setRush(true);
    EXPECT_EQ(nameCell(*job).title, u"(Rush) Smith"_s);
    EXPECT_EQ(nameCell(*job).image, u"TextIcon"_s);
    EXPECT_EQ(nameCell(*file).title, u"tape"_s);
    EXPECT_EQ(nameCell(*file).image, u"SoundIcon"_s);
}

TEST_F(MainWindowControllerTest, AnyOtherCellIsLeftAlone)
{
    const auto job = addJob(u"Smith"_s);
    job->setTotalValue(3);
    ImageTextCell name;
    name.title = u"as it was"_s;
    controller().tableViewWillDisplayCell(name, JobListColumn::Name, 0);
    EXPECT_EQ(name.title, u"as it was"_s) << "the table sets up progress alone";
    ProgressCell progress;
    progress.currentValue = 2;
    controller().outlineViewWillDisplayCell(progress, JobListColumn::Progress, *job);
    EXPECT_EQ(progress.currentValue, 2);
    EXPECT_TRUE(progress.isEnabled);
}

// Footer

TEST_F(MainWindowControllerTest, TheFirstJobThatDecidesGivesTheFooterItsText)
{
    EXPECT_EQ(footerFor({17, 12, 3}), youMayClose);
    EXPECT_EQ(footerFor({16, 3, 12}), pleaseDoNotClose);
    EXPECT_EQ(footerFor({15}), pleaseDoNotClose);
    EXPECT_EQ(footerFor({17, 16}), noWorkPending);
    EXPECT_EQ(footerFor({}), noWorkPending);
}

TEST_F(MainWindowControllerTest, TheFooterReadsTheJobsInTheEnginesOrderHoweverTheListIsSorted)
{
    addJob(u"Z"_s, JobStatusUploaded);
    addJob(u"A"_s, JobStatusIdle);
    controller().jobsArrayController().sort(static_cast<int>(JobListColumn::Name));
    EXPECT_EQ(controller().footerText(), youMayClose);
}

TEST_F(MainWindowControllerTest, TheFooterFollowsTheJobs)
{
    const auto job = addJob(u"Smith"_s, JobStatusUploading);
    EXPECT_EQ(controller().footerText(), pleaseDoNotClose);
    QSignalSpy changed(&controller(), &MainWindowController::footerTextChanged);
    job->setStatus(JobStatusCompleted);
    EXPECT_EQ(controller().footerText(), noWorkPending);
    EXPECT_EQ(changed.size(), 1);
    job->setScoreValue(3);
    controller();
    EXPECT_EQ(changed.size(), 1) << "said only when it is another";
}

TEST_F(MainWindowControllerTest, RefreshingFollowsTheEngine)
{
    EXPECT_FALSE(controller().isRefreshing());
    EXPECT_EQ(controller().refreshText(), QString());
    QSignalSpy changed(&controller(), &MainWindowController::isRefreshingChanged);
    engine().setIsCheckingJobStatus(true);
    EXPECT_EQ(changed.size(), 1);
    EXPECT_TRUE(controller().isRefreshing());
    EXPECT_FALSE(controller().refreshText().isEmpty());
}

// Empty list

TEST_F(MainWindowControllerTest, AnEmptyListSaysWhatToDoNext)
{
    EXPECT_TRUE(controller().isListEmpty());
    EXPECT_TRUE(controller().emptyListText().contains(u"New Job"_s));
    EXPECT_TRUE(controller().emptyListText().contains(u"Drop"_s));
    QSignalSpy changed(&controller(), &MainWindowController::emptyListChanged);
    engine().setIsCheckingJobStatus(true);
    EXPECT_EQ(changed.size(), 1);
    EXPECT_TRUE(controller().emptyListText().contains(u"Asking"_s));
    addJob(u"Smith"_s);
    EXPECT_FALSE(controller().isListEmpty());
    EXPECT_EQ(changed.size(), 2);
}

// Errors

TEST_F(MainWindowControllerTest, ErrorsAreCountedUntilTheyWereSeen)
{
    const Error error{ErrorDomain::SyncBase, 0, u"No"_s};
    QSignalSpy changed(&controller(), &MainWindowController::unseenErrorsChanged);
    EXPECT_EQ(controller().errorsButtonText(), u"Errors"_s);
    for (int i = 0; i < 3; ++i)
        application.syncErrorList().addError(error);
    EXPECT_EQ(controller().unseenErrorCount(), 3);
    EXPECT_EQ(controller().errorsButtonText(), u"Errors (3)"_s);
    EXPECT_EQ(changed.size(), 3);
    controller().errorsSeen();
    EXPECT_EQ(controller().errorsButtonText(), u"Errors"_s);
    application.syncErrorList().addError(error);
    EXPECT_EQ(controller().unseenErrorCount(), 1) << "since they were last seen";
}

TEST_F(MainWindowControllerTest, ShowingTheErrorWindowMeansSeeingThem)
{
    controller();
    application.syncErrorList().addError({ErrorDomain::SyncBase, 0, u"No"_s});
    controller().showErrors();
    EXPECT_EQ(application.actions, QStringList{u"showErrorWindow"_s});
    EXPECT_EQ(controller().unseenErrorCount(), 0);
}

TEST_F(MainWindowControllerTest, ErrorsThatAreClearedAreNotCountedAnyMore)
{
    controller();
    for (int i = 0; i < 3; ++i)
        application.syncErrorList().addError({ErrorDomain::SyncBase, 0, u"No"_s});
    application.syncErrorList().removeObjectFromErrorListAtIndex(0);
    EXPECT_EQ(controller().unseenErrorCount(), 2);
    application.syncErrorList().clear();
    EXPECT_EQ(controller().unseenErrorCount(), 0);
}

// Actions

TEST_F(MainWindowControllerTest, ActionsReachTheApplication)
{
    controller().newJob();
    controller().refresh();
    controller().openDeliveryFolder();
    controller().showLog();
    controller().showPreferences();
    controller().openAccountPage();
    controller().quit();
    EXPECT_EQ(application.actions,
              (QStringList{u"showSubmitJobWindow"_s, u"refreshJobsStatus"_s, u"openDeliveryFolder"_s,
                           u"showCustomLogWindow"_s, u"showPreferencesWindow"_s, u"openAccountSettings"_s, u"quit"_s}));
}

TEST_F(MainWindowControllerTest, ResettingAsksFirstAndSaysThatItCannotBeUndone)
{
    application.scriptedDialogs.answers = {false};
    controller().resetAndReload();
    ASSERT_EQ(application.scriptedDialogs.questions.size(), 1);
    const auto& question = application.scriptedDialogs.questions.first();
    EXPECT_TRUE(question.text.contains(u"dropped"_s));
    EXPECT_TRUE(question.text.contains(u"cannot be undone"_s));
    EXPECT_EQ(question.defaultButton, u"Keep the List"_s) << "Return and Escape lose nothing";
    EXPECT_TRUE(question.isClosingDefault);
    EXPECT_EQ(application.actions, QStringList{u"resetAndReloadFromServer"_s});
}

TEST_F(MainWindowControllerTest, NothingIsResetWhenTheUserSaysNo)
{
    application.scriptedDialogs.answers = {true};
    controller().resetAndReload();
    EXPECT_EQ(application.scriptedDialogs.questions.size(), 1);
    EXPECT_EQ(application.actions, QStringList());
}

TEST_F(MainWindowControllerTest, DroppedFilesGoToTheSubmitWindow)
{
    controller().filesDropped(
        {QUrl::fromLocalFile(u"/a/b c.txt"_s), QUrl(u"https://example.com/x"_s), QUrl::fromLocalFile(u"/a/d.mov"_s)});
    EXPECT_EQ(application.droppedFiles, (QStringList{u"/a/b c.txt"_s, u"/a/d.mov"_s}));
}

TEST_F(MainWindowControllerTest, ADropWithoutFilesOpensNothing)
{
    controller().filesDropped({QUrl(u"https://example.com/x"_s)});
    controller().filesDropped({});
    EXPECT_EQ(application.actions, QStringList());
}

TEST_F(MainWindowControllerTest, TheJobNumberCanBeCopiedFromTheJobAndItsFiles)
{
    const auto job = addJob(u"Smith"_s);
    addFile(*job, u"tape"_s);
    auto& rows = controller().jobsArrayController();
    const QModelIndex row = rows.index(0, static_cast<int>(JobListColumn::Status));
    EXPECT_EQ(controller().jobNumberText(row), QString());
    job->setDepoNum(4711);
    EXPECT_EQ(controller().jobNumberText(row), u"4711"_s);
    EXPECT_EQ(controller().jobNumberText(rows.index(0, 2, rows.index(0, 0))), u"4711"_s);
    EXPECT_EQ(controller().jobNumberText({}), QString());
}

TEST_F(MainWindowControllerTest, TheLookIsKeptInTheSettings)
{
    EXPECT_TRUE(controller().savedColumns().isEmpty());
    QSignalSpy changed(&defaults(), &UserDefaults::valueChanged);
    controller().saveLook("columns", "geometry");
    EXPECT_EQ(defaults().value(u"MainWindowColumns"_s).toByteArray(), QByteArray("columns"));
    EXPECT_EQ(defaults().value(u"MainWindowGeometry"_s).toByteArray(), QByteArray("geometry"));
    controller().saveLook("columns", "geometry");
    EXPECT_EQ(changed.size(), 2) << "written only when it is another";
    EXPECT_EQ(controller().savedColumns(), QByteArray("columns"));
    EXPECT_EQ(controller().savedGeometry(), QByteArray("geometry"));
}

TEST_F(MainWindowControllerTest, AboutNamesTheLicence)
{
    EXPECT_TRUE(MainWindowController::aboutText().contains(u"GNU General Public License, version 3"_s));
    EXPECT_FALSE(MainWindowController::aboutText().contains(u"%1"_s));
}
