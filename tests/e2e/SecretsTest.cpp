#include "CliTest.h"
#include "Display.h"
#include "SecretWatch.h"

#include "support/Waiting.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QUrl>

#include <csignal>
#include <sys/stat.h>

using testing::Contains;
using testing::Field;
using testing::HasSubstr;
using testing::Not;

namespace {

// Runs with everything verbose, in which a password is looked for wherever it could be read. The service answers with
// what it was sent, the worst that it can do.
class SecretsOfARun : public CliTest
{
protected:
    const QString password = QStringLiteral("é=Xk7Qw2Rt9Lm4&%2F +\"q\\<'");
    const QString newPassword = QStringLiteral("Bv3Nz8Hs6Tc1/?#ü%");

    SecretsOfARun()
    {
        service.setPassword(text(password));
        environment[QStringLiteral("QUILLPOST_PASSWORD")] = password;
        // What programs leave in the folder for temporary files is looked through too.
        environment[QStringLiteral("TMPDIR")] = path(QStringLiteral("tmp"));
        QDir().mkpath(path(QStringLiteral("tmp")));
    }

    // The body of a request as it came.
    [[nodiscard]] std::string echo() const
    {
        return "Bad request: user=demo&pass=" + text(password) +
               "&x=" + QUrl::toPercentEncoding(password).toStdString() +
               "&y=" + QUrl::toPercentEncoding(password, "!$&'()*+,/:;=?@").toStdString() + " " +
               password.toUtf8().toBase64().toStdString() + " {\"pass\":\"" +
               text(QString(password).replace(u'\\', QStringLiteral("\\\\")).replace(u'"', QStringLiteral("\\\""))) +
               "\"} SendLogs ";
    }

    ChildProgram& runVerbosely(const QStringList& arguments, bool json = false)
    {
        QStringList all{QStringLiteral("--verbose")};
        if (json)
            all << QStringLiteral("--json");
        ChildProgram& program = start(all + arguments);
        watch.follow(program.processId());
        waitForEnd(program);
        EXPECT_EQ(watch.found(text(program.standardOutput())), "") << text(program.standardOutput());
        EXPECT_EQ(watch.found(text(program.standardError())), "") << text(program.standardError());
        return program;
    }
    ChildProgram& submitVerbosely(const QString& recordingName, bool json = false)
    {
        return runVerbosely(order({recording(recordingName)}), json);
    }

    void expectNoTrace()
    {
        for (const auto& log : service.logs())
            EXPECT_EQ(watch.found(log.content), "") << log.name;
        EXPECT_EQ(watch.end(), std::vector<std::string>());
    }

    SecretWatch watch{path(QString()), {password, newPassword}};
};

// Runs after which the modes of all files below the home are looked at.
class ModesOfARun : public CliTest
{
protected:
    ~ModesOfARun() override { ::umask(m_oldMask); }

    // From here on files are made as with this mask.
    void setMask(mode_t mask) { ::umask(mask); }

    [[nodiscard]] static unsigned modeOf(const QString& file)
    {
        struct stat facts = {};
        return ::lstat(QFile::encodeName(file).constData(), &facts) == 0 ? facts.st_mode & 0777U : 0;
    }
    [[nodiscard]] QStringList openToOthers() const
    {
        QStringList open;
        int seen = 0;
        QDirIterator each(path(QString()), QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                          QDirIterator::Subdirectories);
        while (each.hasNext()) {
            const QString file = each.next();
            const QString name = QDir(path(QString())).relativeFilePath(file);
            // Tests' own, delivered, and what the system's libraries keep for themselves (of fonts).
            static const QStringList others{QStringLiteral("files"), QStringLiteral("delivered"),
                                            QStringLiteral("Quillpost"), QStringLiteral(".cache")};
            if (others.contains(name.section(u'/', 0, 0)))
                continue;
            ++seen;
            if (const unsigned mode = modeOf(file); (mode & 0077U) != 0)
                open << name + u' ' + QString::number(mode, 8);
        }
        EXPECT_GE(seen, 5) << "There is nothing to look at.";
        return open;
    }

