#include "CommandsTest.h"

#include "commands/AccountReplies.h"
#include "commands/ChangePasswordCommand.h"
#include "commands/LoginCommand.h"

using namespace Qt::StringLiterals;
using AccountReplies::LoginOutcome;

class AccountTest : public CommandsTest
{};

TEST_F(AccountTest, LoginSendsUserAndPasswordAsTyped)
{
    const auto login = LoginCommand::loginCommandWithUser(hosts, u"anna + co"_s, u"p&w=1%20 é"_s);
    EXPECT_EQ(bodyOf(*login, "cauthorize2.php"), "user=anna + co&pass=p&w=1%20 é");
}

TEST_F(AccountTest, AValueThatLooksLikeAPlaceToFillIsSentAsItStands)
{
    const auto login = LoginCommand::loginCommandWithUser(hosts, u"{}"_s, u"%@ %1 {0}"_s);
    EXPECT_EQ(bodyOf(*login, "cauthorize2.php"), "user={}&pass=%@ %1 {0}");
}

TEST_F(AccountTest, ChangingThePasswordSendsTheOldAndTheNewOneAsTyped)
{
    const auto change = ChangePasswordCommand::changePasswordCommandWithUser(hosts, u"ü"_s, u"o&d=1"_s, u"n+w 2"_s);
    EXPECT_EQ(bodyOf(*change, "CUpdate.php"), "user=ü&pass=o&d=1&npass=n+w 2");
}

TEST_F(AccountTest, TheServiceAnswersALoginWithTheContactID)
{
    const auto login = LoginCommand::loginCommandWithUser(hosts, u"demo"_s, u"demo1234"_s);
    run(login);
    expectOnlyEnd(RecordingObserver::Kind::Done);
    const auto reply = AccountReplies::readLogin(login->dataAsString());
    EXPECT_EQ(reply.outcome, LoginOutcome::LoggedIn);
    EXPECT_EQ(reply.text, u"4711"_s);
    EXPECT_TRUE(service.refusals().empty());
}

TEST_F(AccountTest, NoPasswordIsWrittenToTheLog)
{
    run(LoginCommand::loginCommandWithUser(hosts, u"demo"_s, u"Geheim7"_s));
    run(ChangePasswordCommand::changePasswordCommandWithUser(hosts, u"demo"_s, u"Geheim7"_s, u"Geheim8"_s));
    EXPECT_FALSE(log.contains(u"Geheim"_s));
}

struct LoginReplyCase
{
    QString reply;
    LoginOutcome outcome;
    QString text;
};

// In a list of tests.
void PrintTo(const LoginReplyCase& each, std::ostream* stream)
{
    *stream << testing::PrintToString(each.reply.toStdString());
}

class LoginReplyTest : public testing::TestWithParam<LoginReplyCase>
{};

TEST_P(LoginReplyTest, MeansWhatTheTableSays)
{
    const auto login = AccountReplies::readLogin(GetParam().reply);
    EXPECT_EQ(login.outcome, GetParam().outcome);
    EXPECT_EQ(login.text, GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Table, LoginReplyTest,
                         testing::Values(LoginReplyCase{u"OK: 12345"_s, LoginOutcome::LoggedIn, u"12345"_s},
                                         LoginReplyCase{u"ok: 12345"_s, LoginOutcome::LoggedIn, u"12345"_s},
                                         LoginReplyCase{u" OK: 12345"_s, LoginOutcome::LoggedIn, u"12345"_s},
                                         LoginReplyCase{u"\r\n\tOk: 12345"_s, LoginOutcome::LoggedIn, u"12345"_s},
                                         // Everything after the blank belongs to the contact ID, a line end too.
                                         LoginReplyCase{u"OK: 12345\n"_s, LoginOutcome::LoggedIn, u"12345\n"_s},
                                         LoginReplyCase{u"OK:  12 345"_s, LoginOutcome::LoggedIn, u" 12 345"_s},
                                         LoginReplyCase{u"OK: "_s, LoginOutcome::LoggedIn, QString()},
                                         LoginReplyCase{u"OK:12345"_s, LoginOutcome::Refused, u"OK:12345"_s},
                                         LoginReplyCase{u"NOT OK: 12345"_s, LoginOutcome::Refused, u"NOT OK: 12345"_s},
                                         LoginReplyCase{u"Change"_s, LoginOutcome::MustChangePassword, QString()},
                                         LoginReplyCase{u"Change\n"_s, LoginOutcome::Refused, u"Change\n"_s},
                                         LoginReplyCase{u"change"_s, LoginOutcome::Refused, u"change"_s},
                                         LoginReplyCase{u" Change"_s, LoginOutcome::Refused, u" Change"_s},
                                         LoginReplyCase{QString(), LoginOutcome::Refused, QString()},
                                         LoginReplyCase{u" No such user \n"_s, LoginOutcome::Refused,
                                                        u" No such user \n"_s}));

TEST(ChangePasswordReplyTest, OnlyTheExactReplyIsAnAcceptance)
{
    EXPECT_TRUE(AccountReplies::isPasswordChanged(u"CP"_s));
    for (const QString& reply : {u"CP\n"_s, u"cp"_s, u" CP"_s, u"CP "_s, QString(), u"CPU"_s})
        EXPECT_FALSE(AccountReplies::isPasswordChanged(reply)) << qPrintable(reply);
}

TEST(NewPasswordTest, TheConfirmationMustBeTheSameToTheLetter)
{
    EXPECT_EQ(AccountReplies::refusalOfNewPassword(u"Sesame1"_s, u"sesame1"_s, u"old"_s), u"Passwords do not match"_s);
    // The mismatch is told first, also of a word that would be refused.
    EXPECT_EQ(AccountReplies::refusalOfNewPassword(u"secret"_s, u"Secret"_s, u"old"_s), u"Passwords do not match"_s);
    EXPECT_EQ(AccountReplies::refusalOfNewPassword(u"Sesame1"_s, u"Sesame1"_s, u"old"_s), std::nullopt);
}

TEST(NewPasswordTest, CommonWordsAndTheOldPasswordAreRefusedInAnyLetterCase)
{
    for (const QString& word : {u"password"_s, u"PASSWORD"_s, u"PassWord"_s, u"secret"_s, u"SECRET"_s, u"sEcret"_s,
                                u"Älter1"_s, u"ÄLTER1"_s, u"älter1"_s})
        EXPECT_EQ(AccountReplies::refusalOfNewPassword(word, word, u"Älter1"_s), u"Invalid Password"_s)
            << qPrintable(word);
}

TEST(NewPasswordTest, TheOldPasswordIsRefusedHoweverItsAccentsAreComposed)
{
    const QString composed = u"\u00c4lter1"_s;
    const QString decomposed = u"A\u0308lter1"_s;
    EXPECT_EQ(AccountReplies::refusalOfNewPassword(decomposed, decomposed, composed), u"Invalid Password"_s);
}

TEST(NewPasswordTest, AnotherWordIsAccepted)
{
    for (const QString& word : {u"password1"_s, u"secrets"_s, u"sécret"_s, u"alter1"_s, u"Älter"_s})
        EXPECT_EQ(AccountReplies::refusalOfNewPassword(word, word, u"Älter1"_s), std::nullopt) << qPrintable(word);
}
