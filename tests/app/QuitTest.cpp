#include "AppTest.h"

#include "engine/JobModel.h"
#include "settings/SettingsKey.h"
#include "support/Waiting.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

using testing::HasSubstr;
using Reply = QuillpostAppDelegate::TerminateReply;

namespace {

class Quit : public AppTest
{
protected:
    // The recording of a job that is on the service, with the sound that was made of it.
    std::shared_ptr<MediaFile> addUploadedFile()
    {
        const auto job = Job::job();
        job->setTranscriptFile(writeFile(QStringLiteral("b.txt"), "text"));
        const auto file = MediaFile::mediaFileWithPath(writeFile(QStringLiteral("b.wav"), ""));
        file->setMp3FilePath(writeFile(QStringLiteral("temporary/b.mp3"), "sound"));
        job->addMediaFilesObject(file);
        file->setStatus(JobStatusUploaded);
        job->setStatus(JobStatusOnServer);
        app().jobModel().addJobsObject(job);
        return file;
    }
};

} // namespace

TEST_F(Quit, asksNothingWhileNoLocalJobIsUnfinished)
{
    makeLoggedIn();
    EXPECT_EQ(app().applicationShouldTerminate(), Reply::TerminateNow);
    EXPECT_TRUE(dialogs.questions.isEmpty());
    app().quit();
    EXPECT_EQ(terminatedCount, 1);
}

TEST_F(Quit, asksWhileJobsAreBeingProcessed)
{
    makeLoggedIn();
    addUnfinishedJob();
    dialogs.answers = {true};
    EXPECT_EQ(app().applicationShouldTerminate(), Reply::TerminateNow);
    ASSERT_EQ(dialogs.questions.size(), 1);
    EXPECT_EQ(dialogs.questions.first().title, QStringLiteral("Quillpost"));
    EXPECT_EQ(dialogs.questions.first().text,
              QStringLiteral("Jobs are being processed. Do you want to quit Quillpost?"));
    EXPECT_EQ(dialogs.questions.first().defaultButton, QStringLiteral("Quit Quillpost"));
    EXPECT_EQ(dialogs.questions.first().alternateButton, QStringLiteral("Continue Processing"));
}

TEST_F(Quit, goesOnWhenTheUserChoosesToContinue)
{
    makeLoggedIn();
    addUnfinishedJob();
    dialogs.answers = {false};
    app().quit();
    EXPECT_EQ(terminatedCount, 0);
    EXPECT_FALSE(app().isTerminating());
    EXPECT_EQ(app().jobModel().jobs().size(), 1U);
}

TEST_F(Quit, closingTheLastWindowQuits)
{
    EXPECT_TRUE(QuillpostAppDelegate::applicationShouldTerminateAfterLastWindowClosed());
}

TEST_F(Quit, savesTheJobsAndThenDeletesTemporaryFiles)
{
    makeLoggedIn();
    const auto job = addUnfinishedJob();
    const auto file = addUploadedFile();

    app().applicationWillTerminate();
    EXPECT_THAT(readFile(stateFile()).toStdString(), HasSubstr("a.txt"));
    EXPECT_FALSE(QFile::exists(file->mp3FilePath()));
    EXPECT_TRUE(QFile::exists(stateFile()));
}

TEST_F(Quit, keepsTemporaryFilesWhereTheUserWantsThem)
{
    defaults().setValue(SettingsKey::AutoDeleteTempFiles, false);
    makeLoggedIn();
    const auto file = addUploadedFile();
    app().applicationWillTerminate();
    EXPECT_TRUE(QFile::exists(file->mp3FilePath()));
}

TEST_F(Quit, savesNothingBeforeALogin)
{
    make().applicationDidFinishLaunching();
    app().applicationWillTerminate();
    EXPECT_TRUE(QDir(temporaryFolder()).isEmpty());
}

TEST_F(Quit, asksWhatToDoWhenTheJobsCannotBeSaved)
{
    makeLoggedIn();
    addUnfinishedJob();
    defaults().setValue(SettingsKey::TemporaryFolder, writeFile(QStringLiteral("file"), "") + QStringLiteral("/below"));
    dialogs.answers = {true, true, false};
    app().quit();
    ASSERT_EQ(dialogs.questions.size(), 3) << "Quit? Try again? Try again?";
    EXPECT_TRUE(dialogs.questions.at(1).text.startsWith(QStringLiteral("The jobs could not be saved: ")));
    EXPECT_EQ(terminatedCount, 1);
    defaults().setValue(SettingsKey::TemporaryFolder, temporaryFolder());
}

TEST_F(Quit, endsWhileATransferHangs)
{
    service.addOverride("get_instructions.php", {.hang = true});
    service.addOverride("checkstatus.php", {.hang = true});
    makeLoggedIn();
    addUnfinishedJob();
    app().refreshJobsStatus();
    ASSERT_TRUE(Waiting::until([&] { return service.hanging() > 0; }));
    EXPECT_TRUE(app().endAllWork()) << "A transfer that hangs is cut off.";
    EXPECT_THAT(readFile(stateFile()).toStdString(), HasSubstr("a.txt"));
}