    void leaveAJobWithItsFiles()
    {
        service.addOverride("test_custupload2.php", {.status = 500});
        EXPECT_EQ(run(order({recording(QStringLiteral("a.wav"))})).exitCode(), 3);
        service.clearOverrides();
        EXPECT_TRUE(QFile::exists(stateFile()));
        EXPECT_TRUE(QFile::exists(path(QStringLiteral("temp/883/a.wav.mp3"))));
        EXPECT_TRUE(QFile::exists(path(QStringLiteral(".config/Quillpost/Quillpost.ini"))));
        EXPECT_TRUE(QFile::exists(path(QStringLiteral(".local/state/Quillpost"))));
    }

private:
    const mode_t m_oldMask = ::umask(0022);
};

} // namespace

TEST_F(SecretsOfARun, areNowhereAfterAJobThatIsCompleted)
{
    service.setSendLogs();
    EXPECT_EQ(submitVerbosely(QStringLiteral("a.wav")).exitCode(), 0);
    EXPECT_EQ(runVerbosely({QStringLiteral("jobs")}, /*json=*/true).exitCode(), 0);
    EXPECT_GE(service.logs().size(), 1U);
    expectNoTrace();
}

TEST_F(SecretsOfARun, areNowhereWhenTheServiceAnswersEachRequestOfAnOrderWithThem)
{
    for (const char* const endpoint : {"get_rates2.php", "jobdetails.php", "add_segment.php", "set_media_format.php",
                                       "test_custupload2.php", "miscstuff.php"}) {
        service.addOverride(endpoint, {.reply = echo(), .times = 1});
        submitVerbosely(QString::fromLatin1(endpoint) + QStringLiteral(".wav"), /*json=*/true);
        service.clearOverrides();
    }
    ASSERT_GE(service.logs().size(), 1U);
    EXPECT_THAT(service.logs(), Contains(Field(&DemoService::UploadedLog::content, HasSubstr("pass=***"))))
        << "The reply is in the log, without the password.";
    expectNoTrace();
}

TEST_F(SecretsOfARun, areNowhereWhenTheServiceAnswersThePollsAndTheLogWithThem)
{
    service.addOverride("checkstatus.php", {.reply = echo(), .times = 2});
    service.addOverride("get_instructions.php", {.reply = echo(), .times = 2});
    service.addOverride("qpt_debug_upload.php", {.reply = echo(), .times = 1});
    EXPECT_EQ(submitVerbosely(QStringLiteral("a.wav")).exitCode(), 0);
    EXPECT_GE(service.count("qpt_debug_upload.php"), 1) << "The service asked for the log.";
    expectNoTrace();
}

TEST_F(SecretsOfARun, areNowhereWhenTransfersFail)
{
    for (const char* const endpoint : {"cauthorize2.php", "jobdetails.php", "test_custupload2.php"}) {
        service.addOverride(endpoint, {.status = 500, .reply = echo()});
        EXPECT_EQ(submitVerbosely(QStringLiteral("a.wav")).exitCode(), 3) << endpoint;
        service.clearOverrides();
    }
    service.addOverride("test_custupload2.php", {.status = 500, .reply = echo()});
    EXPECT_EQ(runVerbosely({QStringLiteral("retry")}).exitCode(), 3);
    service.clearOverrides();
    EXPECT_EQ(runVerbosely({QStringLiteral("resume")}).exitCode(), 0);
    expectNoTrace();
}

TEST_F(SecretsOfARun, areNowhereWhenARequestIsSentElsewhere)
{
    const std::string elsewhere = service.secureHost() + "/saltine/checkstatus.php";
    service.addOverride("jobdetails.php", {.status = 307, .location = elsewhere, .times = 1});
    submitVerbosely(QStringLiteral("a.wav"));
    service.addOverride(
        "jobdetails.php",
        {.location = service.secureHost() + "/" + QUrl::toPercentEncoding(password).toStdString(), .times = 1});
    submitVerbosely(QStringLiteral("b.wav"), /*json=*/true);
    expectNoTrace();
}

