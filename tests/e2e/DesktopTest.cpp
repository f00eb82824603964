#include "CliTest.h"
#include "Display.h"

#include "media/FfmpegLocation.h"
#include "support/Waiting.h"

#include <QDir>
#include <QDirIterator>

#include <csignal>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// The desktop program as a user runs it, on a display of its own, driven by keyboard and mouse alone.
class Desktop : public CliTest
{
protected:
    Desktop()
    {
        environment[QStringLiteral("DISPLAY")] = display.name();
        environment.remove(QStringLiteral("QUILLPOST_PASSWORD"));
    }

    void startProgram()
    {
        program.start({QStringLiteral("--secure-host"), QString::fromStdString(service.secureHost()),
                       QStringLiteral("--file-host"), QString::fromStdString(service.fileHost()),
                       QStringLiteral("--poll-interval"), QStringLiteral("0.3")},
                      environment);
    }

    [[nodiscard]] std::string said() const { return text(program.standardError()); }

    void waitFor(const QString& title, QString& window)
    {
        const auto found = display.waitForWindow(title);
        ASSERT_TRUE(found) << "No window " << text(title) << ". The program said: " << said();
        window = *found;
        display.focus(window);
    }

    // Types the account into the login window and waits for the main window.
    void logIn()
    {
        startProgram();
        ASSERT_NO_FATAL_FAILURE(waitFor(QStringLiteral("Log In"), loginWindow));
        display.type(QStringLiteral("demo"));
        display.press(QStringLiteral("Tab"));
        display.type(QStringLiteral("demo1234"));
        display.press(QStringLiteral("Return"));
        ASSERT_NO_FATAL_FAILURE(waitFor(QStringLiteral("^Quillpost - demo"), mainWindow));
    }

    // Drags the files from another program's window into the middle of a window of the program. The other program
    // stays: a target reads what was dropped from its source, some time after the button is released.
    void drop(const QStringList& files, const QString& window)
    {
        source.start(files, environment);
        const auto from = display.waitForWindow(QStringLiteral("Drag source"));
        ASSERT_TRUE(from) << text(source.standardError());
        const QPoint start = display.geometryOf(*from).center();
        const QPoint target = display.geometryOf(window).center();
        display.movePointer(start);
        display.pressButton();
        // A drag begins with a movement, and the target learns of it by another.
        int step = 0;
        ASSERT_TRUE(Waiting::until([&] {
            display.movePointer(start + QPoint(step % 2 == 0 ? 12 : 18, 10));
            ++step;
            return source.standardOutput().contains(QStringLiteral("dragging"));
        }));
        // The target has to take the drag before the button is released; it is given a way to come across it.
        for (int i = 1; i <= 10; ++i)
            display.movePointer(start + (target - start) * i / 10);
        for (int i = 0; i < 5; ++i)
            display.movePointer(target + QPoint(i, i));
        display.releaseButton();
        ASSERT_TRUE(Waiting::until([&] { return source.standardOutput().count(u'\n') >= 2; }));
        EXPECT_EQ(text(source.standardOutput()), "dragging\naccepted\n");
    }

    [[nodiscard]] QStringList delivered() const
    {
        QStringList files;
        const QDir folder(path(QStringLiteral("Quillpost")));
        for (QDirIterator i(folder.path(), QDir::Files, QDirIterator::Subdirectories); i.hasNext();)
            files << folder.relativeFilePath(i.next());
        files.sort();
        return files;
    }

    Display display;
    ChildProgram source{QStringLiteral(DRAG_SOURCE)};
    ChildProgram program{QStringLiteral(DESKTOP_PROGRAM)};
    QString loginWindow;
    QString mainWindow;
};

} // namespace

