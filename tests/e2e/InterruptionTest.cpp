#include "CliTest.h"

#include "support/GeneratedMedia.h"
#include "support/ScriptedFfmpeg.h"
#include "support/Waiting.h"

#include <QFile>

#include <csignal>

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

// What hangs never holds up the end by more than a second; the rest of the limit is for a busy machine.
constexpr std::chrono::seconds longestEnd{6};

class Interruption : public CliTest
{
protected:
    // Sends the signal, and expects an orderly end without delay.
    void interrupt(ChildProgram& program, int signal = SIGINT)
    {
        program.signal(signal);
        ASSERT_TRUE(program.waitForEnd(longestEnd)) << "It did not end.";
        EXPECT_EQ(program.exitCode(), 130);
        EXPECT_THAT(text(program.standardError()), HasSubstr("resume"));
        EXPECT_TRUE(QFile::exists(stateFile()));
    }

    // Resumes, and expects that the service then has all of the job.
    void resumeToTheEnd(std::size_t segments)
    {
        service.clearOverrides();
        ChildProgram& program = run({QStringLiteral("resume")});
        EXPECT_EQ(program.exitCode(), 0) << text(program.standardError());
        ASSERT_EQ(service.jobs().size(), 1U) << "The job is not ordered twice.";
        const DemoService::Job job = service.jobs().front();
        EXPECT_TRUE(job.delivered);
        EXPECT_TRUE(job.transcript.has_value());
        ASSERT_EQ(job.segments.size(), segments);
        for (const auto& segment : job.segments)
            EXPECT_TRUE(segment.announced && segment.uploaded) << segment.number;
        EXPECT_THAT(text(program.standardOutput()), HasSubstr("Job 883 is completed"));
        EXPECT_TRUE(
            deliveredFiles().contains(QStringLiteral("Doe_030426_883/Universal_ASCII/Doe-Jane-2026-03-04.txt")));
        EXPECT_THAT(service.refusals(), ElementsAre());
    }

    // ffmpeg reads recordings as ever, but its conversions hang, and do not mind being asked to end.
    void makeConversionsHang(ScriptedFfmpeg& ffmpeg)
    {
        ffmpeg.whenProbing().shell("exec " + GeneratedMedia::ffmpegPath().toUtf8() + " \"$@\"");
        ffmpeg.whenConverting().ignoresRequestsToEnd().waitsForRelease(QStringLiteral("conversion"));
        m_path = environment[QStringLiteral("PATH")];
        environment[QStringLiteral("PATH")] = ffmpeg.file(QString()) + u':' + m_path;
    }
    void makeConversionsWork() { environment[QStringLiteral("PATH")] = m_path; }

private:
    QString m_path;
};

} // namespace

TEST_F(Interruption, whileConvertingEndsTheConverters)
{
    ScriptedFfmpeg ffmpeg;
    makeConversionsHang(ffmpeg);
    ChildProgram& program = start(QStringList{QStringLiteral("--max-ffmpeg"), QStringLiteral("2")} +
                                  order({recording(QStringLiteral("a.wav")), recording(QStringLiteral("b.wav"))}));
    ASSERT_TRUE(Waiting::until([&] { return ffmpeg.runs().size() == 4 && ffmpeg.runningCount() == 2; }));
    interrupt(program);
    EXPECT_EQ(ffmpeg.runningCount(), 0);
    makeConversionsWork();
    resumeToTheEnd(2);
}

TEST_F(Interruption, byTerminationWhileReadingRecordings)
{
    ScriptedFfmpeg ffmpeg;
    ffmpeg.hangs();
    const QString file = recording(QStringLiteral("a.wav"));
    const QString path = environment[QStringLiteral("PATH")];
    environment[QStringLiteral("PATH")] = ffmpeg.file(QString()) + u':' + path;
    ChildProgram& program = start(order({file}));
    ASSERT_TRUE(Waiting::until([&] { return ffmpeg.runningCount() == 1; }));
    interrupt(program, SIGTERM);
    EXPECT_EQ(ffmpeg.runningCount(), 0);
    environment[QStringLiteral("PATH")] = path;
    resumeToTheEnd(1);
}

TEST_F(Interruption, whileAnUploadHangs)
{
    service.addOverride("test_custupload2.php", {.hang = true});
    ChildProgram& program = start(order({recording(QStringLiteral("a.wav"))}));
    ASSERT_TRUE(Waiting::until([&] { return service.hanging() == 1; }));
    interrupt(program);
    resumeToTheEnd(1);
}

TEST_F(Interruption, whileTheTranscriptsUploadHangs)
{
    service.addOverride("test_custupload2.php", {.delay = std::chrono::milliseconds(1), .times = 1});
    service.addOverride("test_custupload2.php", {.hang = true});
    ChildProgram& program = start(order({recording(QStringLiteral("a.wav"))}));
    ASSERT_TRUE(Waiting::until([&] { return service.hanging() == 1; }));
    interrupt(program, SIGTERM);
    resumeToTheEnd(1);
    EXPECT_EQ(service.job(883)->segments.front().uploads, 1) << "What the service has is not sent again.";
}

TEST_F(Interruption, whileTheServiceWorks)
{
    service.setTurnaround(std::chrono::minutes(10));
    ChildProgram& program = start(order({recording(QStringLiteral("a.wav"))}));
    ASSERT_TRUE(Waiting::until([&] { return program.standardOutput().contains(QStringLiteral("In Process")); }));
    interrupt(program);
    ASSERT_TRUE(service.holdWord(883, "Joined"));
    service.setTurnaround(std::chrono::milliseconds(0));
    resumeToTheEnd(1);
    EXPECT_EQ(service.job(883)->segments.front().uploads, 1);
}

TEST_F(Interruption, whileResultsAreDownloaded)
{
    service.addOverride("test_downloadjob2.php", {.hang = true});
    ChildProgram& program = start(order({recording(QStringLiteral("a.wav"))}));
    ASSERT_TRUE(Waiting::until([&] { return service.hanging() == 1; }));
    interrupt(program);
    resumeToTheEnd(1);
}

TEST_F(Interruption, whileTheLoginHangsEndsTheRunToo)
{
    service.addOverride("cauthorize2.php", {.hang = true});
    ChildProgram& program = start({QStringLiteral("login")});
    ASSERT_TRUE(Waiting::until([&] { return service.hanging() == 1; }));
    program.signal(SIGINT);
    ASSERT_TRUE(program.waitForEnd(longestEnd));
    EXPECT_EQ(program.exitCode(), 130);
}

TEST_F(Interruption, whileInspectingEndsTheChild)
{
    ScriptedFfmpeg ffmpeg;
    ffmpeg.ignoresRequestsToEnd().waitsForRelease(QStringLiteral("reading"));
    environment[QStringLiteral("PATH")].prepend(ffmpeg.file(QString()) + u':');
    ChildProgram& program = startBare({QStringLiteral("inspect"), recording(QStringLiteral("a.wav"))});
    ASSERT_TRUE(Waiting::until([&] { return ffmpeg.runningCount() == 1; }));
    program.signal(SIGINT);
    ASSERT_TRUE(program.waitForEnd(longestEnd));
    EXPECT_EQ(program.exitCode(), 130);
    EXPECT_EQ(ffmpeg.runningCount(), 0);
}