TEST_F(SecretsOfARun, areNowhereWhenNobodyAnswers)
{
    const QString nobody = QStringLiteral("https://127.0.0.1:1");
    ChildProgram& program = startBare({QStringLiteral("--verbose"), QStringLiteral("--secure-host"), nobody,
                                       QStringLiteral("--file-host"), QString::fromStdString(service.fileHost()),
                                       QStringLiteral("--user"), QStringLiteral("demo"), QStringLiteral("login")});
    watch.follow(program.processId());
    waitForEnd(program);
    EXPECT_EQ(program.exitCode(), 3);
    EXPECT_EQ(watch.found(text(program.standardError())), "") << text(program.standardError());
    expectNoTrace();
}

TEST_F(SecretsOfARun, areNowhereWhenTheyAreWrong)
{
    service.setPassword("another");
    service.addOverride("cauthorize2.php", {.reply = echo(), .times = 2});
    for (const bool json : {false, true, false})
        EXPECT_EQ(runVerbosely({QStringLiteral("login")}, json).exitCode(), 2);
    expectNoTrace();
}

TEST_F(SecretsOfARun, areNowhereWhenTheyAreChanged)
{
    environment[QStringLiteral("QUILLPOST_NEW_PASSWORD")] = newPassword;
    service.addOverride("CUpdate.php", {.reply = echo() + text(newPassword), .times = 1});
    EXPECT_EQ(runVerbosely({QStringLiteral("change-password")}, /*json=*/true).exitCode(), 2);
    service.addOverride("cauthorize2.php", {.reply = text(newPassword), .times = 1}); // to the login with it
    EXPECT_EQ(runVerbosely({QStringLiteral("change-password")}).exitCode(), 2);
    EXPECT_EQ(service.password(), text(newPassword));
    expectNoTrace();
}

TEST_F(SecretsOfARun, areOutOfTheEnvironmentBeforeAnythingIsSent)
{
    service.addOverride("cauthorize2.php", {.hang = true});
    ChildProgram& program = start({QStringLiteral("login")});
    ASSERT_TRUE(Waiting::until([&] { return service.hanging() == 1; }));
    QFile shown(QStringLiteral("/proc/%1/environ").arg(program.processId()));
    // A build for users lets nobody but the administrator look.
    if (shown.open(QIODevice::ReadOnly)) {
        const std::string variables = shown.readAll().toStdString();
        EXPECT_THAT(variables, HasSubstr("HOME="));
        EXPECT_EQ(watch.found(variables), "");
    }
    program.signal(SIGTERM);
    waitForEnd(program);
}

TEST_F(SecretsOfARun, areNowhereWhenTheDesktopProgramHasThem)
{
    // A job whose upload failed is left for the desktop program, in its own folders.
    const QString typed = QStringLiteral("Xk7Qw2Rt9Lm4&=%2F+");
    service.setPassword(text(typed));
    environment[QStringLiteral("QUILLPOST_PASSWORD")] = typed;
    service.addOverride("test_custupload2.php", {.status = 500, .times = 1});
    const QStringList hosts{QStringLiteral("--secure-host"),   QString::fromStdString(service.secureHost()),
                            QStringLiteral("--file-host"),     QString::fromStdString(service.fileHost()),
                            QStringLiteral("--poll-interval"), QStringLiteral("0.2")};
    ChildProgram& left = runBare(hosts + QStringList{QStringLiteral("--user"), QStringLiteral("demo")} +
                                 order({recording(QStringLiteral("a.wav"))}));
    ASSERT_EQ(left.exitCode(), 3) << text(left.standardError());
    watch.follow(left.processId());

    const std::string typedEcho = "user=demo&pass=" + text(typed) + " SendLogs";
    service.addOverride("cauthorize2.php", {.reply = typedEcho, .times = 1});
    service.addOverride("get_instructions.php", {.reply = typedEcho, .times = 2});
    service.addOverride("checkstatus.php", {.status = 500, .reply = typedEcho, .times = 1});
    service.addOverride("test_custupload2.php", {.reply = typedEcho, .times = 1});
    service.setTurnaround(std::chrono::milliseconds(1));

    Display display;
    environment[QStringLiteral("DISPLAY")] = display.name();
    ChildProgram program{QStringLiteral(DESKTOP_PROGRAM)};
    program.start(hosts, environment); // with the variable, as from a shell that exports it
    watch.follow(program.processId());
    const auto login = display.waitForWindow(QStringLiteral("Log In"));
    ASSERT_TRUE(login) << text(program.standardError());
    display.focus(*login);
    display.type(QStringLiteral("demo"));
    display.press(QStringLiteral("Tab"));
    display.type(typed);
    display.press(QStringLiteral("Return"));
    ASSERT_TRUE(Waiting::until([&] { return service.count("cauthorize2.php") >= 2; }));
    display.press(QStringLiteral("Return")); // again, after the refusal
    ASSERT_TRUE(display.waitForWindow(QStringLiteral("^Quillpost - demo"))) << text(program.standardError());
    ASSERT_TRUE(Waiting::until([&] { return service.logs().size() >= 3U; })) << text(program.standardError());
    program.signal(SIGTERM);
    ASSERT_TRUE(program.waitForEnd()) << text(program.standardError());
    EXPECT_EQ(watch.found(text(program.standardError())), "") << text(program.standardError());
    EXPECT_THAT(service.logs(), Contains(Field(&DemoService::UploadedLog::content, HasSubstr("pass=***"))));
    expectNoTrace();
}

