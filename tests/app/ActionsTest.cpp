#include "AppTest.h"

#include "engine/JobModel.h"
#include "settings/SettingsKey.h"
#include "support/Waiting.h"
#include "ui/errors/ErrorWindowController.h"
#include "ui/log/CustomLogWindowController.h"
#include "ui/main/MainWindowController.h"
#include "ui/preferences/PreferencesWindowController.h"
#include "ui/submit/SubmitJobWindowController.h"

#include <QSignalSpy>

#include <functional>
#include <vector>

namespace {

class Actions : public AppTest
{
protected:
    [[nodiscard]] SubmitJobWindowController& submitWindow() { return app().submitJobWindowController(); }

    // A job put together in the window and not submitted.
    std::shared_ptr<Job> beginJob()
    {
        app().showSubmitJobWindow();
        submitWindow().addTranscriptFile(writeFile(QStringLiteral("case.ptx"), "text"));
        return submitWindow().job();
    }
};

} // namespace

TEST_F(Actions, submittingAddsTheJobAndClosesTheWindow)
{
    makeLoggedIn();
    const auto job = beginJob();
    const QSignalSpy closed(&submitWindow(), &WindowController::closeRequested);
    app().submitNewJob(job, /*andNew=*/false);
    ASSERT_EQ(app().jobModel().jobs().size(), 1U);
    EXPECT_EQ(app().jobModel().jobs().front(), job);
    EXPECT_EQ(closed.count(), 1);
    app().showSubmitJobWindow();
    EXPECT_TRUE(dialogs.questions.isEmpty()) << "A submitted job is no job that was begun.";
    EXPECT_NE(submitWindow().job(), job);
}

TEST_F(Actions, submitAndNewOpensTheWindowAgainWithTheCaptionAlone)
{
    makeLoggedIn();
    const auto job = beginJob();
    job->setShortCaption(QStringLiteral("Doe v. Roe"));
    const QSignalSpy shown(&submitWindow(), &WindowController::showRequested);
    app().submitNewJob(job, /*andNew=*/true);
    EXPECT_EQ(shown.count(), 1);
    const auto next = submitWindow().job();
    ASSERT_TRUE(next);
    EXPECT_NE(next, job);
    EXPECT_EQ(next->shortCaption(), QStringLiteral("Doe v. Roe"));
    EXPECT_TRUE(next->transcriptFile().isEmpty());
    EXPECT_TRUE(next->mediaFiles().isEmpty());
    app().showSubmitJobWindow();
    EXPECT_TRUE(dialogs.questions.isEmpty()) << "A carried caption is no work of the user's.";
}

TEST_F(Actions, newJobStartsAFreshOne)
{
    makeLoggedIn().showSubmitJobWindow();
    const auto first = submitWindow().job();
    ASSERT_TRUE(first);
    app().showSubmitJobWindow();
    EXPECT_NE(submitWindow().job(), first);
    EXPECT_TRUE(dialogs.questions.isEmpty());
}

TEST_F(Actions, newJobGivesUpABegunJobOnlyWhenTheUserSaysSo)
{
    makeLoggedIn();
    const auto begun = beginJob();
    dialogs.answers = {true, false};
    app().showSubmitJobWindow();
    EXPECT_EQ(submitWindow().job(), begun);
    app().showSubmitJobWindow();
    EXPECT_NE(submitWindow().job(), begun);
    EXPECT_EQ(dialogs.questions.size(), 2);
}

TEST_F(Actions, newJobAsksAlsoWhereOnlyOneThingWasEntered)
{
    makeLoggedIn();
    using Controller = SubmitJobWindowController;
    const std::vector<std::function<void(Controller&)>> entries{
        [](Controller& window) { window.controlTextDidChange(QStringLiteral("/half/a/pa")); },
        [](Controller& window) { window.setDeponentLastName(QStringLiteral("Doe")); },
        [](Controller& window) { window.setDepositionDate(QDate(2026, 3, 4)); },
        [](Controller& window) { window.setShortCaption(QStringLiteral("Doe v. Roe")); },
        [](Controller& window) { window.setDeliveryFormat(DeliveryFormatMDB); },
        [](Controller& window) { window.setSelectedLevelTag(ProcessingLevelMan48); },
        [](Controller& window) { window.setViaInterpreter(true); },
    };
    for (const auto& enter : entries) {
        submitWindow().setJob(nullptr);
        app().showSubmitJobWindow();
        EXPECT_TRUE(dialogs.questions.isEmpty());
        const auto begun = submitWindow().job();
        enter(submitWindow());
        dialogs.answers = {true};
        app().showSubmitJobWindow();
        EXPECT_EQ(dialogs.questions.size(), 1);
        EXPECT_EQ(submitWindow().job(), begun);
        dialogs.questions.clear();
    }
}

