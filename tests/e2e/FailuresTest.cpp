#include "CliTest.h"

#include "support/GeneratedMedia.h"
#include "support/Waiting.h"

#include <QFile>

using testing::HasSubstr;

namespace {

// A job that cannot go on ends the run with 3 and the reason on standard error.
class Failures : public CliTest
{
protected:
    ChildProgram& submit() { return run(order({recording(QStringLiteral("a.wav"))})); }

    void expectServiceError(ChildProgram& program, const std::string& words)
    {
        EXPECT_EQ(program.exitCode(), 3);
        EXPECT_THAT(text(program.standardError()), HasSubstr(words));
    }
    // The log goes to the service after an error was presented.
    void expectLogUploaded(const std::string& line)
    {
        ASSERT_GE(service.logs().size(), 1U);
        EXPECT_EQ(service.logs().back().name, "debug.txt");
        EXPECT_THAT(service.logs().back().content, HasSubstr(line));
    }
};

} // namespace

TEST_F(Failures, aRefusedRegistration)
{
    service.addOverride("jobdetails.php", {.reply = "Account on hold"});
    expectServiceError(submit(), "Possible error with job(0) submission, response(Account on hold)");
    expectLogUploaded("Account on hold");
    EXPECT_EQ(service.count("add_segment.php"), 0);
}

TEST_F(Failures, aRegistrationThatCannotBeSent)
{
    service.addOverride("jobdetails.php", {.status = 503});
    expectServiceError(submit(), "submission of job(0) failed,  cURL error( 22, ");
}

TEST_F(Failures, aRegistrationThatIsCutOff)
{
    service.addOverride("jobdetails.php", {.reset = true});
    EXPECT_EQ(submit().exitCode(), 3);
}

TEST_F(Failures, aRefusedSegment)
{
    service.addOverride("add_segment.php", {.reply = " "});
    expectServiceError(submit(), "Possible error with job(883) submission, response( )");
}

TEST_F(Failures, anUploadThatFails)
{
    service.addOverride("test_custupload2.php", {.status = 500});
    expectServiceError(submit(), "uploading of job(883) files failed,  cURL error( 22, ");
    expectLogUploaded("uploading of job(883) files failed");
    EXPECT_TRUE(QFile::exists(stateFile())) << "resume can go on from there.";
}

TEST_F(Failures, anUploadThatIsRefused)
{
    service.addOverride("test_custupload2.php", {.reply = "UPLOAD COMPLETE\n"});
    ChildProgram& program = submit();
    expectServiceError(program, "uploading error for job(883), server resonse( UPLOAD COMPLETE\n )");
    expectServiceError(program, "Job 883 cannot go on: ");
    expectLogUploaded("UPLOAD COMPLETE");
}

TEST_F(Failures, aTranscriptUploadThatIsRefused)
{
    // The recording's upload is let through.
    service.addOverride("test_custupload2.php", {.delay = std::chrono::milliseconds(1), .times = 1});
    service.addOverride("test_custupload2.php", {.reply = "DISK FULL"});
    expectServiceError(submit(), "Doe-Jane-2026-03-04.txt ) uploading error for job(883), server resonse( DISK FULL )");
}

TEST_F(Failures, everyUploadPlaceLostToUploadsThatFailed)
{
    service.addOverride("test_custupload2.php", {.status = 500, .times = 1});
    ChildProgram& program = run(order({recording(QStringLiteral("a.wav")), recording(QStringLiteral("b.wav"))}) +
                                QStringList{QStringLiteral("--max-uploads"), QStringLiteral("1")});
    expectServiceError(program, "uploading of job(883) files failed");
}

TEST_F(Failures, pricesThatCannotBeAskedFor)
{
    service.addOverride("get_rates2.php", {.status = 500});
    expectServiceError(submit(), "The prices cannot be asked for: cURL error( 22, ");
    EXPECT_EQ(service.count("jobdetails.php"), 0) << "An order without product codes is another order.";
    expectLogUploaded("The prices cannot be asked for");
}