TEST_F(ModesOfARun, keepAUsersFilesFromOthersUnderTheUsualMask)
{
    setMask(0022);
    leaveAJobWithItsFiles();
    EXPECT_EQ(openToOthers(), QStringList());
}

TEST_F(ModesOfARun, keepAUsersFilesFromOthersWithoutAMask)
{
    setMask(0);
    leaveAJobWithItsFiles();
    EXPECT_EQ(openToOthers(), QStringList());
    EXPECT_EQ(run({QStringLiteral("resume")}).exitCode(), 0);
    EXPECT_EQ(openToOthers(), QStringList());
}

TEST_F(ModesOfARun, keepAUsersFilesFromOthersWhileTheyAreInUse)
{
    setMask(0);
    service.addOverride("test_custupload2.php", {.hang = true});
    ChildProgram& program = start(order({recording(QStringLiteral("a.wav"))}));
    ASSERT_TRUE(Waiting::until([this] { return service.hanging() == 1; }));
    EXPECT_EQ(openToOthers(), QStringList());
    program.signal(SIGTERM);
    waitForEnd(program);
    EXPECT_EQ(openToOthers(), QStringList());
}

TEST_F(ModesOfARun, giveDeliveredFilesTheModesThatTheMaskOfTheUserGives)
{
    setMask(0027);
    EXPECT_EQ(run(order({recording(QStringLiteral("a.wav"))})).exitCode(), 0);
    EXPECT_EQ(modeOf(deliveryFolder()), 0750U);
    const QStringList files = deliveredFiles();
    ASSERT_FALSE(files.isEmpty());
    for (const QString& file : files)
        EXPECT_EQ(modeOf(deliveryFolder() + u'/' + file), 0640U) << text(file);
}

TEST_F(ModesOfARun, keepTheDesktopProgramsFilesFromOthers)
{
    setMask(0);
    Display display;
    environment[QStringLiteral("DISPLAY")] = display.name();
    ChildProgram program{QStringLiteral(DESKTOP_PROGRAM)};
    program.start({QStringLiteral("--secure-host"), QString::fromStdString(service.secureHost()),
                   QStringLiteral("--file-host"), QString::fromStdString(service.fileHost())},
                  environment);
    const auto login = display.waitForWindow(QStringLiteral("Log In"));
    ASSERT_TRUE(login) << text(program.standardError());
    display.focus(*login);
    display.type(QStringLiteral("demo"));
    display.press(QStringLiteral("Tab"));
    display.type(QStringLiteral("demo1234"));
    display.press(QStringLiteral("Return"));
    ASSERT_TRUE(display.waitForWindow(QStringLiteral("^Quillpost - demo"))) << text(program.standardError());
    program.signal(SIGTERM);
    ASSERT_TRUE(program.waitForEnd());
    EXPECT_EQ(openToOthers(), QStringList());
}
