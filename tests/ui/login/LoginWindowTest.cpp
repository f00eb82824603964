#include "ui/login/LoginWindow.h"

#include "ui-support/RecordingApplication.h"

#include "demo-service/Service.h"
#include "support/TemporaryHome.h"
#include "support/Waiting.h"
#include "ui/controls/BusyIndicator.h"
#include "ui/login/LoginWindowController.h"
#include "ui/login/MessageText.h"

#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QtTest/QTest>

using namespace Qt::StringLiterals;

namespace {

// The real window over a controller whose posted commands the test answers.
class LoginWindowTest : public TemporaryHome
{
protected:
    template <typename Widget = QWidget>
    [[nodiscard]] Widget* find(const char* name) const
    {
        auto* const widget = window.findChild<Widget*>(QString::fromLatin1(name));
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }
    [[nodiscard]] QLineEdit* field(const char* name) const { return find<QLineEdit>(name); }
    [[nodiscard]] QPushButton* button(const char* name) const { return find<QPushButton>(name); }
    // The message of the panel that is to be seen.
    [[nodiscard]] MessageText* message() const
    {
        return find(controller.isLoginViewVisible() ? "loginResult" : "changeResult")->findChild<MessageText*>();
    }
    void type(const char* name, const char* text) { QTest::keyClicks(field(name), QString::fromUtf8(text)); }
    void typeAccount()
    {
        type("usernameField", "anna");
        type("passwordField", "secret1");
    }
    void demandNewPassword()
    {
        typeAccount();
        button("loginButton")->click();
        (void)takePosted();
        controller.processLoginResponse(u"Change"_s);
    }
    [[nodiscard]] std::shared_ptr<CUrlCommand> takePosted()
    {
        return application.curlCommandProcessor().getCommandFromQueue();
    }
    // The sum of the panels to be seen.
    [[nodiscard]] int panelHeights() const
    {
        int sum = 0;
        for (const char* name : {"welcomeView", "usernameView", "loginView", "changeView"}) {
            if (find(name)->isVisible())
                sum += find(name)->height();
        }
        return sum;
    }
    void showWindow()
    {
        controller.showWindow();
        QCoreApplication::processEvents();
    }

