#include "app/QuitGuard.h"

#include "AppTest.h"

#include "app/DesktopWindows.h"
#include "support/Waiting.h"
#include "ui/errors/ErrorWindow.h"
#include "ui/main/MainWindow.h"

#include <QApplication>

#include <optional>

namespace {

class ClosingWindows : public AppTest
{
protected:
    ~ClosingWindows() override
    {
        m_guard.reset();
        m_windows.reset();
    }

    void launch()
    {
        make();
        m_windows.emplace(app());
        m_guard.emplace(app(), m_windows->mainWindow());
        app().applicationDidFinishLaunching();
    }

    void launchAndLogIn()
    {
        launch();
        app().userLoggedIn(QStringLiteral("demo"), QStringLiteral("demo1234"), QStringLiteral("4711"));
        Waiting::turnMainLoopFor(std::chrono::milliseconds(20));
        ASSERT_EQ(terminatedCount, 0) << "The log-in window's close is not the last.";
    }

    [[nodiscard]] QWidget& window(const QString& className) const
    {
        for (QWidget* const widget : QApplication::topLevelWidgets()) {
            if (className == QString::fromLatin1(widget->metaObject()->className()))
                return *widget;
        }
        throw std::runtime_error("no window of class " + className.toStdString());
    }

    [[nodiscard]] MainWindow& mainWindow() { return m_windows->mainWindow(); }

private:
    std::optional<DesktopWindows> m_windows;
    std::optional<QuitGuard> m_guard;
};

} // namespace

TEST_F(ClosingWindows, closingTheLoginQuits)
{
    launch();
    window(QStringLiteral("LoginWindow")).close();
    EXPECT_TRUE(Waiting::until([&] { return terminatedCount == 1; }));
}

TEST_F(ClosingWindows, closingTheMainWindowQuitsAtOnceWhileNothingIsProcessed)
{
    launchAndLogIn();
    mainWindow().close();
    EXPECT_TRUE(Waiting::until([&] { return terminatedCount == 1; }));
    EXPECT_TRUE(dialogs.questions.isEmpty());
}

TEST_F(ClosingWindows, aWindowStaysOpenWhenTheUserContinuesProcessing)
{
    launchAndLogIn();
    addUnfinishedJob();
    dialogs.answers = {false};
    mainWindow().close();
    EXPECT_EQ(dialogs.questions.size(), 1);
    EXPECT_TRUE(mainWindow().isVisible());
    Waiting::turnMainLoopFor(std::chrono::milliseconds(20));
    EXPECT_EQ(terminatedCount, 0);
}

TEST_F(ClosingWindows, askOnceAndQuitWhenTheUserAgrees)
{
    launchAndLogIn();
    addUnfinishedJob();
    dialogs.answers = {true};
    mainWindow().close();
    EXPECT_TRUE(Waiting::until([&] { return terminatedCount == 1; }));
    EXPECT_EQ(dialogs.questions.size(), 1);
}

TEST_F(ClosingWindows, closingAnotherWindowThanTheLastAsksNothing)
{
    launchAndLogIn();
    addUnfinishedJob();
    app().showErrorWindow();
    window(QStringLiteral("ErrorWindow")).close();
    Waiting::turnMainLoopFor(std::chrono::milliseconds(20));
    EXPECT_TRUE(dialogs.questions.isEmpty());
    EXPECT_EQ(terminatedCount, 0);
}

TEST_F(ClosingWindows, theMainWindowTakesItsHelpersWithIt)
{
    launchAndLogIn();
    app().showErrorWindow();
    mainWindow().close();
    EXPECT_TRUE(Waiting::until([&] { return terminatedCount == 1; }));
}
