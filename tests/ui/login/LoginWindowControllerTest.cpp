#include "ui/login/LoginWindowController.h"

#include "ui-support/RecordingApplication.h"

#include "commands/ChangePasswordCommand.h"
#include "commands/LoginCommand.h"
#include "foundation/Assertion.h"
#include "support/RecordedLog.h"
#include "support/TemporaryHome.h"

#include <QSignalSpy>

using namespace Qt::StringLiterals;

namespace {

// A controller without a service: what it posts stays in the queue, and the test answers.
class LoginControllerTest : public TemporaryHome
{
protected:
    [[nodiscard]] std::shared_ptr<CUrlCommand> posted()
    {
        return application.curlCommandProcessor().getCommandFromQueue();
    }
    // The password change is demanded, and these were typed.
    void typeNewPassword(const QString& old, const QString& first, const QString& second)
    {
        controller.setUsername(u"anna"_s);
        controller.setPassword(old);
        controller.performLogin();
        controller.processLoginResponse(u"Change"_s);
        (void)posted();
        controller.setTheNewPassword(first);
        controller.setTheNewPasswordConfirm(second);
    }

    RecordedLog log;
    RecordingApplication application;
    LoginWindowController controller{application};
};

// --- Validation ---

TEST_F(LoginControllerTest, BeginsEmptyAndInLoginMode)
{
    EXPECT_EQ(controller.viewState(), 0);
    EXPECT_TRUE(controller.isLoginViewVisible());
    EXPECT_FALSE(controller.isChangeViewVisible());
    EXPECT_FALSE(controller.isLoginButtonEnabled());
    EXPECT_FALSE(controller.isChangeButtonEnabled());
    EXPECT_FALSE(controller.waitingForResponse());
    EXPECT_TRUE(controller.messageText().isEmpty());
    EXPECT_FALSE(controller.isTroubleShown());
}

TEST_F(LoginControllerTest, APasswordOfThreeCharactersIsTooShortAndOneOfFourIsNot)
{
    controller.setUsername(u"a"_s);
    controller.setPassword(u"abc"_s);
    EXPECT_FALSE(controller.isLoginButtonEnabled());
    controller.setPassword(u"abcd"_s);
    EXPECT_TRUE(controller.isLoginButtonEnabled());
    EXPECT_FALSE(LoginWindowController::isValidPassword(u"äöü"_s));
    EXPECT_TRUE(LoginWindowController::isValidPassword(u"    "_s));
}

TEST_F(LoginControllerTest, AUserNameIsNeeded)
{
    controller.setPassword(u"abcd"_s);
    EXPECT_FALSE(controller.isLoginButtonEnabled());
    controller.setUsername(u" "_s);
    EXPECT_TRUE(controller.isLoginButtonEnabled());
    controller.setUsername(QString());
    EXPECT_FALSE(controller.isLoginButtonEnabled());
}

TEST_F(LoginControllerTest, ANewPasswordNeedsFourCharactersTwice)
{
    controller.setTheNewPassword(u"abcd"_s);
    EXPECT_FALSE(controller.isChangeButtonEnabled());
    controller.setTheNewPasswordConfirm(u"abc"_s);
    EXPECT_FALSE(controller.isChangeButtonEnabled());
    // That they differ is told when the button is pressed.
    controller.setTheNewPasswordConfirm(u"wxyz"_s);
    EXPECT_TRUE(controller.isChangeButtonEnabled());
    controller.setTheNewPassword(u"abc"_s);
    EXPECT_FALSE(controller.isChangeButtonEnabled());
    EXPECT_TRUE(controller.newPasswordHint().contains(u"at least 4 characters"_s));
}

TEST_F(LoginControllerTest, TheButtonsFollowEveryChangeOfTheirFields)
{
    QSignalSpy login(&controller, &LoginWindowController::isLoginButtonEnabledChanged);
    QSignalSpy change(&controller, &LoginWindowController::isChangeButtonEnabledChanged);
    controller.setUsername(u"a"_s);
    controller.setPassword(u"abcd"_s);
    EXPECT_EQ(login.count(), 2);
    EXPECT_EQ(change.count(), 0);
    controller.setTheNewPassword(u"abcd"_s);
    controller.setTheNewPasswordConfirm(u"abcd"_s);
    EXPECT_EQ(change.count(), 2);
    EXPECT_EQ(login.count(), 2);
}

// --- Login ---

TEST_F(LoginControllerTest, LoggingInPostsTheCommandAndWaits)
{
    controller.setUsername(u"anna"_s);
    controller.setPassword(u"secret1"_s);
    controller.performLogin();
    EXPECT_TRUE(controller.waitingForResponse());
    EXPECT_FALSE(controller.areControlsEnabled());
    EXPECT_EQ(controller.messageText(), u"Logging in…"_s);
    const auto command = posted();
    ASSERT_NE(std::dynamic_pointer_cast<LoginCommand>(command), nullptr);
    EXPECT_EQ(command->observer(), &controller);
}

TEST_F(LoginControllerTest, NothingIsSentTwiceWhileARequestIsOut)
{
    controller.setTheNewPassword(u"Sesame1"_s);
    controller.setTheNewPasswordConfirm(u"Sesame1"_s);
    controller.performLogin();
    controller.performLogin();
    controller.changePassword();
    EXPECT_NE(posted(), nullptr);
    EXPECT_EQ(posted(), nullptr);
    controller.processLoginResponse(u"Wrong"_s);
    controller.performLogin();
    EXPECT_NE(posted(), nullptr);
}

TEST_F(LoginControllerTest, TheReplyOKLogsInWithTheContactID)
{
    controller.setUsername(u"anna"_s);
    controller.setPassword(u"hidden77"_s);
    controller.performLogin();
    controller.processLoginResponse(u"OK: 12345"_s);
    ASSERT_EQ(application.logins.size(), 1);
    EXPECT_EQ(application.logins[0].name, u"anna"_s);
    EXPECT_EQ(application.logins[0].password, u"hidden77"_s);
    EXPECT_EQ(application.logins[0].contactID, u"12345"_s);
    EXPECT_FALSE(controller.waitingForResponse());
    EXPECT_TRUE(log.contains(u"User anna logged in succesfully. Contact ID = 12345"_s));
    EXPECT_FALSE(log.contains(u"hidden77"_s));
}

TEST_F(LoginControllerTest, TheContactIDIsWhatFollowsAsItStands)
{
    controller.processLoginResponse(u"\r\n OK: 12345 \n"_s);
    ASSERT_EQ(application.logins.size(), 1);
    EXPECT_EQ(application.logins[0].contactID, u"12345 \n"_s);
}

TEST_F(LoginControllerTest, AnyOtherReplyIsShownInTheServicesWords)
{
    for (const QString& reply : {u"Invalid user name or password"_s, u"Change "_s, u"change"_s, u"CP"_s, u"OK:12345"_s,
                                 u"<b>No</b>\n\nplease call"_s}) {
        controller.performLogin();
        controller.processLoginResponse(reply);
        EXPECT_EQ(controller.loginResultString(), reply);
        EXPECT_EQ(controller.messageText(), reply);
        EXPECT_TRUE(controller.isTroubleShown());
        EXPECT_EQ(controller.viewState(), 0);
        EXPECT_FALSE(controller.waitingForResponse());
    }
    EXPECT_TRUE(application.logins.isEmpty());
    EXPECT_TRUE(application.presented.isEmpty()); // a refusal is no error
}

TEST_F(LoginControllerTest, AnEarlierRefusalIsNotShownAgainWhenTheNextRequestSucceeds)
{
    controller.performLogin();
    controller.processLoginResponse(u"Invalid user name or password"_s);
    controller.performLogin();
    QStringList shown;
    QObject::connect(&controller, &LoginWindowController::messageChanged, &controller,
                     [&] { shown << controller.messageText(); });
    controller.processLoginResponse(u"OK: 1"_s);
    EXPECT_EQ(application.logins.size(), 1);
    EXPECT_FALSE(shown.contains(u"Invalid user name or password"_s));
}

TEST_F(LoginControllerTest, ARefusalWithoutWordsIsSaidToBeOne)
{
    for (const QString& reply : {u""_s, u" \r\n"_s}) {
        controller.processLoginResponse(reply);
        EXPECT_EQ(controller.loginResultString(), u"The service gave no reason."_s);
        controller.setLoginResultString({});
        controller.processChangePasswordResponse(reply);
        EXPECT_EQ(controller.loginResultString(), u"The service gave no reason."_s);
        controller.setLoginResultString({});
    }
}

TEST_F(LoginControllerTest, WhileWaitingTheMessageSaysSoAndTheOldOneIsNotShown)
{
    controller.setLoginResultString(u"Wrong password"_s);
    EXPECT_TRUE(controller.isTroubleShown());
    QSignalSpy messages(&controller, &LoginWindowController::messageChanged);
    controller.performLogin();
    EXPECT_EQ(messages.count(), 1);
    EXPECT_EQ(controller.messageText(), u"Logging in…"_s);
    EXPECT_FALSE(controller.isTroubleShown());
    EXPECT_EQ(controller.loginResultString(), u"Wrong password"_s);
}

// --- Change of password ---

TEST_F(LoginControllerTest, TheReplyChangeSwitchesToTheNewPasswordAndClearsTheMessage)
{
    controller.setLoginResultString(u"Wrong password"_s);
    controller.performLogin();
    QSignalSpy layouts(&controller, &LoginWindowController::layoutRequested);
    controller.processLoginResponse(u"Change"_s);
    EXPECT_EQ(controller.viewState(), 1);
    EXPECT_FALSE(controller.isLoginViewVisible());
    EXPECT_TRUE(controller.isChangeViewVisible());
    ASSERT_EQ(layouts.count(), 1);
    EXPECT_FALSE(layouts[0][0].toBool()); // not animated
    EXPECT_EQ(controller.loginResultString(), QString());
    EXPECT_FALSE(controller.loginResultString().isNull());
    EXPECT_FALSE(controller.waitingForResponse());
}

TEST_F(LoginControllerTest, PasswordsThatDifferAreToldBeforeWordsThatAreRefused)
{
    typeNewPassword(u"old1"_s, u"Secret"_s, u"secret"_s);
    controller.changePassword();
    EXPECT_EQ(controller.loginResultString(), u"Passwords do not match"_s);
    EXPECT_FALSE(controller.waitingForResponse());
    EXPECT_EQ(posted(), nullptr);
}

TEST_F(LoginControllerTest, CommonWordsAndTheOldPasswordAreRefusedInAnyLetterCase)
{
    for (const QString& word : {u"Secret"_s, u"PASSWORD"_s, u"oLD1"_s, u"Old1"_s}) {
        typeNewPassword(u"Old1"_s, word, word);
        controller.changePassword();
        EXPECT_EQ(controller.loginResultString(), u"Invalid Password"_s) << qPrintable(word);
        EXPECT_FALSE(controller.waitingForResponse());
        EXPECT_EQ(posted(), nullptr);
    }
}

TEST_F(LoginControllerTest, AGoodNewPasswordIsSent)
{
    typeNewPassword(u"Old1"_s, u"Sesame1"_s, u"Sesame1"_s);
    controller.changePassword();
    EXPECT_TRUE(controller.waitingForResponse());
    EXPECT_EQ(controller.messageText(), u"Changing the password…"_s);
    const auto command = posted();
    ASSERT_NE(std::dynamic_pointer_cast<ChangePasswordCommand>(command), nullptr);
    EXPECT_EQ(command->observer(), &controller);
    EXPECT_EQ(controller.password(), u"Old1"_s); // until the service has accepted it
}

TEST_F(LoginControllerTest, AnAcceptedChangeLogsInAgainAtOnceWithTheNewPassword)
{
    typeNewPassword(u"Old1"_s, u"Sesame1"_s, u"Sesame1"_s);
    controller.changePassword();
    (void)posted();
    controller.processChangePasswordResponse(u"CP"_s);
    EXPECT_EQ(controller.password(), u"Sesame1"_s);
    EXPECT_TRUE(controller.waitingForResponse());
    EXPECT_NE(std::dynamic_pointer_cast<LoginCommand>(posted()), nullptr);
    controller.processLoginResponse(u"OK: 1"_s);
    ASSERT_EQ(application.logins.size(), 1);
    EXPECT_EQ(application.logins[0].password, u"Sesame1"_s);
}

TEST_F(LoginControllerTest, ARefusedChangeIsShownAsItStandsAndKeepsTheOldPassword)
{
    for (const QString& reply : {u"CP "_s, u"cp"_s, u"OK: 1"_s, u"Too simple\n"_s}) {
        typeNewPassword(u"Old1"_s, u"Sesame1"_s, u"Sesame1"_s);
        controller.changePassword();
        (void)posted();
        controller.processChangePasswordResponse(reply);
        EXPECT_EQ(controller.loginResultString(), reply);
        EXPECT_EQ(controller.password(), u"Old1"_s);
        EXPECT_FALSE(controller.waitingForResponse());
        EXPECT_EQ(controller.viewState(), 1);
        EXPECT_EQ(posted(), nullptr);
    }
    EXPECT_TRUE(application.logins.isEmpty());
}

// --- Layout ---

TEST_F(LoginControllerTest, ALayoutMayBeAnimated)
{
    QSignalSpy layouts(&controller, &LoginWindowController::layoutRequested);
    controller.layoutWindow(/*animate=*/true);
    ASSERT_EQ(layouts.count(), 1);
    EXPECT_TRUE(layouts[0][0].toBool());
}

TEST_F(LoginControllerTest, ThePanelsFollowTheModeWithTheLayout)
{
    controller.setViewState(LoginWindowController::ChangePasswordMode);
    EXPECT_TRUE(controller.isLoginViewVisible());
    controller.layoutWindow(/*animate=*/false);
    EXPECT_TRUE(controller.isChangeViewVisible());
    EXPECT_FALSE(controller.isLoginViewVisible());
}

TEST_F(LoginControllerTest, AnotherModeThanTheTwoIsAProgrammingError)
{
    for (const int mode : {2, -1}) {
        controller.setViewState(mode);
        if constexpr (Assertion::stopsTheProgram) {
            EXPECT_DEATH(controller.layoutWindow(false), "unknown view mode");
        } else {
            QSignalSpy layouts(&controller, &LoginWindowController::layoutRequested);
            controller.layoutWindow(/*animate=*/false);
            EXPECT_EQ(layouts.count(), 0);
            EXPECT_TRUE(controller.isLoginViewVisible());
            EXPECT_TRUE(log.contains(u"unknown view mode"_s));
        }
    }
}

// --- Errors and dispatch ---

TEST_F(LoginControllerTest, OnlyErrorsOfTheSystemsOwnGetTheWindowsWords)
{
    const Error own{ErrorDomain::SyncBase, 1, u"cURL error( 7, no %@ )"_s};
    EXPECT_EQ(LoginWindowController::willPresentError(own),
              (Error{ErrorDomain::SyncBase, 1, u"Login error: cURL error( 7, no %@ )"_s}));
    const Error other{ErrorDomain::Platform, 3, u"Disk full"_s};
    EXPECT_EQ(LoginWindowController::willPresentError(other), other);
}

TEST_F(LoginControllerTest, TheEndOfAnotherCommandIsIgnored)
{
    controller.performLogin();
    (void)posted();
    CUrlCommand other(u"https://127.0.0.1:1/"_s);
    other.setData("OK: 1");
    controller.curlCommandDone(other);
    EXPECT_TRUE(controller.waitingForResponse());
    EXPECT_TRUE(application.logins.isEmpty());
    EXPECT_TRUE(controller.loginResultString().isEmpty());
}

TEST_F(LoginControllerTest, AFailedTransferIsAnErrorBothInTheWindowAndInTheList)
{
    controller.performLogin();
    const auto command = posted();
    command->execute(); // nobody listens
    command->setData("half a reply");
    controller.curlCommandFailed(*command);
    EXPECT_FALSE(controller.waitingForResponse());
    EXPECT_EQ(controller.loginResultString(), u"Error"_s);
    EXPECT_TRUE(controller.messageText().startsWith(u"Error\nLogin error: cURL error( 7, "_s))
        << qPrintable(controller.messageText());
    ASSERT_EQ(application.presented.size(), 1);
    EXPECT_EQ(application.presented[0].domain, ErrorDomain::SyncBase);
    EXPECT_EQ(application.presented[0].code, 1);
    EXPECT_TRUE(application.presented[0].localizedDescription.startsWith(u"Login error: cURL error( 7, "_s));
    EXPECT_TRUE(log.contains(u"half a reply"_s));
    // What failed is not said of the next result.
    controller.processLoginResponse(u"Wrong"_s);
    EXPECT_EQ(controller.messageText(), u"Wrong"_s);
}

TEST_F(LoginControllerTest, ACommandThatOutlivesTheWindowIsAnsweredToNobody)
{
    auto other = std::make_unique<LoginWindowController>(application);
    other->performLogin();
    const auto command = posted();
    ASSERT_EQ(command->observer(), other.get());
    other.reset();
    EXPECT_EQ(command->observer(), nullptr);
}

} // namespace
