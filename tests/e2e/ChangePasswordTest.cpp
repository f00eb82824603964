#include "CliTest.h"

#include "support/Waiting.h"

using testing::HasSubstr;
using testing::Not;

namespace {

class ChangePassword : public CliTest
{
protected:
    ChildProgram& change(const QString& newPassword)
    {
        environment[QStringLiteral("QUILLPOST_NEW_PASSWORD")] = newPassword;
        return run({QStringLiteral("change-password")});
    }
    void expectWrongUse(const QString& newPassword, const std::string& words)
    {
        ChildProgram& program = change(newPassword);
        EXPECT_EQ(program.exitCode(), 1) << text(newPassword);
        EXPECT_THAT(text(program.standardError()), HasSubstr(words)) << text(newPassword);
        EXPECT_TRUE(service.requests().empty());
    }
    void answer(ChildProgram& program, const QString& prompt, const QByteArray& keys)
    {
        ASSERT_TRUE(Waiting::until([&] { return program.shown().endsWith(prompt); })) << text(program.shown());
        program.type(keys);
    }
};

} // namespace

TEST_F(ChangePassword, replacesItAndLogsInWithTheNewOne)
{
    service.setDemandPasswordChange(true);
    ChildProgram& program = change(QStringLiteral("fresh-1"));
    EXPECT_EQ(program.exitCode(), 0) << text(program.standardError());
    EXPECT_EQ(text(program.standardOutput()), "The password is changed.\n");
    EXPECT_EQ(service.password(), "fresh-1");
    EXPECT_EQ(text(onlyBody("CUpdate.php")), "user=demo&pass=demo1234&npass=fresh-1");
    EXPECT_EQ(text(onlyBody("cauthorize2.php")), "user=demo&pass=fresh-1");

    environment[QStringLiteral("QUILLPOST_PASSWORD")] = QStringLiteral("fresh-1");
    EXPECT_EQ(run({QStringLiteral("login")}).exitCode(), 0);
}

TEST_F(ChangePassword, sendsNoneThatIsNotAllowed)
{
    expectWrongUse(QStringLiteral("PassWord"), "Invalid Password");
    expectWrongUse(QStringLiteral("secret"), "Invalid Password");
    expectWrongUse(QStringLiteral("DEMO1234"), "Invalid Password");
    expectWrongUse(QStringLiteral("abc"), "A password has at least 4 characters.");
    EXPECT_EQ(service.password(), "demo1234");
}

TEST_F(ChangePassword, thatTheServiceRefusesGivesItsWords)
{
    service.addOverride("CUpdate.php", {.reply = "Used before"});
    ChildProgram& program = change(QStringLiteral("fresh-1"));
    EXPECT_EQ(program.exitCode(), 2);
    EXPECT_EQ(text(program.standardError()), "Used before\n");
}

TEST_F(ChangePassword, thatCannotBeSentIsAServiceError)
{
    service.addOverride("CUpdate.php", {.status = 500});
    ChildProgram& program = change(QStringLiteral("fresh-1"));
    EXPECT_EQ(program.exitCode(), 3);
    EXPECT_THAT(text(program.standardError()), HasSubstr("The password cannot be changed: cURL error( 22, "));
}

TEST_F(ChangePassword, asksTwiceOnTheTerminal)
{
    ChildProgram& program = start({QStringLiteral("change-password")}, ChildProgram::Terminal::ForAll);
    answer(program, QStringLiteral("New password: "), "fresh-2\n");
    answer(program, QStringLiteral("New password again: "), "fresh-2\n");
    waitForEnd(program);
    EXPECT_EQ(program.exitCode(), 0) << text(program.shown());
    EXPECT_EQ(service.password(), "fresh-2");
    EXPECT_THAT(text(program.shown()), Not(HasSubstr("fresh")));
}

TEST_F(ChangePassword, sendsNoneThatWasTypedDifferently)
{
    // A variable that is set to nothing is as good as none.
    environment[QStringLiteral("QUILLPOST_NEW_PASSWORD")] = QString();
    ChildProgram& program = start({QStringLiteral("change-password")}, ChildProgram::Terminal::ForAll);
    answer(program, QStringLiteral("New password: "), "fresh-2\n");
    answer(program, QStringLiteral("New password again: "), "fresh-3\n");
    waitForEnd(program);
    EXPECT_EQ(program.exitCode(), 1);
    EXPECT_THAT(text(program.shown()), HasSubstr("Passwords do not match"));
    EXPECT_TRUE(service.requests().empty());
}