TEST_F(Desktop, takesDroppedFilesToTheirDelivery)
{
    ASSERT_NO_FATAL_FAILURE(logIn());
    ASSERT_NO_FATAL_FAILURE(
        drop({transcript(), recording(QStringLiteral("b.wav")), recording(QStringLiteral("a.wav"))}, mainWindow));
    QString submitWindow;
    ASSERT_NO_FATAL_FAILURE(waitFor(QStringLiteral("Doe-Jane-2026-03-04.txt"), submitWindow));
    display.press(QStringLiteral("ctrl+Return"));
    ASSERT_TRUE(Waiting::until([&] { return !service.jobs().empty() && service.jobs().front().delivered; },
                               std::chrono::seconds(90)))
        << said();
    const DemoService::Job job = service.jobs().front();
    EXPECT_EQ(job.transcript, readFile(transcript()).toStdString());
    ASSERT_EQ(job.segments.size(), 2U);
    EXPECT_EQ(job.segments[0].sourceName, "a.wav");
    EXPECT_EQ(DemoService::valueOf(job.details, "deponentLast"), "Doe");
    EXPECT_THAT(service.refusals(), IsEmpty());
    EXPECT_FALSE(delivered().isEmpty());
    // Until the program has found that no job is left to process, it asks before it quits.
    ASSERT_TRUE(Waiting::until([&] {
        display.focus(mainWindow);
        display.press(QStringLiteral("ctrl+q"));
        const bool ends = Waiting::until([&] { return program.hasEnded(); }, std::chrono::seconds(2));
        if (!ends)
            display.press(QStringLiteral("Escape"));
        return ends;
    })) << said();
    EXPECT_EQ(program.exitCode(), 0) << said();
}

TEST_F(Desktop, comesToTheFrontWhenItIsStartedAgain)
{
    startProgram();
    QString login;
    ASSERT_NO_FATAL_FAILURE(waitFor(QStringLiteral("Log In"), login));
    display.minimize(login);
    ASSERT_TRUE(Waiting::until([&] { return display.activeWindow() != login; }));
    ChildProgram again{QStringLiteral(DESKTOP_PROGRAM)};
    again.start({}, environment);
    ASSERT_TRUE(Waiting::until([&] { return again.hasEnded(); }));
    EXPECT_EQ(again.exitCode(), 0) << text(again.standardError());
    EXPECT_THAT(text(again.standardError()), testing::HasSubstr("it is running already"));
    EXPECT_TRUE(Waiting::until([&] { return display.activeWindow() == login; }));
    EXPECT_FALSE(program.hasEnded()) << said();
}

TEST_F(Desktop, leavesNoChildAndKeepsTheJobWhenItEndsWhileATransferHangs)
{
    service.addOverride("test_custupload2.php", {.hang = true});
    ASSERT_NO_FATAL_FAILURE(logIn());
    ASSERT_NO_FATAL_FAILURE(drop({transcript(), recording(QStringLiteral("a.wav"))}, mainWindow));
    QString submitWindow;
    ASSERT_NO_FATAL_FAILURE(waitFor(QStringLiteral("Doe-Jane-2026-03-04.txt"), submitWindow));
    display.press(QStringLiteral("ctrl+Return"));
    ASSERT_TRUE(Waiting::until([&] { return service.hanging() > 0; })) << said();
    program.signal(SIGTERM);
    ASSERT_TRUE(program.waitForEnd()) << said();
    EXPECT_EQ(program.exitCode(), 0) << said();
    const QByteArray saved = readFile(path(QStringLiteral(".local/share/Quillpost/State_demo.archive")));
    EXPECT_TRUE(saved.contains("Doe-Jane-2026-03-04.txt"));
}

TEST_F(Desktop, asksBeforeItQuitsWhileAJobIsProcessed)
{
    service.addOverride("test_custupload2.php", {.hang = true});
    ASSERT_NO_FATAL_FAILURE(logIn());
    ASSERT_NO_FATAL_FAILURE(drop({transcript(), recording(QStringLiteral("a.wav"))}, mainWindow));
    QString window;
    ASSERT_NO_FATAL_FAILURE(waitFor(QStringLiteral("Doe-Jane-2026-03-04.txt"), window));
    display.press(QStringLiteral("ctrl+Return"));
    ASSERT_TRUE(Waiting::until([&] { return service.hanging() > 0; })) << said();
    ASSERT_NO_FATAL_FAILURE(waitFor(QStringLiteral("^Quillpost - demo"), mainWindow));
    display.press(QStringLiteral("alt+F4")); // the window manager's
    ASSERT_TRUE(Waiting::until([&] { return display.titleOf(QStringLiteral("getactivewindow")) != mainWindow; }));
    display.press(QStringLiteral("Escape")); // "Continue Processing"
    ASSERT_TRUE(Waiting::until([&] { return display.hasWindow(QStringLiteral("^Quillpost - demo")); }));
    EXPECT_FALSE(program.hasEnded());
    service.releaseHangs();
    service.clearOverrides();
    EXPECT_TRUE(Waiting::until([&] { return service.jobs().front().delivered; }, std::chrono::seconds(90))) << said();
}
