// Saved jobs that follow the work, and what is read back from them after a crash.

#include "engine/StateKeeper.h"

#include "EngineTest.h"

#include "commands/DownloadJobFilesCommand.h"
#include "commands/SubmitJobDetailsCommand.h"
#include "engine/SavedState.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTimer>

#include <thread>

using namespace Qt::StringLiterals;

namespace {

class StateKeeperTest : public EngineTest
{
protected:
    StateKeeperTest() { model().keepState(folder); }

    // What a program that starts now would read.
    [[nodiscard]] QStringList held() const
    {
        QStringList jobs;
        for (const auto& job : SavedState::read(file).jobs) {
            QStringList files;
            for (const auto& mediaFile : job->mediaFiles())
                files.append(QString::number(mediaFile->status()));
            jobs.append(u"%1:%2:%3"_s.arg(job->depoNum().value_or(0)).arg(job->status()).arg(files.join(u',')));
        }
        return jobs;
    }
    [[nodiscard]] testing::AssertionResult comesToHold(const QStringList& jobs) const
    {
        if (Waiting::until([&] { return QFileInfo::exists(file) && held() == jobs; }, std::chrono::seconds(10)))
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << "it holds " << held().join(u' ').toStdString();
    }
    [[nodiscard]] QDateTime writtenAt() const { return QFileInfo(file).lastModified(); }

