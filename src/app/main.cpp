#include "app/DemoServiceChild.h"
#include "app/DesktopCommandLine.h"
#include "app/DesktopWindows.h"
#include "app/QuillpostAppDelegate.h"
#include "app/QuitGuard.h"
#include "app/SingleInstance.h"
#include "app/UserPlaces.h"
#include "foundation/HeapArenas.h"
#include "foundation/Interruption.h"
#include "foundation/Log.h"
#include "foundation/MainThread.h"
#include "foundation/Secrets.h"
#include "foundation/Text.h"
#include "foundation/UserFolders.h"
#include "foundation/Version.h"
#include "settings/PasswordVariables.h"
#include "ui/controls/QtUserDialogs.h"
#include "ui/controls/QuillpostIcons.h"
#include "ui/login/LoginWindowController.h"
#include "ui/main/MainWindow.h"

#include <QApplication>
#include <QDesktopServices>
#include <QTimer>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace {

constexpr int cannotStart = 1;

bool asksForWords(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument == "--help" || argument == "-h" || argument == "--version")
            return true;
    }
    return false;
}

bool isDisplayMissing(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i) {
        if (const std::string_view argument = argv[i]; argument == "-platform" || argument == "-display")
            return false;
    }
    return qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") &&
           qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
}

// The exit code where nothing is asked for that needs a display, or there is none.
std::optional<int> endBeforeDisplay(int argc, char** argv)
{
    if (asksForWords(argc, argv)) {
        const auto read = DesktopCommandLine::read(argc, argv);
        if (const int* const code = std::get_if<int>(&read))
            return *code;
    }
    if (!isDisplayMissing(argc, argv))
        return std::nullopt;
    std::fputs("quillpost: there is no display here; quillpost-cli works without one.\n", stderr);
    return cannotStart;
}

int failToStart(QtUserDialogs& dialogs, const Error& error)
{
    std::fprintf(stderr, "quillpost: %s\n", qPrintable(error.localizedDescription));
    dialogs.warn(QStringLiteral("Quillpost"), error.localizedDescription);
    return cannotStart;
}

// Another program works with the user's settings already.
int endBehindOther(QtUserDialogs& dialogs, const SingleInstance& instance, SingleInstance::Outcome outcome)
{
    if (outcome == SingleInstance::Outcome::OtherCame) {
        std::fputs("quillpost: it is running already, and has come to the front.\n", stderr);
        return EXIT_SUCCESS;
    }
    return failToStart(dialogs, {ErrorDomain::Platform, 0,
                                 Text::format("Quillpost is running already, as {}, but it does not answer. End it, "
                                              "then start Quillpost again.",
                                              instance.otherProgram())});
}

// The program between its start and its end.
void runUntilQuit(const QuillpostAppDelegate::Environment& environment,
                  const std::optional<DemoServiceChild::Account>& demo, SingleInstance& instance)
{
    QuillpostAppDelegate delegate(environment);
    DesktopWindows windows(delegate);
    const QuitGuard guard(delegate, windows.mainWindow());
    QObject::connect(&delegate, &QuillpostAppDelegate::terminated, qApp, &QCoreApplication::quit);
    QObject::connect(&instance, &SingleInstance::wanted, &delegate, [&](const QString& activationToken) {
        qputenv("XDG_ACTIVATION_TOKEN", activationToken.toUtf8()); // Qt hands it to the compositor.
        delegate.bringToFront();
    });
    const Interruption interruption([&] { delegate.terminate(); });
    // The session may yet go on, so nothing ends here.
    QObject::connect(qApp, &QGuiApplication::commitDataRequest, &delegate, [&] { delegate.saveJobs(); });
    if (demo) {
        delegate.loginWindowController().setUsername(demo->userName);
        delegate.loginWindowController().setPassword(demo->password);
    }
    QTimer::singleShot(0, &delegate, [&] { delegate.applicationDidFinishLaunching(); });
    QCoreApplication::exec();
    instance.stopAnswering();
    windows.hideAll();
    if (delegate.endAllWork())
        return;
    // Nobody waits for a transfer that hangs; the destructors would.
    Log::warning("The end did not wait for a transfer that hangs");
    Log::shutDown();
    std::_Exit(EXIT_SUCCESS);
}

} // namespace

int main(int argc, char** argv)
{
    // Only the command line asks for them; the programs that this one starts need not see them either.
    static_cast<void>(PasswordVariables::take());
    HeapArenas::keepFew();
    Secrets::keepMemoryPrivate();
    Interruption::install();
    if (const auto code = endBeforeDisplay(argc, argv))
        return *code;
    QApplication qtApplication(argc, argv);
    std::setlocale(LC_NUMERIC, "C"); // Qt takes the user's; numbers on the wire and in JSON have points.
    const auto read = DesktopCommandLine::read(argc, argv);
    if (const int* const code = std::get_if<int>(&read))
        return *code;
    const auto& line = std::get<DesktopCommandLine>(read);
    QCoreApplication::setApplicationName(UserFolders::executableName);
    QCoreApplication::setApplicationVersion(applicationVersion());
    QGuiApplication::setDesktopFileName(QStringLiteral("quillpost"));
    QApplication::setWindowIcon(QuillpostIcons::application());
    const MainThread::Attachment mainThread;

    QtUserDialogs dialogs;
    UserPlaces places(line.demo ? UserPlaces::Kind::Demo : UserPlaces::Kind::Own);
    SingleInstance instance(places.settingsPath());
    if (const auto outcome = instance.start(); outcome != SingleInstance::Outcome::First)
        return endBehindOther(dialogs, instance, outcome);
    DemoServiceChild demoService;
    std::optional<DemoServiceChild::Account> demo;
    if (line.demo) {
        auto started = demoService.start();
        if (const auto* const error = std::get_if<Error>(&started))
            return failToStart(dialogs, *error);
        demo = std::get<DemoServiceChild::Account>(std::move(started));
    }
    const auto hosts = ServiceHosts::read(demo ? demo->secureHost : line.secureHost,
                                          demo ? demo->fileHost : line.fileHost, places.defaults());
    if (const auto* const error = std::get_if<Error>(&hosts))
        return failToStart(dialogs, *error);

    runUntilQuit({.defaults = places.defaults(),
                  .dialogs = dialogs,
                  .hosts = std::get<ServiceHosts>(hosts),
                  .open = [](const QUrl& url) { return QDesktopServices::openUrl(url); },
                  .statusCheckTimeInterval = line.pollInterval,
                  .instructionsCheckTimeInterval = line.pollInterval,
                  .logFolder = places.logFolder()},
                 demo, instance);
    return EXIT_SUCCESS;
}
