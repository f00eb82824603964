#include "AppTest.h"

#include "commands/CUrlCommandProcessor.h"
#include "engine/JobModel.h"
#include "settings/SettingsKey.h"
#include "ui/errors/SyncErrorList.h"
#include "ui/login/LoginWindowController.h"
#include "ui/main/MainWindowController.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>

#include <limits>
#include <unistd.h>

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class Launch : public AppTest
{};

} // namespace

TEST_F(Launch, followsTheFiveSettingsOfTheEngine)
{
    defaults().setValue(SettingsKey::MaxNumberOfFfmpegProcesses, 1); // more than the machine's cores is lowered
    const JobModel& model = make().jobModel();
    EXPECT_EQ(model.maxNumberOfRunningFfmpegProcesses(), 1);
    EXPECT_EQ(model.maxNumberOfRunningUploads(), 4);
    EXPECT_EQ(model.tempFilesFolder(), temporaryFolder());
    EXPECT_EQ(model.deliveryFolder(), path(QStringLiteral("delivered")));
    EXPECT_FALSE(model.isOnlyDownloadJobsSentFromThisMachine());

    defaults().setValue(SettingsKey::MaxNumberOfFfmpegProcesses, 2);
    defaults().setValue(SettingsKey::MaxNumberOfUploads, 7);
    defaults().setValue(SettingsKey::TemporaryFolder, path(QStringLiteral("other")));
    defaults().setValue(SettingsKey::DeliveryFolderPath, path(QStringLiteral("elsewhere")));
    defaults().setValue(SettingsKey::IsDownloadJobsOnlyFromThisMachine, true);
    EXPECT_EQ(model.maxNumberOfRunningFfmpegProcesses(), 2);
    EXPECT_EQ(model.maxNumberOfRunningUploads(), 7);
    EXPECT_EQ(model.tempFilesFolder(), path(QStringLiteral("other")));
    EXPECT_EQ(model.deliveryFolder(), path(QStringLiteral("elsewhere")));
    EXPECT_TRUE(model.isOnlyDownloadJobsSentFromThisMachine());
}

TEST_F(Launch, doesNotStandStillForALimitOfNoneInTheSettings)
{
    defaults().setValue(SettingsKey::MaxNumberOfFfmpegProcesses, 0);
    defaults().setValue(SettingsKey::MaxNumberOfUploads, QStringLiteral("none"));
    EXPECT_EQ(make().jobModel().maxNumberOfRunningFfmpegProcesses(), 1);
    EXPECT_EQ(app().jobModel().maxNumberOfRunningUploads(), 1);
}

TEST_F(Launch, setsOneThreadForEachCommandAndPollsOnceAMinute)
{
    EXPECT_EQ(make().curlCommandProcessor().maxNumOfCommandThreads(), std::numeric_limits<int>::max());
    EXPECT_EQ(app().jobModel().statusCheckTimeInterval(), 60.0);
    EXPECT_EQ(app().jobModel().instructionsCheckTimeInterval(), 60.0);
}

TEST_F(Launch, makesTheTemporaryFolderAndShowsTheLoginAlone)
{
    defaults().setValue(SettingsKey::TemporaryFolder, path(QStringLiteral("a/b/c")));
    make();
    const QSignalSpy login(&app().loginWindowController(), &WindowController::showRequested);
    const QSignalSpy main(&app().mainWindowController(), &WindowController::showRequested);
    app().applicationDidFinishLaunching();
    EXPECT_TRUE(QFileInfo(path(QStringLiteral("a/b/c"))).isDir());
    EXPECT_EQ(login.count(), 1);
    EXPECT_EQ(main.count(), 0);
    EXPECT_TRUE(dialogs.warnings.isEmpty());
    EXPECT_THAT(logText().toStdString(), HasSubstr("curl version: libcurl/"));
}

TEST_F(Launch, tellsOfATemporaryFolderThatCannotBeMadeAndGoesOn)
{
    defaults().setValue(SettingsKey::TemporaryFolder, writeFile(QStringLiteral("file"), "") + QStringLiteral("/below"));
    make();
    const QSignalSpy login(&app().loginWindowController(), &WindowController::showRequested);
    app().applicationDidFinishLaunching();
    ASSERT_EQ(dialogs.warnings.size(), 1);
    EXPECT_TRUE(dialogs.warnings.first().second.contains(QStringLiteral("/below")));
    EXPECT_EQ(login.count(), 1);
    EXPECT_TRUE(app().syncErrorList().errorList().isEmpty());
}

TEST_F(Launch, startsAFreshLogFileEachTime)
{
    make();
    const QString first = app().fileLogger()->sortedLogFilePaths().first();
    end();
    make();
    EXPECT_THAT(QDir(path(QStringLiteral("log"))).entryList(QDir::Files),
                ElementsAre(QFileInfo(app().fileLogger()->sortedLogFilePaths().first()).fileName()))
        << "Only the newest is kept.";
    EXPECT_NE(first, app().fileLogger()->sortedLogFilePaths().first());
}