    RecordingApplication application;
    LoginWindowController controller{application};
    LoginWindow window{controller};
};

TEST_F(LoginWindowTest, ShowsAndClosesWhenItsControllerSaysSo)
{
    EXPECT_FALSE(window.isVisible());
    controller.showWindow();
    EXPECT_TRUE(window.isVisible());
    controller.close();
    EXPECT_FALSE(window.isVisible());
}

TEST_F(LoginWindowTest, BeginsInTheUserNameFieldWithPasswordsHidden)
{
    EXPECT_EQ(window.focusWidget(), field("usernameField"));
    for (const char* name : {"passwordField", "theNewPasswordField", "theNewPasswordConfirmField"})
        EXPECT_EQ(field(name)->echoMode(), QLineEdit::Password) << name;
    EXPECT_EQ(field("usernameField")->echoMode(), QLineEdit::Normal);
}

TEST_F(LoginWindowTest, TypingReachesTheControllerAndEnablesTheButton)
{
    type("usernameField", "anna");
    type("passwordField", "sec");
    EXPECT_FALSE(button("loginButton")->isEnabled());
    type("passwordField", "r");
    EXPECT_TRUE(button("loginButton")->isEnabled());
    EXPECT_EQ(controller.username(), u"anna"_s);
    EXPECT_EQ(controller.password(), u"secr"_s);
}

TEST_F(LoginWindowTest, WhatTheControllerIsGivenStandsInTheFields)
{
    controller.setUsername(u"demo"_s);
    controller.setPassword(u"demo1234"_s);
    EXPECT_EQ(field("usernameField")->text(), u"demo"_s);
    EXPECT_EQ(field("passwordField")->text(), u"demo1234"_s);
    EXPECT_TRUE(button("loginButton")->isEnabled());
    const LoginWindow another(controller);
    EXPECT_EQ(another.findChild<QLineEdit*>(u"usernameField"_s)->text(), u"demo"_s);
    EXPECT_TRUE(another.findChild<QPushButton*>(u"loginButton"_s)->isEnabled());
}

TEST_F(LoginWindowTest, ReturnLogsInFromEitherFieldOnceWhatWasTypedWillDo)
{
    showWindow();
    type("usernameField", "anna");
    QTest::keyClick(field("usernameField"), Qt::Key_Return);
    EXPECT_EQ(takePosted(), nullptr);
    type("passwordField", "secret1");
    QTest::keyClick(field("passwordField"), Qt::Key_Return);
    EXPECT_NE(takePosted(), nullptr);
    controller.processLoginResponse(u"Wrong"_s);
    QTest::keyClick(field("usernameField"), Qt::Key_Enter);
    EXPECT_NE(takePosted(), nullptr);
}

TEST_F(LoginWindowTest, ReturnOnTheButtonPressesIt)
{
    showWindow();
    typeAccount();
    QTest::keyClick(button("loginButton"), Qt::Key_Return);
    EXPECT_NE(takePosted(), nullptr);
}

TEST_F(LoginWindowTest, WhileWaitingTheRingTurnsAndNothingCanBeTypedOrPressed)
{
    showWindow();
    typeAccount();
    QTest::mouseClick(button("loginButton"), Qt::LeftButton);
    auto* const ring = find("loginResult")->findChild<BusyIndicator*>();
    EXPECT_TRUE(ring->isTurning());
    EXPECT_EQ(message()->toPlainText(), u"Logging in…"_s);
    for (const char* name : {"usernameField", "passwordField"})
        EXPECT_FALSE(field(name)->isEnabled()) << name;
    EXPECT_FALSE(button("loginButton")->isEnabled());
    QTest::mouseClick(button("loginButton"), Qt::LeftButton);
    QTest::keyClick(field("passwordField"), Qt::Key_Return);
    EXPECT_NE(takePosted(), nullptr);
    EXPECT_EQ(takePosted(), nullptr);

    controller.processLoginResponse(u"Wrong password"_s);
    EXPECT_FALSE(ring->isTurning());
    EXPECT_TRUE(find("troubleSign")->isVisible());
    EXPECT_EQ(message()->toPlainText(), u"Wrong password"_s);
    EXPECT_TRUE(field("usernameField")->isEnabled());
    EXPECT_TRUE(field("passwordField")->isEnabled());
    EXPECT_TRUE(button("loginButton")->isEnabled());
}

TEST_F(LoginWindowTest, AfterARefusalTheUserIsWhereHeWas)
{
    showWindow();
    typeAccount();
    field("passwordField")->setFocus();
    QTest::keyClick(field("passwordField"), Qt::Key_Return);
    EXPECT_NE(window.focusWidget(), field("passwordField"));
    controller.processLoginResponse(u"Wrong"_s);
    EXPECT_EQ(window.focusWidget(), field("passwordField"));
}

TEST_F(LoginWindowTest, TheDemandForANewPasswordChangesThePanels)
{
    showWindow();
    EXPECT_TRUE(find("loginView")->isVisible());
    EXPECT_FALSE(find("changeView")->isVisible());
    demandNewPassword();
    EXPECT_FALSE(find("loginView")->isVisible());
    EXPECT_TRUE(find("changeView")->isVisible());
    EXPECT_TRUE(find("welcomeView")->isVisible());
    EXPECT_TRUE(find("usernameView")->isVisible());
    EXPECT_EQ(window.focusWidget(), field("theNewPasswordField"));
    EXPECT_FALSE(button("changeButton")->isEnabled());
    EXPECT_TRUE(find<QLabel>("newPasswordHint")->text().contains(u"at least 4 characters"_s));
}

TEST_F(LoginWindowTest, ThePanelsFillTheWindowWithoutGapsFromTheTop)
{
    showWindow();
    demandNewPassword();
    QCoreApplication::processEvents();
    EXPECT_EQ(window.height(), panelHeights());
    EXPECT_EQ(find("welcomeView")->y(), 0);
    EXPECT_EQ(find("usernameView")->y(), find("welcomeView")->geometry().bottom() + 1);
    EXPECT_EQ(find("changeView")->y(), find("usernameView")->geometry().bottom() + 1);
}

TEST_F(LoginWindowTest, ANewLayoutKeepsTheTopEdgeAndTheWidth)
{
    showWindow();
    window.move(40, 60);
    window.resize(window.width() + 37, window.height());
    QCoreApplication::processEvents();
    const QRect before = window.geometry();
    EXPECT_EQ(window.height(), panelHeights());
    demandNewPassword();
    QCoreApplication::processEvents();
    EXPECT_EQ(window.geometry().topLeft(), before.topLeft());
    EXPECT_EQ(window.width(), before.width());
    EXPECT_GT(window.height(), before.height());
    EXPECT_EQ(window.height(), panelHeights());
}

TEST_F(LoginWindowTest, AnAnimatedLayoutEndsAtTheSameHeight)
{
    showWindow();
    const int before = window.height();
    controller.setViewState(LoginWindowController::ChangePasswordMode);
    controller.layoutWindow(/*animate=*/true);
    EXPECT_EQ(window.height(), before);
    EXPECT_TRUE(Waiting::until([&] { return window.height() > before && window.height() == window.maximumHeight(); }));
    EXPECT_TRUE(
        Waiting::until([&] { return window.height() == window.layout()->totalHeightForWidth(window.width()); }));
}

TEST_F(LoginWindowTest, ReturnChangesThePasswordFromEveryField)
{
    showWindow();
    demandNewPassword();
    type("theNewPasswordField", "Sesame1");
    QTest::keyClick(field("theNewPasswordField"), Qt::Key_Return);
    EXPECT_EQ(takePosted(), nullptr);
    type("theNewPasswordConfirmField", "Sesame1");
    EXPECT_TRUE(button("changeButton")->isEnabled());
    for (const char* name : {"usernameField", "theNewPasswordField", "theNewPasswordConfirmField"}) {
        QTest::keyClick(field(name), Qt::Key_Return);
        EXPECT_FALSE(button("changeButton")->isEnabled());
        EXPECT_NE(takePosted(), nullptr) << name;
        controller.processChangePasswordResponse(u"Too simple"_s);
        EXPECT_EQ(message()->toPlainText(), u"Too simple"_s);
    }
}

TEST_F(LoginWindowTest, AFaultOfTheNewPasswordIsShownWhereItWasTyped)
{
    showWindow();
    demandNewPassword();
    type("theNewPasswordField", "Sesame1");
    type("theNewPasswordConfirmField", "Sesame2");
    QTest::mouseClick(button("changeButton"), Qt::LeftButton);
    EXPECT_EQ(message()->toPlainText(), u"Passwords do not match"_s);
    EXPECT_TRUE(message()->isVisible());
}

TEST_F(LoginWindowTest, ALongReplyIsWrappedAndTheWindowGrowsWithIt)
{
    showWindow();
    const int before = window.height();
    const int width = window.width();
    controller.processLoginResponse(u"The account is closed for the moment. "_s.repeated(3));
    // All of it is seen.
    EXPECT_TRUE(Waiting::until([&] { return message()->verticalScrollBar()->maximum() == 0; }));
    EXPECT_GT(window.height(), before);
    EXPECT_EQ(window.width(), width);
    EXPECT_EQ(window.height(), panelHeights());
    controller.processLoginResponse(u"No"_s);
    EXPECT_TRUE(Waiting::until([&] { return window.height() == before; }));
}

TEST_F(LoginWindowTest, AReplyWithoutAnEndIsScrolledInsteadOfGrowingOffTheScreen)
{
    showWindow();
    const int width = window.width();
    const int before = window.height();
    controller.processLoginResponse(u"x"_s.repeated(20000));
    EXPECT_TRUE(Waiting::until([&] { return message()->height() > 4 * window.fontMetrics().height(); }));
    EXPECT_GT(window.height(), before);
    EXPECT_LT(window.height(), before + 8 * window.fontMetrics().height());
    EXPECT_EQ(window.width(), width);
    EXPECT_GT(message()->verticalScrollBar()->maximum(), 0);
}

TEST_F(LoginWindowTest, AReplyIsPlainTextThatCanBeSelected)
{
    showWindow();
    const QString hostile = u"<b>No</b> <a href=\"http://evil\">click</a> &amp; <img src=\"x\">"_s;
    controller.processLoginResponse(hostile);
    EXPECT_EQ(message()->toPlainText(), hostile);
    message()->selectAll();
    EXPECT_EQ(message()->textCursor().selectedText(), hostile);
    EXPECT_TRUE(message()->isReadOnly());
    EXPECT_TRUE(message()->textInteractionFlags() & Qt::TextSelectableByKeyboard);
}

TEST_F(LoginWindowTest, TabGoesThroughThePanelThatIsSeen)
{
    showWindow();
    typeAccount();
    controller.processLoginResponse(u"Wrong"_s);
    field("usernameField")->setFocus();
    QList<QWidget*> order;
    QWidget* next = field("usernameField");
    do {
        if (next->isVisible() && next->isEnabled() && (next->focusPolicy() & Qt::TabFocus) && !next->focusProxy())
            order.append(next);
        next = next->nextInFocusChain();
    } while (next != field("usernameField"));
    const QList<QWidget*> expected{field("usernameField"), field("passwordField"), button("loginButton"), message()};
    EXPECT_EQ(order, expected);
}

TEST_F(LoginWindowTest, EveryControlHasANameForThoseWhoDoNotSeeIt)
{
    for (const char* name :
         {"usernameField", "passwordField", "theNewPasswordField", "theNewPasswordConfirmField", "welcomeIcon"})
        EXPECT_FALSE(find(name)->accessibleName().isEmpty()) << name;
    for (const char* name : {"loginButton", "changeButton"})
        EXPECT_TRUE(button(name)->text().contains(u'&')) << name;
    for (const auto* text : window.findChildren<MessageText*>())
        EXPECT_FALSE(text->accessibleName().isEmpty());
    for (const auto* ring : window.findChildren<BusyIndicator*>())
        EXPECT_FALSE(ring->accessibleName().isEmpty());
    EXPECT_EQ(find<QLabel>("usernameLabel")->buddy(), field("usernameField"));
    EXPECT_EQ(find<QLabel>("passwordLabel")->buddy(), field("passwordField"));
    EXPECT_EQ(find<QLabel>("theNewPasswordLabel")->buddy(), field("theNewPasswordField"));
    EXPECT_EQ(find<QLabel>("theNewPasswordConfirmLabel")->buddy(), field("theNewPasswordConfirmField"));
}

class LoginWindowServiceTest : public TemporaryHome
{};

TEST_F(LoginWindowServiceTest, AUserLogsInWithTheKeyboardAlone)
{
    const DemoService::Service service;
    RecordingApplication application(std::get<ServiceHosts>(ServiceHosts::fromTexts(
        QString::fromStdString(service.secureHost()), QString::fromStdString(service.fileHost()))));
    application.startCommands();
    LoginWindowController controller(application);
    LoginWindow window(controller);
    controller.showWindow();
    QTest::keyClicks(window.findChild<QLineEdit*>(u"usernameField"_s), u"demo"_s);
    QTest::keyClicks(window.findChild<QLineEdit*>(u"passwordField"_s), u"demo1234"_s);
    QTest::keyClick(window.findChild<QLineEdit*>(u"passwordField"_s), Qt::Key_Return);
    EXPECT_TRUE(Waiting::until([&] { return !application.logins.isEmpty(); }));
    EXPECT_EQ(application.logins.value(0).contactID, u"4711"_s);
}

} // namespace