    const QString folder = path(u"temp"_s);
    const QString file = folder + u"/State_demo.archive"_s;
};

TEST_F(StateKeeperTest, EveryStepOfAJobIsInTheFileWithoutASave)
{
    const auto job = addJobAt(0, {u"a.mov"_s, u"b.mov"_s}, 0);
    EXPECT_TRUE(comesToHold({u"0:0:0,0"_s}));
    job->setDepoNum(883);
    EXPECT_TRUE(comesToHold({u"883:0:0,0"_s}));
    job->mediaFiles().at(0)->setStatus(2);
    EXPECT_TRUE(comesToHold({u"883:0:2,0"_s}));
    // On a thread of the engine's, too.
    std::thread([&] { job->mediaFiles().at(1)->setStatus(4); }).join();
    EXPECT_TRUE(comesToHold({u"883:0:2,4"_s}));
    job->setStatus(11);
    EXPECT_TRUE(comesToHold({u"883:11:2,4"_s}));
    job->setOrderNum(5120);
    EXPECT_TRUE(Waiting::until([&] { return SavedState::read(file).jobs.at(0)->orderNum() == 5120; }));
    job->setTranscriptUploaded(true);
    EXPECT_TRUE(Waiting::until([&] { return SavedState::read(file).jobs.at(0)->transcriptUploaded(); }));
}

TEST_F(StateKeeperTest, AJobThatIsRemovedOrDoneLeavesTheFile)
{
    const auto first = addJobAt(2, {u"a.mov"_s}, 1);
    const auto second = addJobAt(2, {u"b.mov"_s}, 2);
    EXPECT_TRUE(comesToHold({u"1:2:2"_s, u"2:2:2"_s}));
    model().removeJobsObject(first);
    EXPECT_TRUE(comesToHold({u"2:2:2"_s}));
    second->setStatus(17);
    EXPECT_TRUE(comesToHold({}));
}

TEST_F(StateKeeperTest, TheServicesOwnJobsAreNeverKept)
{
    const auto job = jobOf({});
    job->setServerJob(true);
    model().addJobsObject(job);
    addJobAt(2, {u"b.mov"_s}, 2);
    EXPECT_TRUE(comesToHold({u"2:2:2"_s}));
}

TEST_F(StateKeeperTest, ASubmissionLeavesOnlyWhenTheFileTellsOfIt)
{
    const auto job = addJobAt(0, {u"a.mov"_s}, 0);
    model().submitJobDetails(job);
    EXPECT_TRUE(takeCommandsOf<SubmitJobDetailsCommand>().empty());
    std::vector<std::shared_ptr<SubmitJobDetailsCommand>> sent;
    ASSERT_TRUE(Waiting::until([&] { return !(sent = takeCommandsOf<SubmitJobDetailsCommand>()).empty(); }));
    EXPECT_EQ(sent.size(), 1U);
    EXPECT_EQ(SavedState::read(file).submittedPerhaps.size(), 1U);
}

TEST_F(StateKeeperTest, AFullDiskHoldsNoSubmissionBack)
{
    restartEngine();
    model().keepState(writeFile(u"occupied"_s, "x"));
    // Nor does a user who has not read the error yet.
    std::size_t sentWhenTold = 0;
    services().whenPresented = [&](const Error&) { sentWhenTold = takeCommandsOf<SubmitJobDetailsCommand>().size(); };
    model().submitJobDetails(addJobAt(0, {u"a.mov"_s}, 0));
    EXPECT_TRUE(Waiting::until([&] { return errorTexts().size() == 1; }));
    EXPECT_EQ(sentWhenTold, 1U);
    services().whenPresented = nullptr;
}

TEST_F(StateKeeperTest, ADownloadBeginsOnlyWhenTheFileTellsOfIt)
{
    const auto job = addJobAt(14);
    model().downloadJob(job);
    EXPECT_TRUE(takeCommandsOf<DownloadJobFilesCommand>().empty());
    ASSERT_TRUE(Waiting::until([&] { return !takeCommandsOf<DownloadJobFilesCommand>().empty(); }));
    EXPECT_EQ(held(), QStringList{u"883:14:17"_s});
}

TEST_F(StateKeeperTest, GoesOnAfterASaveWhateverItWasAbout)
{
    const auto job = addJobAt(0, {u"a.mov"_s}, 0);
    for (int number = 1; number <= 10; ++number) {
        job->setDepoNum(number);
        Waiting::turnMainLoopFor(std::chrono::milliseconds(number * 7)); // the keeper is at another point each time
        ASSERT_FALSE(model().saveState(folder));
        job->setDepoNum(100 + number);
        EXPECT_TRUE(comesToHold({u"%1:0:0"_s.arg(100 + number)}));
    }
}

TEST_F(StateKeeperTest, WhatChangesBackAfterASaveIsWritten)
{
    const auto job = addJobAt(0, {u"a.mov"_s}, 1);
    EXPECT_TRUE(comesToHold({u"1:0:0"_s}));
    job->setDepoNum(2);
    ASSERT_FALSE(model().saveState(folder));
    job->setDepoNum(1);
    EXPECT_TRUE(comesToHold({u"1:0:0"_s}));
}

TEST_F(StateKeeperTest, AnotherFileTakesOverAndNobodyWaitsInVain)
{
    model().submitJobDetails(addJobAt(0, {u"a.mov"_s}, 0));
    model().keepState(folder); // the same
    model().keepState(path(u"elsewhere"_s));
    EXPECT_EQ(takeCommandsOf<SubmitJobDetailsCommand>().size(), 1U);
    EXPECT_EQ(held(), QStringList{u"0:0:0"_s});
    EXPECT_TRUE(Waiting::until([&] { return QFileInfo::exists(path(u"elsewhere/State_demo.archive"_s)); }));
}

TEST_F(StateKeeperTest, ThousandsOfJobsAreEncodedInSeveralTurnsOfTheMainThread)
{
    constexpr int count = 1000;
    std::vector<std::shared_ptr<Job>> jobs;
    for (int number = 1; number <= count; ++number) {
        jobs.push_back(Job::job());
        jobs.back()->setDepoNum(number);
        model().addJobsObject(jobs.back());
    }
    const auto highestOrder = [this] {
        int highest = 0;
        for (const auto& job : SavedState::read(file).jobs)
            highest = std::max(highest, job->orderNum().value_or(0));
        return highest;
    };
    ASSERT_TRUE(Waiting::until([&] { return held().size() == count; }));
    for (const auto& job : jobs)
        job->setStatus(11);
    // One that changes in each turn has no turn of its own at the end.
    int turns = 0;
    QTimer everyTurn;
    QObject::connect(&everyTurn, &QTimer::timeout, &everyTurn, [&] { jobs.front()->setOrderNum(++turns); });
    everyTurn.start(0);
    ASSERT_TRUE(Waiting::until([&] { return held().last() == u"%1:11:"_s.arg(count) && turns > 3; }));
    everyTurn.stop();
    EXPECT_TRUE(Waiting::until([&] { return highestOrder() == turns; })) << "a change between two turns is kept too";
}

TEST_F(StateKeeperTest, ProgressAloneWritesNothing)
{
    const auto job = addJobAt(9);
    EXPECT_TRUE(comesToHold({u"883:8:8"_s}) || comesToHold({u"883:9:8"_s}));
    Waiting::turnMainLoopFor(std::chrono::milliseconds(400));
    const QDateTime before = writtenAt();
    for (int i = 0; i < 20; ++i) {
        job->mediaFiles().first()->setProcessedValue(i);
        Waiting::turnMainLoopFor(std::chrono::milliseconds(40));
    }
    EXPECT_EQ(writtenAt(), before);
}

TEST_F(StateKeeperTest, AnOlderPictureIsNotWrittenOverASave)
{
    for (int i = 0; i < 20; ++i) {
        const auto job = addJobAt(2, {u"a.mov"_s}, i + 1);
        Waiting::turnMainLoopFor(std::chrono::milliseconds(i * 20)); // the keeper is at another point each time
        job->setStatus(11);
        ASSERT_FALSE(model().saveState(folder));
        Waiting::turnMainLoopFor(std::chrono::milliseconds(30));
        EXPECT_TRUE(held().last().startsWith(u"%1:11:"_s.arg(i + 1))) << held().last().toStdString();
        model().removeJobsObject(job);
    }
}

TEST_F(StateKeeperTest, AFileThatCannotBeWrittenIsToldOnceAndWrittenAsSoonAsItCanBe)
{
    restartEngine();
    const QString inTheWay = writeFile(u"occupied"_s, "x");
    model().keepState(inTheWay);
    const auto job = addJobAt(2);
    ASSERT_TRUE(Waiting::until([&] { return errorTexts().size() == 1; }));
    EXPECT_EQ(services().errors[0].domain, ErrorDomain::Platform);
    job->setStatus(4);
    Waiting::turnMainLoopFor(std::chrono::milliseconds(600));
    EXPECT_EQ(errorTexts().size(), 1);
    ASSERT_TRUE(QFile::remove(inTheWay));
    ASSERT_TRUE(Waiting::until([&] { return QFileInfo::exists(inTheWay + u"/State_demo.archive"_s); }));
    EXPECT_EQ(SavedState::read(inTheWay + u"/State_demo.archive"_s).jobs.size(), 1U);
}

// A program that was killed, and a file that was damaged.

class DamagedStateTest : public EngineTest
{
protected:
    DamagedStateTest()
    {
        EXPECT_FALSE(SavedState::write(file, {jobNamed(u"a.txt"_s)}));
        EXPECT_FALSE(SavedState::write(file, {jobNamed(u"a.txt"_s), jobNamed(u"b.txt"_s)}));
    }
    [[nodiscard]] std::shared_ptr<Job> jobNamed(const QString& name) { return jobOf({u"clip.mov"_s}, name); }
    [[nodiscard]] QStringList kept() const { return QDir(folder).entryList({u"State_demo.archive.unreadable *"_s}); }