TEST_F(Failures, aRecordingWithoutSound)
{
    const QString film = GeneratedMedia::filmWithoutSound(path(QStringLiteral("files/silent.mp4")));
    expectServiceError(run(order({film})), "No audio could be made of " + text(film));
}

TEST_F(Failures, aTextFileThatIsNamedLikeARecording)
{
    const QString letter = GeneratedMedia::textFile(path(QStringLiteral("files/letter.mov")));
    expectServiceError(run(order({letter})), "No audio could be made of " + text(letter));
}

TEST_F(Failures, anEmptyRecording)
{
    const QString empty = GeneratedMedia::emptyFile(path(QStringLiteral("files/empty.wav")));
    expectServiceError(run(order({empty})), "No audio could be made of " + text(empty));
}

TEST_F(Failures, aRecordingThatVanishesBeforeItIsRead)
{
    service.addOverride("jobdetails.php", {.delay = std::chrono::milliseconds(300)});
    const QString file = recording(QStringLiteral("a.wav"));
    ChildProgram& program = start(order({file}));
    ASSERT_TRUE(Waiting::until([&] { return service.count("jobdetails.php") == 1; }));
    ASSERT_TRUE(QFile::remove(file));
    waitForEnd(program);
    expectServiceError(program, "No audio could be made of " + text(file));
}

TEST_F(Failures, aTranscriptThatVanishesBeforeItIsSent)
{
    service.addOverride("add_segment.php", {.delay = std::chrono::milliseconds(300)});
    ChildProgram& program = start(order({recording(QStringLiteral("a.wav"))}));
    ASSERT_TRUE(Waiting::until([&] { return service.count("add_segment.php") == 1; }));
    ASSERT_TRUE(QFile::remove(path(QStringLiteral("files/Doe-Jane-2026-03-04.txt"))));
    waitForEnd(program);
    expectServiceError(program, "Doe-Jane-2026-03-04.txt cannot be read");
}

TEST_F(Failures, anUploadWhoseReplyIsCutOff)
{
    service.addOverride("test_custupload2.php", {.cutAt = 6});
    expectServiceError(submit(), "Job 883 cannot go on: ");
}

TEST_F(Failures, aDeliveryWhoseFolderCannotBeAskedFor)
{
    service.addOverride("miscstuff.php", {.status = 500});
    expectServiceError(submit(), "downloading of job(883) files failed");
    EXPECT_TRUE(QFile::exists(stateFile()));
}

TEST_F(Failures, aJobThatTheServiceWithdraws)
{
    service.setTurnaround(std::chrono::minutes(10));
    ChildProgram& program = start(order({recording(QStringLiteral("a.wav"))}));
    ASSERT_TRUE(Waiting::until([&] {
        const auto job = service.job(883);
        return job && job->transcript.has_value();
    }));
    ASSERT_TRUE(service.voidJob(883));
    waitForEnd(program);
    expectServiceError(program, "VOID");
}

TEST_F(Failures, areObjectsForPrograms)
{
    service.addOverride("jobdetails.php", {.reply = "Account on hold"});
    ChildProgram& program = run(QStringList{QStringLiteral("--json")} + order({recording(QStringLiteral("a.wav"))}));
    EXPECT_EQ(program.exitCode(), 3);
    const auto errors = objects(program, QStringLiteral("error"));
    ASSERT_FALSE(errors.empty());
    EXPECT_THAT(text(errors.front().value(QStringLiteral("message")).toString()), HasSubstr("Account on hold"));
}

TEST_F(Failures, endTheRunAlsoWhereTheLogCannotBeSent)
{
    service.addOverride("jobdetails.php", {.reply = "Account on hold"});
    service.addOverride("qpt_debug_upload.php", {.hang = true});
    ChildProgram& program = submit();
    expectServiceError(program, "Account on hold");
}

TEST_F(Failures, aDeliveryOfWhichAFileIsMissingIsNoErrorButIsTold)
{
    service.addOverride("test_downloadjob2.php", {.status = 500});
    ChildProgram& program = submit();
    EXPECT_EQ(program.exitCode(), 0);
    EXPECT_THAT(text(program.standardError()),
                HasSubstr("Job 883: the list of files broke off after 0: cURL error( 22"));
}
