// What a run that was killed left behind: replies that it did not live to save.

#include "EngineTest.h"

#include "commands/DownloadJobFilesCommand.h"
#include "commands/SetMediaFormatCommand.h"
#include "engine/SavedState.h"

#include <algorithm>
#include <mutex>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

using KilledRunTest = EngineTest;

TEST_F(KilledRunTest, AJobThatTheServiceCallsDoneIsCompletedWhereItsFilesAreHere)
{
    const auto job = addJobAt(11);
    job->setFilesDelivered(true);
    model().processStatusForDepoNum(883, u"Smith 2 Mar.txt"_s, u"Done"_s);
    EXPECT_EQ(job->status(), 17);
    EXPECT_EQ(job->serverStatus(), u"Done");
}

TEST_F(KilledRunTest, AJobThatTheServiceCallsDoneStaysWhereItsFilesAreNotHere)
{
    const auto job = addJobAt(11);
    model().processStatusForDepoNum(883, u"Smith 2 Mar.txt"_s, u"Done"_s);
    EXPECT_EQ(job->status(), 11);
}

TEST_F(KilledRunTest, OnlyTheExactWordCompletesAJob)
{
    const auto job = addJobAt(11);
    job->setFilesDelivered(true);
    for (const QString& word : {u"done"_s, u"Joining"_s, u""_s})
        model().processStatusForDepoNum(883, u"Smith 2 Mar.txt"_s, word);
    EXPECT_EQ(job->status(), 11);
}

TEST_F(KilledRunTest, WhatTheServiceWasNotToldOfIsDeliveredOnceMore)
{
    const auto job = addJobAt(11);
    job->setFilesDelivered(true);
    model().processStatusForDepoNum(883, u"Smith 2 Mar.txt"_s, u"Joined"_s);
    EXPECT_EQ(job->status(), 14);
    model().downloadJob(job);
    EXPECT_EQ(takeCommandsOf<DownloadJobFilesCommand>().size(), 1U);
    EXPECT_FALSE(job->filesDelivered()) << "They are written over from now on.";
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

// Reads the saved jobs whenever the service gets a request.
class KeptBeforeToldTest : public ServiceEngineTest
{
protected:
    KeptBeforeToldTest() : ServiceEngineTest(watchedBy(*this)) {}
    ~KeptBeforeToldTest() override { service.stop(); }

    static DemoService::Options watchedBy(KeptBeforeToldTest& test)
    {
        DemoService::Options options;
        options.watch = [&test](DemoService::Stage stage, const DemoService::Request& request) {
            if (stage == DemoService::Stage::Received && request.endpoint == "test_downloadjob2.php")
                test.look(request.body.find("just_get_name") == std::string::npos);
        };
        return options;
    }
    void look(bool isForContents)
    {
        const std::scoped_lock lock(mutex);
        if (!isForContents || stateFile.isEmpty())
            return;
        const auto saved = SavedState::read(stateFile).jobs;
        keptAt.push_back(!saved.empty() && saved.front()->filesDelivered());
    }

    std::mutex mutex; // guards the members below
    QString stateFile;
    std::vector<bool> keptAt; // each request for a file's contents, and the last, which tells of the delivery
};

TEST_F(KeptBeforeToldTest, TheSavedJobsTellOfTheFilesBeforeTheServiceHearsOfThem)
{
    {
        const std::scoped_lock lock(mutex);
        stateFile = path(u"temp/State_demo.archive"_s);
    }
    model().keepState(path(u"temp"_s));
    const auto job = realJob({u"a.wav"_s});
    model().addJobsObject(job);
    model().startJobProcessing();
    EXPECT_TRUE(reaches(job, 17));
    const std::scoped_lock lock(mutex);
    ASSERT_FALSE(keptAt.empty());
    EXPECT_TRUE(keptAt.back());
    keptAt.pop_back();
    EXPECT_EQ(std::count(keptAt.begin(), keptAt.end(), true), 0);
}

} // namespace
