#include "CliTest.h"

#include "support/GeneratedMedia.h"
#include "support/ScriptedFfmpeg.h"
#include "support/Waiting.h"

#include <QDirIterator>
#include <QFile>

#include <csignal>

using testing::HasSubstr;
using testing::Not;

namespace {

class Password : public CliTest
{
protected:
    const QByteArray rarePassword = "rare=Word&77";

    void setRarePassword()
    {
        service.setPassword(rarePassword.toStdString());
        environment[QStringLiteral("QUILLPOST_PASSWORD")] = QString::fromUtf8(rarePassword);
    }

    // The files below the home that hold the password.
    [[nodiscard]] QStringList filesWithPassword() const
    {
        QStringList found;
        QDirIterator each(path(QString()), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (each.hasNext()) {
            if (readFile(each.next()).contains(rarePassword))
                found << each.filePath();
        }
        return found;
    }

    ChildProgram& startAsking()
    {
        environment.remove(QStringLiteral("QUILLPOST_PASSWORD"));
        ChildProgram& program = start({QStringLiteral("login")}, ChildProgram::Terminal::ForQuestions);
        EXPECT_TRUE(Waiting::until([&] { return program.shown().contains(QStringLiteral("Password of demo: ")); }))
            << text(program.shown());
        return program;
    }
};

} // namespace

TEST_F(Password, isNowhereButOnTheWire)
{
    setRarePassword();
    // An upload that is refused leaves a saved job and a log full of replies.
    service.addOverride("test_custupload2.php", {.reply = "DISK FULL"});
    ChildProgram& program = run(order({recording(QStringLiteral("a.wav"))}) + QStringList{QStringLiteral("--verbose")});
    EXPECT_EQ(program.exitCode(), 3);
    EXPECT_TRUE(QFile::exists(stateFile()));
    EXPECT_GE(service.logs().size(), 1U);
    for (const auto& log : service.logs())
        EXPECT_THAT(log.content, Not(HasSubstr(rarePassword.toStdString())));
    EXPECT_EQ(filesWithPassword(), QStringList());
    EXPECT_THAT(text(program.standardOutput()), Not(HasSubstr(rarePassword.toStdString())));
    EXPECT_THAT(text(program.standardError()), HasSubstr("SubmitJobDetails command response"))
        << "The log is copied to standard error.";
    EXPECT_THAT(text(program.standardError()), Not(HasSubstr(rarePassword.toStdString())));
}

TEST_F(Password, isNotHandedToTheProgramsThatAreStarted)
{
    ScriptedFfmpeg ffmpeg;
    ffmpeg.shell("env > \"$folder/environment\"; exec " + GeneratedMedia::ffmpegPath().toUtf8() + " \"$@\"");
    const QString file = recording(QStringLiteral("a.wav"));
    setRarePassword();
    environment[QStringLiteral("PATH")].prepend(ffmpeg.file(QString()) + u':');
    EXPECT_EQ(run(order({file})).exitCode(), 0);
    EXPECT_THAT(readFile(ffmpeg.file(QStringLiteral("environment"))).toStdString(),
                Not(HasSubstr(rarePassword.toStdString())));
}

TEST_F(Password, isAskedOnTheTerminalWithoutEcho)
{
    ChildProgram& program = startAsking();
    EXPECT_FALSE(program.isEchoing());
    program.type("demo1234\n");
    waitForEnd(program);
    EXPECT_EQ(program.exitCode(), 0);
    EXPECT_EQ(text(program.standardOutput()), "4711\n");
    EXPECT_THAT(text(program.shown()), Not(HasSubstr("demo1234")));
    EXPECT_TRUE(program.isEchoing());
}

TEST_F(Password, thatIsEmptyOnTheTerminalIsNone)
{
    ChildProgram& program = startAsking();
    program.type("\n");
    waitForEnd(program);
    EXPECT_EQ(program.exitCode(), 1);
    EXPECT_TRUE(service.requests().empty());
}

TEST_F(Password, questionIsLeftByCtrlC)
{
    ChildProgram& program = startAsking();
    program.type("\x03");
    waitForEnd(program);
    EXPECT_EQ(program.exitCode(), 130);
    EXPECT_TRUE(program.isEchoing());
    EXPECT_THAT(text(program.shown()), Not(HasSubstr("No password")));
    EXPECT_TRUE(service.requests().empty());
}

TEST_F(Password, questionIsLeftByTermination)
{
    ChildProgram& program = startAsking();
    program.signal(SIGTERM);
    waitForEnd(program);
    EXPECT_EQ(program.exitCode(), 130);
    EXPECT_TRUE(program.isEchoing());
}

TEST_F(Password, thatIsNowhereToBeHadIsWrongUse)
{
    environment.remove(QStringLiteral("QUILLPOST_PASSWORD"));
    ChildProgram& program = run({QStringLiteral("login")});
    EXPECT_EQ(program.exitCode(), 1);
    EXPECT_THAT(text(program.standardError()), HasSubstr("QUILLPOST_PASSWORD"));
    EXPECT_TRUE(service.requests().empty());
}

TEST_F(Password, isNoOption)
{
    ChildProgram& program = run({QStringLiteral("login"), QStringLiteral("--password"), QStringLiteral("demo1234")});
    EXPECT_EQ(program.exitCode(), 1);
    EXPECT_TRUE(service.requests().empty());
}
