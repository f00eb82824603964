#include "CliTest.h"

#include "support/Waiting.h"

#include <QDir>
#include <QFile>

using testing::HasSubstr;

namespace {

class Resume : public CliTest
{
protected:
    // A job that stopped at its upload.
    void leaveAJob(const QString& recordingName)
    {
        service.addOverride("test_custupload2.php", {.status = 500});
        EXPECT_EQ(run(order({recording(recordingName)})).exitCode(), 3);
        service.clearOverrides();
    }
};

} // namespace

TEST_F(Resume, withoutSavedJobsIsDoneAtOnce)
{
    ChildProgram& program = run({QStringLiteral("resume")});
    EXPECT_EQ(program.exitCode(), 0);
    EXPECT_EQ(text(program.standardError()), "No saved jobs.\n");
}

TEST_F(Resume, worksUntilAllSavedJobsAreCompleted)
{
    leaveAJob(QStringLiteral("a.wav"));
    service.addOverride("jobdetails.php", {.reply = "later"});
    EXPECT_EQ(run(order({recording(QStringLiteral("b.wav"))})).exitCode(), 3);
    service.clearOverrides();
    ChildProgram& program = run({QStringLiteral("resume")});
    EXPECT_EQ(program.exitCode(), 0) << text(program.standardError());
    EXPECT_THAT(text(program.standardOutput()), HasSubstr("Job 883 is completed"));
    EXPECT_THAT(text(program.standardOutput()), HasSubstr("Job 884 is completed"));
    for (const DemoService::Job& job : service.jobs())
        EXPECT_TRUE(job.delivered) << job.depoNumber;

    EXPECT_EQ(text(run({QStringLiteral("resume")}).standardError()), "No saved jobs.\n");
}

TEST_F(Resume, ofAJobThatStopsAgainIsAServiceError)
{
    leaveAJob(QStringLiteral("a.wav"));
    service.addOverride("test_custupload2.php", {.reply = "DISK FULL"});
    ChildProgram& program = run({QStringLiteral("resume")});
    EXPECT_EQ(program.exitCode(), 3);
    EXPECT_THAT(text(program.standardError()), HasSubstr("DISK FULL"));
    EXPECT_TRUE(QFile::exists(stateFile()));
}

TEST_F(Resume, completesTheOtherJobsWhereOneStops)
{
    service.addOverride("jobdetails.php", {.reply = "later"});
    const QString vanishing = recording(QStringLiteral("a.wav"));
    EXPECT_EQ(run(order({vanishing})).exitCode(), 3);
    service.addOverride("jobdetails.php", {.reply = "later"});
    EXPECT_EQ(run(order({recording(QStringLiteral("b.wav"))})).exitCode(), 3);
    service.clearOverrides();
    ASSERT_TRUE(QFile::remove(vanishing));

    ChildProgram& program = run({QStringLiteral("resume")});
    EXPECT_EQ(program.exitCode(), 3);
    EXPECT_THAT(text(program.standardError()), HasSubstr(" cannot go on: "));
    int delivered = 0;
    for (const DemoService::Job& job : service.jobs())
        delivered += job.delivered ? 1 : 0;
    EXPECT_EQ(delivered, 1);
    EXPECT_EQ(program.standardOutput().count(QStringLiteral(" is completed; ")), 1);
}

TEST_F(Resume, ofASavedListThatCannotBeReadIsNoCrash)
{
    writeFile(QStringLiteral("temp/State_demo.archive"), "{ not JSON \xff");
    ChildProgram& program = run({QStringLiteral("resume")});
    EXPECT_EQ(program.exitCode(), 0);
    EXPECT_THAT(text(program.standardError()), HasSubstr("No saved jobs."));
}

TEST_F(Resume, saysWhoWorksOnTheSavedJobs)
{
    service.addOverride("jobdetails.php", {.hang = true});
    ChildProgram& first = start(order({recording(QStringLiteral("a.wav"))}));
    ASSERT_TRUE(Waiting::until([this] { return service.hanging() == 1; }));
    ChildProgram& second = run({QStringLiteral("resume")});
    EXPECT_EQ(second.exitCode(), 1);
    EXPECT_THAT(text(second.standardError()), HasSubstr("are being worked on by quillpost-cli (process "));
    EXPECT_EQ(service.count("cauthorize2.php"), 1) << "Nothing is sent before the jobs are its own.";
    service.clearOverrides();
    waitForEnd(first);
    EXPECT_EQ(first.exitCode(), 0) << text(first.standardError());
}

