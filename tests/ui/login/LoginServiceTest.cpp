#include "ui-support/RecordingApplication.h"

#include "demo-service/Service.h"
#include "support/TemporaryHome.h"
#include "support/Waiting.h"
#include "ui/login/LoginWindowController.h"

using namespace Qt::StringLiterals;

namespace {

ServiceHosts hostsOf(const DemoService::Service& service)
{
    return std::get<ServiceHosts>(ServiceHosts::fromTexts(QString::fromStdString(service.secureHost()),
                                                          QString::fromStdString(service.fileHost())));
}

class LoginServiceTest : public TemporaryHome
{
protected:
    LoginServiceTest()
    {
        application.startCommands();
        controller.setUsername(u"demo"_s);
        controller.setPassword(u"demo1234"_s);
    }

    void logInAndWait()
    {
        controller.performLogin();
        waitForReply();
    }
    void waitForReply()
    {
        EXPECT_TRUE(Waiting::until([this] { return !controller.waitingForResponse(); }));
    }

    DemoService::Service service;
    RecordingApplication application{hostsOf(service)};
    LoginWindowController controller{application};
};

TEST_F(LoginServiceTest, AccountAndContactIDGoToTheApplication)
{
    logInAndWait();
    ASSERT_EQ(application.logins.size(), 1);
    EXPECT_EQ(application.logins[0].name, u"demo"_s);
    EXPECT_EQ(application.logins[0].password, u"demo1234"_s);
    EXPECT_EQ(application.logins[0].contactID, u"4711"_s);
    EXPECT_TRUE(service.refusals().empty());
}

TEST_F(LoginServiceTest, AWrongPasswordIsAnsweredInTheServicesWords)
{
    controller.setPassword(u"wrong"_s);
    logInAndWait();
    EXPECT_EQ(controller.loginResultString(), u"Invalid user name or password"_s);
    EXPECT_TRUE(application.logins.isEmpty());
}

TEST_F(LoginServiceTest, APasswordIsChangedOnDemandAndUsedAtOnce)
{
    service.setDemandPasswordChange(true);
    logInAndWait();
    ASSERT_EQ(controller.viewState(), 1);
    controller.setTheNewPassword(u"Sesame1"_s);
    controller.setTheNewPasswordConfirm(u"Sesame1"_s);
    controller.changePassword();
    EXPECT_TRUE(Waiting::until([this] { return !application.logins.isEmpty(); }));
    EXPECT_FALSE(controller.waitingForResponse());
    EXPECT_EQ(application.logins.value(0).password, u"Sesame1"_s);
    EXPECT_EQ(service.password(), "Sesame1");
    EXPECT_EQ(service.count("cauthorize2.php"), 2);
    EXPECT_EQ(service.count("CUpdate.php"), 1);
    EXPECT_TRUE(service.refusals().empty());
}

TEST_F(LoginServiceTest, ARefusedChangeShowsTheServicesWordsAndMayBeTriedAgain)
{
    service.setDemandPasswordChange(true);
    service.addOverride("CUpdate.php", {.reply = "Too simple", .times = 1});
    logInAndWait();
    controller.setTheNewPassword(u"Sesame1"_s);
    controller.setTheNewPasswordConfirm(u"Sesame1"_s);
    controller.changePassword();
    waitForReply();
    EXPECT_EQ(controller.loginResultString(), u"Too simple"_s);
    controller.changePassword();
    EXPECT_TRUE(Waiting::until([this] { return !application.logins.isEmpty(); }));
}

TEST_F(LoginServiceTest, ChangeWithABlankBehindItIsAMessage)
{
    service.addOverride("cauthorize2.php", {.reply = "Change "});
    logInAndWait();
    EXPECT_EQ(controller.viewState(), 0);
    EXPECT_EQ(controller.loginResultString(), u"Change "_s);
}

TEST_F(LoginServiceTest, AnEmptyReplyIsARefusalWithoutReason)
{
    service.addOverride("cauthorize2.php", {.reply = ""});
    logInAndWait();
    EXPECT_EQ(controller.loginResultString(), u"The service gave no reason."_s);
    EXPECT_TRUE(application.logins.isEmpty());
}

TEST_F(LoginServiceTest, ACutConnectionIsAnErrorAndTheLoginMayBeTriedAgain)
{
    service.addOverride("cauthorize2.php", {.reset = true, .times = 1});
    logInAndWait();
    EXPECT_EQ(controller.loginResultString(), u"Error"_s);
    EXPECT_EQ(application.presented.size(), 1);
    logInAndWait();
    EXPECT_EQ(application.logins.size(), 1);
}

TEST_F(LoginServiceTest, TheWindowMayGoWhileTheServiceKeepsItWaiting)
{
    service.addOverride("cauthorize2.php", {.hang = true});
    auto other = std::make_unique<LoginWindowController>(application);
    other->performLogin();
    EXPECT_TRUE(Waiting::until([this] { return service.hanging() == 1; }));
    other.reset();
    service.clearOverrides();
    EXPECT_TRUE(
        Waiting::until([this] { return application.curlCommandProcessor().currentNumOfCommandThreads() == 0; }));
    EXPECT_TRUE(application.logins.isEmpty());
}

} // namespace