TEST_F(Launch, handsTheCredentialsOverAndGoesOnWithTheSavedJobs)
{
    makeLoggedIn();
    addUnfinishedJob();
    end();
    make().applicationDidFinishLaunching();
    const QSignalSpy loginClosed(&app().loginWindowController(), &WindowController::closeRequested);
    const QSignalSpy mainShown(&app().mainWindowController(), &WindowController::showRequested);
    app().userLoggedIn(QStringLiteral("demo"), QStringLiteral("demo1234"), QStringLiteral("4711"));
    EXPECT_EQ(loginClosed.count(), 1);
    EXPECT_EQ(mainShown.count(), 1);
    EXPECT_EQ(app().userName(), QStringLiteral("demo"));
    EXPECT_EQ(app().userPassword(), QStringLiteral("demo1234"));
    EXPECT_EQ(app().userContactID(), QStringLiteral("4711"));
    EXPECT_EQ(app().jobModel().username(), QStringLiteral("demo"));
    EXPECT_EQ(app().jobModel().password(), QStringLiteral("demo1234"));
    EXPECT_EQ(app().jobModel().contactID(), QStringLiteral("4711"));
    EXPECT_EQ(app().mainWindowController().userContactID(), QStringLiteral("4711"));
    EXPECT_EQ(app().jobModel().jobs().size(), 1U);
    EXPECT_TRUE(app().jobModel().doFindAndProcessJobs());
}

TEST_F(Launch, makesAMissingDeliveryFolder)
{
    makeLoggedIn();
    EXPECT_TRUE(QFileInfo(path(QStringLiteral("delivered"))).isDir());
    EXPECT_TRUE(dialogs.warnings.isEmpty());
}

TEST_F(Launch, warnsOnceOfADeliveryFolderThatCannotBeMadeAndForgetsIt)
{
    defaults().setValue(SettingsKey::DeliveryFolderPath,
                        writeFile(QStringLiteral("file"), "") + QStringLiteral("/gone"));
    makeLoggedIn();
    ASSERT_EQ(dialogs.warnings.size(), 1);
    EXPECT_EQ(dialogs.warnings.first().first, QStringLiteral("Warning"));
    EXPECT_EQ(dialogs.warnings.first().second,
              QStringLiteral("Can not access previous delivery folder, resetting to default delivery location."));
    EXPECT_FALSE(defaults().isStored(SettingsKey::DeliveryFolderPath));
    EXPECT_EQ(app().jobModel().deliveryFolder(), path(QStringLiteral("Quillpost")));
    EXPECT_THAT(logText().toStdString(), HasSubstr("Error creating delivery folder: "));
}

TEST_F(Launch, forgetsADeliveryFolderThatIsAFile)
{
    defaults().setValue(SettingsKey::DeliveryFolderPath, writeFile(QStringLiteral("file"), ""));
    makeLoggedIn();
    EXPECT_EQ(dialogs.warnings.size(), 1);
    EXPECT_FALSE(defaults().isStored(SettingsKey::DeliveryFolderPath));
    EXPECT_THAT(logText().toStdString(), testing::Not(HasSubstr("Error creating delivery folder: ")));
}

TEST_F(Launch, leavesSavedJobsToTheProgramThatWorksOnThem)
{
    QDir().mkpath(temporaryFolder());
    SavedStateLock other;
    ASSERT_TRUE(other.take(stateFile()));
    makeLoggedIn();
    ASSERT_EQ(dialogs.questions.size(), 1);
    EXPECT_TRUE(dialogs.questions.first().text.contains(QStringLiteral("demo")));
    EXPECT_EQ(terminatedCount, 1);
    EXPECT_FALSE(app().jobModel().doFindAndProcessJobs());
    app().applicationWillTerminate();
    EXPECT_FALSE(QFile::exists(stateFile())) << "The jobs are the other program's to save.";
}

TEST_F(Launch, leavesSavedJobsAloneWhenItEndsWhileItAsksWhoseTheyAre)
{
    writeFile(QStringLiteral("temporary/State_demo.archive"), "the other program's");
    SavedStateLock other;
    ASSERT_TRUE(other.take(stateFile()));
    dialogs.whileShown = [this] {
        app().saveJobs(); // The session may end.
        app().terminate();
    };
    makeLoggedIn();
    ASSERT_EQ(dialogs.questions.size(), 1);
    EXPECT_TRUE(app().endAllWork());
    EXPECT_EQ(readFile(stateFile()), "the other program's");
}

TEST_F(Launch, savesNothingWhenItEndsWhileItWarnsOfTheDeliveryFolder)
{
    defaults().setValue(SettingsKey::DeliveryFolderPath, writeFile(QStringLiteral("file"), ""));
    dialogs.whileShown = [this] { app().terminate(); };
    makeLoggedIn();
    ASSERT_EQ(dialogs.warnings.size(), 1);
    EXPECT_TRUE(app().endAllWork());
    EXPECT_THAT(QDir(temporaryFolder()).entryList({QStringLiteral("State_*")}), testing::IsEmpty());
}

TEST_F(Launch, forgetsADeliveryFolderThatCannotBeWritten)
{
    if (::geteuid() == 0)
        GTEST_SKIP() << "The administrator may write everywhere.";
    QDir().mkpath(path(QStringLiteral("locked")));
    QFile::setPermissions(path(QStringLiteral("locked")), QFile::ReadOwner | QFile::ExeOwner);
    defaults().setValue(SettingsKey::DeliveryFolderPath, path(QStringLiteral("locked")));
    makeLoggedIn();
    EXPECT_EQ(dialogs.warnings.size(), 1);
    EXPECT_FALSE(defaults().isStored(SettingsKey::DeliveryFolderPath));
}