    const QString folder = path(u"temp"_s);
    const QString file = folder + u"/State_demo.archive"_s;
};

TEST_F(DamagedStateTest, TheFileBeforeIsReadWhereTheNewestCannotBe)
{
    (void)writeFile(u"temp/State_demo.archive"_s, "garbage");
    model().loadState(folder);
    ASSERT_EQ(model().jobs().size(), 1U);
    EXPECT_EQ(model().jobs().front()->name(), u"a.txt"_s);
    EXPECT_EQ(errorTexts().size(), 1);
    ASSERT_EQ(kept().size(), 1);
    EXPECT_EQ(readFile(folder + u'/' + kept().first()), "garbage");
}

TEST_F(DamagedStateTest, ARunThatEndedAfterItPutTheDamagedFileAsideCostsNothing)
{
    (void)writeFile(u"temp/State_demo.archive"_s, "garbage");
    model().loadState(folder);
    restartEngine(); // and nothing was saved
    model().loadState(folder);
    ASSERT_EQ(model().jobs().size(), 1U);
    EXPECT_EQ(model().jobs().front()->name(), u"a.txt"_s);
    EXPECT_TRUE(errorTexts().isEmpty());
}

TEST_F(DamagedStateTest, AJobOfTheFileBeforeMayHaveBeenSubmittedSince)
{
    const auto known = jobNamed(u"known.txt"_s);
    known->setDepoNum(7);
    known->mediaFiles().first()->setStatus(2);
    ASSERT_FALSE(SavedState::write(file, {jobNamed(u"new.txt"_s), known}));
    ASSERT_FALSE(SavedState::write(file, {}));
    (void)writeFile(u"temp/State_demo.archive"_s, "{");
    const auto perhaps = SavedState::readLastGood(file).submittedPerhaps;
    ASSERT_EQ(perhaps.size(), 1U);
    EXPECT_EQ(perhaps.front()->name(), u"new.txt"_s);
}

TEST_F(DamagedStateTest, WhatTheNewestLacksComesFromTheFileBefore)
{
    // The first job of two is damaged, and the file before has it.
    ASSERT_FALSE(SavedState::write(file, {jobNamed(u"a.txt"_s), jobNamed(u"b.txt"_s)}));
    QByteArray damaged = readFile(file);
    damaged.replace(damaged.indexOf("\"mediaFiles\""), 12, "\"mediaFlies\"");
    (void)writeFile(u"temp/State_demo.archive"_s, damaged);
    model().loadState(folder);
    QStringList names;
    for (const auto& job : model().jobs())
        names << job->name();
    EXPECT_EQ(names, (QStringList{u"b.txt"_s, u"a.txt"_s}));
    EXPECT_EQ(errorTexts().size(), 1);
    ASSERT_EQ(kept().size(), 1);
    EXPECT_EQ(readFile(folder + u'/' + kept().first()), damaged);
    EXPECT_EQ(SavedState::read(file).jobs.size(), 2U) << "They have a file again.";
}

TEST_F(DamagedStateTest, AJobIsNotOrderedWithoutARecordingThatCannotBeReadBack)
{
    QByteArray damaged = readFile(file);
    damaged.replace("\"sourceFilePath\"", "\"sourceFlyPath\" ");
    (void)writeFile(u"temp/State_demo.archive"_s, damaged);
    const auto contents = SavedState::read(file);
    EXPECT_TRUE(contents.jobs.empty());
    EXPECT_TRUE(contents.problem);
}

TEST_F(DamagedStateTest, BothFilesAreKeptAsideWhereNeitherCanBeRead)
{
    (void)writeFile(u"temp/State_demo.archive"_s, "garbage");
    (void)writeFile(u"temp/State_demo.archive.previous"_s, "more garbage");
    model().loadState(folder);
    EXPECT_TRUE(model().jobs().empty());
    EXPECT_EQ(errorTexts().size(), 2);
    EXPECT_EQ(QDir(folder).entryList({u"*.unreadable *"_s}).size(), 2);
}

TEST_F(DamagedStateTest, ALongUserNameLeavesRoomToKeepTheFile)
{
    const QString longName = u"temp/"_s + QString(245, u'n');
    (void)writeFile(longName, "garbage");
    (void)SavedState::keepAside(path(longName), u"no JSON"_s);
    EXPECT_FALSE(QFile::exists(path(longName)));
    EXPECT_EQ(readFile(folder + u"/State.unreadable 1"_s), "garbage");
}

TEST_F(DamagedStateTest, AJobOfTheFileBeforeThatTheServiceCallsDoneIsDeliveredOnceMore)
{
    const auto job = jobNamed(u"a.txt"_s);
    job->setDepoNum(883);
    job->mediaFiles().first()->setStatus(11);
    job->setStatus(11);
    ASSERT_FALSE(SavedState::write(file, {job}));
    ASSERT_FALSE(SavedState::write(file, {}));
    (void)writeFile(u"temp/State_demo.archive"_s, "garbage");
    model().loadState(folder);
    ASSERT_EQ(model().jobs().size(), 1U);
    model().processStatusForDepoNum(883, u"a.txt"_s, u"Done"_s);
    EXPECT_EQ(model().jobs().front()->status(), 14);
}

TEST_F(DamagedStateTest, CutAtAnyByteItGivesItsJobsOrThoseBefore)
{
    const QByteArray whole = readFile(file);
    for (qsizetype length = 0; length < whole.size(); ++length) {
        (void)writeFile(u"temp/State_demo.archive"_s, whole.first(length));
        const SavedState::Contents contents = SavedState::readLastGood(file);
        // The last line's end is all that a whole document can lack.
        if (whole.sliced(length).trimmed().isEmpty()) {
            EXPECT_EQ(contents.jobs.size(), 2U);
            continue;
        }
        ASSERT_TRUE(contents.problem) << length;
        ASSERT_EQ(contents.jobs.size(), 1U) << length;
    }
}

TEST_F(DamagedStateTest, TheFileBeforeIsTheUsersAloneToo)
{
    EXPECT_EQ(QFileInfo(SavedState::previousPath(file)).permissions() & QFile::Permissions(0x0777),
              QFile::ReadUser | QFile::WriteUser);
}

TEST_F(DamagedStateTest, AJobWhoseSubmissionHadNoReplyIsToldToBePerhapsThereTwice)
{
    const auto submitting = jobNamed(u"sent.txt"_s);
    submitting->setStatus(1);
    const auto answered = jobNamed(u"answered.txt"_s);
    answered->setStatus(1);
    answered->setOrderNum(6);
    answered->setDepoNum(7);
    ASSERT_FALSE(SavedState::write(file, {jobNamed(u"new.txt"_s), submitting, answered}));
    QStringList told;
    const QObject scope; // the connection's end, before what it writes to goes
    QObject::connect(&model(), &JobModel::jobMayBeHeldTwice, &scope, [&](const auto& job) { told << job->name(); });
    model().loadState(folder);
    EXPECT_EQ(told, QStringList{u"sent.txt"_s});
    EXPECT_TRUE(log.contains(u"The submission of sent.txt was never confirmed"_s));
}

} // namespace