TEST_F(Actions, droppedFilesAreNotMixedIntoAJobThatWasPutAside)
{
    makeLoggedIn();
    const auto begun = beginJob();
    submitWindow().setIsShown(false);
    const QString file = writeFile(QStringLiteral("a.wav"), "no sound");
    dialogs.answers = {true, false};
    app().showSubmitJobWindowWithFiles({file});
    EXPECT_EQ(submitWindow().job(), begun) << "the user said that they belong to it";
    app().showSubmitJobWindowWithFiles({file});
    EXPECT_NE(submitWindow().job(), begun);
    EXPECT_EQ(submitWindow().job()->mediaFiles().size(), 1);
    EXPECT_EQ(dialogs.questions.size(), 2);
}

TEST_F(Actions, droppedFilesComeToTheJobThatIsInFront)
{
    makeLoggedIn();
    const auto begun = beginJob();
    submitWindow().setIsShown(true);
    app().showSubmitJobWindowWithFiles({writeFile(QStringLiteral("a.wav"), "no sound")});
    EXPECT_EQ(submitWindow().job(), begun);
    EXPECT_EQ(begun->mediaFiles().size(), 1);
    EXPECT_TRUE(dialogs.questions.isEmpty());
}

TEST_F(Actions, refreshAsksTheService)
{
    makeLoggedIn().refreshJobsStatus();
    EXPECT_TRUE(Waiting::until([&] { return service.count("checkstatus.php") > 0; }));
}

TEST_F(Actions, resetRebuildsTheListFromTheService)
{
    makeLoggedIn();
    addUnfinishedJob();
    service.addServerJob("elsewhere.txt");
    app().resetAndReloadFromServer();
    EXPECT_TRUE(Waiting::until([&] {
        const auto jobs = app().jobModel().jobs();
        return jobs.size() == 1 && jobs.front()->serverJob();
    }));
}

TEST_F(Actions, opensTheDeliveryFolder)
{
    makeLoggedIn().openDeliveryFolder();
    ASSERT_EQ(opened.size(), 1);
    EXPECT_EQ(opened.first(), QUrl::fromLocalFile(path(QStringLiteral("delivered"))));
}

TEST_F(Actions, saysWhenTheDeliveryFolderIsNotThere)
{
    makeLoggedIn();
    defaults().setValue(SettingsKey::DeliveryFolderPath, path(QStringLiteral("not there")));
    app().openDeliveryFolder();
    EXPECT_TRUE(opened.isEmpty());
    ASSERT_EQ(dialogs.warnings.size(), 1);
    EXPECT_TRUE(dialogs.warnings.first().second.contains(QStringLiteral("not there")));
}

TEST_F(Actions, opensTheAccountPageOnTheSecureHost)
{
    makeLoggedIn().openAccountSettings();
    ASSERT_EQ(opened.size(), 1);
    EXPECT_EQ(opened.first().toString(), QString::fromStdString(service.secureHost()) + QStringLiteral("/login"));
}

TEST_F(Actions, saysWhenNothingOpensAPage)
{
    canOpen = false;
    makeLoggedIn().openAccountSettings();
    ASSERT_EQ(dialogs.warnings.size(), 1);
    EXPECT_TRUE(dialogs.warnings.first().second.contains(QStringLiteral("/login")));
}

TEST_F(Actions, showTheirWindows)
{
    makeLoggedIn();
    const QSignalSpy preferences(&app().preferencesWindowController(), &WindowController::showRequested);
    const QSignalSpy errors(&app().errorWindowController(), &WindowController::showRequested);
    const QSignalSpy log(&app().customLogWindowController(), &WindowController::showRequested);
    app().showPreferencesWindow();
    app().showErrorWindow();
    app().showCustomLogWindow();
    EXPECT_EQ(preferences.count(), 1);
    EXPECT_EQ(errors.count(), 1);
    EXPECT_EQ(log.count(), 1);
}

TEST_F(Actions, errorsAreSeenOnceTheirWindowIsShown)
{
    makeLoggedIn().presentError({ErrorDomain::SyncBase, 0, QStringLiteral("no")});
    EXPECT_EQ(app().mainWindowController().unseenErrorCount(), 1);
    app().showErrorWindow();
    EXPECT_EQ(app().mainWindowController().unseenErrorCount(), 0);
}

TEST_F(Actions, anErrorThatComesIntoAnOpenErrorWindowIsSeen)
{
    QuillpostAppDelegate& delegate = makeLoggedIn();
    delegate.errorWindowController().setIsShown(true);
    delegate.presentError({ErrorDomain::SyncBase, 0, QStringLiteral("no")});
    EXPECT_EQ(app().mainWindowController().unseenErrorCount(), 0);
    delegate.errorWindowController().setIsShown(false);
    delegate.presentError({ErrorDomain::SyncBase, 0, QStringLiteral("no")});
    EXPECT_EQ(app().mainWindowController().unseenErrorCount(), 1);
}
