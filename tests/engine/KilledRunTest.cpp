// What a run that was killed left behind: replies that it did not live to save.

#include "EngineTest.h"

#include "commands/DownloadJobFilesCommand.h"
#include "commands/SetMediaFormatCommand.h"
#include "engine/SavedState.h"

using namespace Qt::StringLiterals;

namespace {

using KilledRunTest = EngineTest;

TEST_F(KilledRunTest, AJobWhoseEndWasNotSavedIsDeliveredOnceMoreWhateverTheServiceCallsIt)
{
    addJobAt(15);
    EXPECT_FALSE(model().saveState(path(u"temp"_s)));
    restartEngine();
    model().loadState(path(u"temp"_s));
    model().processStatusForDepoNum(883, u"Smith 2 Mar.txt"_s, u"Done"_s);
    ASSERT_EQ(model().jobs().size(), 1U);
    EXPECT_EQ(model().jobs().front()->status(), 14);
    model().foundJobToProces(model().jobs().front());
    EXPECT_EQ(takeCommandsOf<DownloadJobFilesCommand>().size(), 1U);
}

TEST_F(KilledRunTest, TheNumberOfAJobIsSavedAtOnce)
{
    const auto job = addJobAt(1, {u"a.mov"_s}, 0);
    model().keepState(path(u"temp"_s));
    const QString file = path(u"temp/State_demo.archive"_s);
    ASSERT_TRUE(Waiting::until([&] { return SavedState::read(file).jobs.size() == 1; }));
    model().processJobSubmitJobDetailsResponse(job, u"5120 883"_s);
    // Another file is kept from now on: what was not taken for this one yet never comes into it.
    model().keepState(path(u"elsewhere"_s));
    const auto saved = SavedState::read(file).jobs;
    ASSERT_EQ(saved.size(), 1U);
    EXPECT_EQ(saved.front()->depoNum(), 883);
    EXPECT_EQ(saved.front()->status(), 2);
}

TEST_F(KilledRunTest, AnUploadThatGoesOnTellsTheStreamsOfItsRecordingOnceMore)
{
    const auto job = addJobAt(8, {u"a.mov"_s, u"b.mov"_s});
    for (const auto& mediaFile : job->mediaFiles())
        mediaFile->setMp3FilePath(writeFile(u"temp/883/"_s + mediaFile->name() + u".mp3"_s, "audio"));
    job->mediaFiles().at(0)->setStatus(10);
    EXPECT_FALSE(model().saveState(path(u"temp"_s)));
    restartEngine();
    model().loadState(path(u"temp"_s));
    const auto told = takeCommandsOf<SetMediaFormatCommand>();
    ASSERT_EQ(told.size(), 1U);
    EXPECT_EQ(told.front()->mediaFile()->name(), u"b.mov");
}

} // namespace