TEST_F(Resume, tellsTheLevelOfAJobThatWasNotAcceptedBefore)
{
    service.addOverride("jobdetails.php", {.reply = "later"});
    EXPECT_EQ(run(order({recording(QStringLiteral("a.wav"))})).exitCode(), 3);
    service.clearOverrides();
    EXPECT_THAT(text(run({QStringLiteral("resume")}).standardError()),
                HasSubstr("was not accepted yet; it is ordered at the level Man72."));
}

TEST_F(Resume, endsWithAJobThatAnotherProgramDelivered)
{
    leaveAJob(QStringLiteral("a.wav"));
    service.holdWord(883, "Done");
    ChildProgram& program = run({QStringLiteral("resume")});
    EXPECT_EQ(program.exitCode(), 3);
    EXPECT_THAT(text(program.standardError()), HasSubstr("Job 883 cannot go on: it was delivered already, by another"));
}

TEST_F(Resume, keepsSavedJobsThatCannotBeReadAndSaysSo)
{
    const QByteArray damaged = R"({"version": 1, "jobs": [{"transcriptFile")";
    writeFile(QStringLiteral("temp/State_demo.archive"), damaged);
    ChildProgram& program = run({QStringLiteral("resume")});
    EXPECT_THAT(text(program.standardError()), HasSubstr("cannot be read"));
    const QDir folder(path(QStringLiteral("temp")));
    const QStringList kept = folder.entryList({QStringLiteral("State_demo.archive.unreadable *")});
    ASSERT_EQ(kept.size(), 1);
    EXPECT_EQ(readFile(folder.filePath(kept.first())), damaged);
}

TEST_F(Resume, tryingAgainFinishesAJobThatStopped)
{
    service.addOverride("test_custupload2.php", {.status = 500});
    ChildProgram& first = run(order({recording(QStringLiteral("a.wav"))}));
    EXPECT_EQ(first.exitCode(), 3);
    EXPECT_THAT(text(first.standardError()), HasSubstr("Nothing is lost: `quillpost-cli retry` tries again."));
    service.clearOverrides();
    ChildProgram& program = run({QStringLiteral("retry"), QStringLiteral("883")});
    EXPECT_EQ(program.exitCode(), 0) << text(program.standardError());
    EXPECT_THAT(text(program.standardOutput()), HasSubstr("Job 883 is completed"));
    EXPECT_EQ(text(run({QStringLiteral("retry")}).standardError()), "No saved jobs.\n");
}

TEST_F(Resume, tryingAgainAJobThatIsNotSavedSendsNothing)
{
    leaveAJob(QStringLiteral("a.wav"));
    const int before = service.count("cauthorize2.php");
    ChildProgram& program = run({QStringLiteral("retry"), QStringLiteral("884")});
    EXPECT_EQ(program.exitCode(), 1);
    EXPECT_THAT(
        text(program.standardError()),
        HasSubstr("No saved job has the number or transcript name \"884\"; saved jobs: Doe-Jane-2026-03-04.txt"));
    EXPECT_EQ(service.count("cauthorize2.php"), before);
    EXPECT_TRUE(QFile::exists(stateFile()));
}

TEST_F(Resume, ofASubmissionThatWasNeverConfirmedSaysThatItMayBeThereTwice)
{
    service.addOverride("jobdetails.php", {.cutAt = 2});
    EXPECT_EQ(run(order({recording(QStringLiteral("a.wav"))})).exitCode(), 3);
    service.clearOverrides();
    ChildProgram& program = run({QStringLiteral("resume")});
    EXPECT_EQ(program.exitCode(), 0) << text(program.standardError());
    EXPECT_THAT(text(program.standardError()), HasSubstr("The service may now hold it twice"));
}
