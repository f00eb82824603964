// Takes the pictures of the user guide: the real windows over the real engine, against the demo service in this
// process. Usage: quillpost-screenshots FOLDER SAMPLES [--dark]
#include "app/DesktopWindows.h"
#include "app/QuillpostAppDelegate.h"
#include "demo-service/Service.h"
#include "engine/JobModel.h"
#include "foundation/MainThread.h"
#include "foundation/UserDefaults.h"
#include "settings/Preferences.h"
#include "settings/SettingsKey.h"
#include "ui/UserDialogs.h"
#include "ui/errors/SyncErrorList.h"
#include "ui/login/LoginWindowController.h"
#include "ui/submit/SubmitJobWindowController.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QPalette>
#include <QProcess>
#include <QStyleFactory>
#include <QTemporaryDir>
#include <QTreeView>
#include <QWidget>

#include <cstdio>
#include <cstdlib>
#include <functional>

namespace {

constexpr std::chrono::seconds longestWait{60};

// Nobody answers here: nothing is asked in what these pictures show.
class NoDialogs : public UserDialogs
{
public:
    void warn(const QString&, const QString&) override {}
    bool ask(const Question&) override { return true; }
    std::optional<QStringList> chooseFile(const QString&, const QString&) override { return std::nullopt; }
    std::optional<QStringList> chooseFiles(const QString&, const QString&) override { return std::nullopt; }
    std::optional<QStringList> chooseFolder(const QString&, const QString&) override { return std::nullopt; }
};

void turnUntil(const char* what, const std::function<bool()>& condition)
{
    QElapsedTimer since;
    since.start();
    while (!condition()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        if (since.hasExpired(std::chrono::milliseconds(longestWait).count())) {
            std::fprintf(stderr, "waited in vain: %s\n", what);
            std::exit(1);
        }
    }
}

void settle()
{
    QElapsedTimer since;
    since.start();
    // Longer than the list gathers changes for.
    turnUntil("a moment", [&] { return since.hasExpired(700); });
}

QPalette darkPalette()
{
    QPalette palette;
    const QColor ground(0x2b, 0x2b, 0x2e);
    const QColor text(0xe8, 0xe8, 0xe8);
    for (const auto role : {QPalette::Window, QPalette::Button, QPalette::AlternateBase})
        palette.setColor(role, ground);
    for (const auto role : {QPalette::Base, QPalette::ToolTipBase})
        palette.setColor(role, ground.darker(130));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
        palette.setColor(role, text);
    palette.setColor(QPalette::PlaceholderText, QColor(0x9a, 0x9a, 0x9a));
    palette.setColor(QPalette::Link, QColor(0x6a, 0xb0, 0xff));
    palette.setColor(QPalette::Highlight, QColor(0x2f, 0x6f, 0xb5));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(0x80, 0x80, 0x80));
    return palette;
}

class Photographer
{
public:
    Photographer(QString folder, QString samples) : m_folder(std::move(folder)), m_samples(std::move(samples)) {}
    void run();

private:
    [[nodiscard]] static QWidget& window(const char* className);
    void take(const char* className, const QString& name) const;
    [[nodiscard]] QString recording(const QString& name, const QString& seconds) const;
    [[nodiscard]] std::shared_ptr<Job> submit(const QString& transcript, const QStringList& media);
    void login();
    void submitWindow();
    void jobs();
    void others();

    const QString m_folder;
    const QString m_samples;
    QTemporaryDir m_home;
    NoDialogs m_dialogs;
    DemoService::Service m_service;
    std::unique_ptr<UserDefaults> m_defaults;
    std::unique_ptr<QuillpostAppDelegate> m_delegate;
};

QWidget& Photographer::window(const char* className)
{
    for (QWidget* const widget : QApplication::topLevelWidgets()) {
        if (qstrcmp(widget->metaObject()->className(), className) == 0)
            return *widget;
    }
    std::fprintf(stderr, "no window %s\n", className);
    std::exit(1);
}

void Photographer::take(const char* className, const QString& name) const
{
    settle();
    const QString path = m_folder + u'/' + name + QStringLiteral(".png");
    if (!window(className).grab().save(path)) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
        std::exit(1);
    }
}

QString Photographer::recording(const QString& name, const QString& seconds) const
{
    const QString path = m_home.filePath(name);
    if (!QFile::exists(path))
        QProcess::execute(QStringLiteral("ffmpeg"),
                          {QStringLiteral("-nostdin"), QStringLiteral("-loglevel"), QStringLiteral("error"),
                           QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                           QStringLiteral("sine=frequency=300:sample_rate=11025"), QStringLiteral("-t"), seconds,
                           path});
    return path;
}

std::shared_ptr<Job> Photographer::submit(const QString& transcript, const QStringList& media)
{
    SubmitJobWindowController& controller = m_delegate->submitJobWindowController();
    m_delegate->showSubmitJobWindow();
    turnUntil("the prices", [&] { return !controller.isGettingRatesInProgress(); });
    const QString copy = m_home.filePath(transcript);
    QFile::copy(m_samples + QStringLiteral("/Doe-Jane-2026-03-04.txt"), copy);
    controller.addTranscriptFile(copy);
    controller.addMediaFiles(media);
    turnUntil("the recordings", [&] { return !controller.isReadingMediaFiles(); });
    const auto job = controller.job();
    controller.submitButton();
    return job;
}

void Photographer::login()
{
    take("LoginWindow", QStringLiteral("login"));
    LoginWindowController& controller = m_delegate->loginWindowController();
    controller.setUsername(QStringLiteral("demo"));
    controller.setPassword(QStringLiteral("forgotten"));
    controller.performLogin();
    turnUntil("the refusal", [&] { return !controller.waitingForResponse(); });
    take("LoginWindow", QStringLiteral("login-refused"));
    m_service.setDemandPasswordChange(true);
    controller.setPassword(QStringLiteral("demo1234"));
    controller.performLogin();
    turnUntil("the demand for a new password", [&] { return controller.viewState() == 1; });
    take("LoginWindow", QStringLiteral("login-change"));
    controller.setTheNewPassword(QStringLiteral("a better one"));
    controller.setTheNewPasswordConfirm(QStringLiteral("a better one"));
    controller.changePassword();
    turnUntil("the log-in", [&] { return !m_delegate->userName().isEmpty(); });
    take("MainWindow", QStringLiteral("main-empty"));
}

void Photographer::submitWindow()
{
    m_delegate->showSubmitJobWindow();
    SubmitJobWindowController& controller = m_delegate->submitJobWindowController();
    turnUntil("the prices", [&] { return !controller.isGettingRatesInProgress(); });
    take("SubmitJobWindow", QStringLiteral("submit-empty"));
    controller.addTranscriptFile(m_samples + QStringLiteral("/Doe-Jane-2026-03-04.txt"));
    controller.addMediaFiles({recording(QStringLiteral("Doe volume 1.mp3"), QStringLiteral("4520")),
                              recording(QStringLiteral("Doe volume 2.mp3"), QStringLiteral("3125"))});
    controller.newShortCaptionEntered(QStringLiteral("Doe v. Example Rail"));
    turnUntil("the recordings", [&] { return !controller.isReadingMediaFiles(); });
    take("SubmitJobWindow", QStringLiteral("submit-filled"));
    controller.cancelButton();
    controller.setJob(nullptr);
}

void Photographer::jobs()
{
    const QString volume1 = recording(QStringLiteral("Doe volume 1.mp3"), QStringLiteral("4520"));
    const QString volume2 = recording(QStringLiteral("Doe volume 2.mp3"), QStringLiteral("3125"));
    const auto done = submit(QStringLiteral("Doe-Jane-2026-03-04.txt"), {volume1, volume2});
    turnUntil("a delivery", [&] { return done->status() == JobStatusCompleted; });
    m_service.setTurnaround(std::chrono::hours(1));
    const auto working = submit(QStringLiteral("Marsh-Ellen-2026-03-11.txt"), {volume1});
    turnUntil("a job on the service", [&] { return working->status() == JobStatusOnServer; });
    m_service.addOverride("jobdetails.php", {.reply = "The account has no credit left", .times = 1});
    const auto refused = submit(QStringLiteral("Abara-Samuel-2026-03-12.txt"), {volume2});
    turnUntil("a refusal", [&] { return !m_delegate->syncErrorList().errorList().isEmpty(); });
    m_service.addOverride("test_custupload2.php", {.hang = true});
    const auto hanging = submit(QStringLiteral("Okafor-Grace-2026-03-18.txt"), {volume1, volume2});
    turnUntil("uploads", [&] { return m_service.hanging() > 1; });
    auto* const list = window("MainWindow").findChild<QTreeView*>();
    list->expandAll();
    take("MainWindow", QStringLiteral("main"));
}

void Photographer::others()
{
    m_delegate->showPreferencesWindow();
    take("PreferencesWindow", QStringLiteral("preferences"));
    m_delegate->showErrorWindow();
    take("ErrorWindow", QStringLiteral("errors"));
    m_delegate->showCustomLogWindow();
    take("CustomLogWindow", QStringLiteral("log"));
}

void Photographer::run()
{
    m_defaults = std::make_unique<UserDefaults>(m_home.filePath(QStringLiteral("Quillpost.ini")));
    UserDefaults::setStandard(m_defaults.get());
    Preferences::initialize(*m_defaults, /*processorCount=*/4, m_home.filePath(QStringLiteral("data")), m_home.path());
    const auto hosts = ServiceHosts::fromTexts(QString::fromStdString(m_service.secureHost()),
                                               QString::fromStdString(m_service.fileHost()));
    m_delegate = std::make_unique<QuillpostAppDelegate>(
        QuillpostAppDelegate::Environment{.defaults = *m_defaults,
                                          .dialogs = m_dialogs,
                                          .hosts = std::get<ServiceHosts>(hosts),
                                          .open = [](const QUrl&) { return true; },
                                          .statusCheckTimeInterval = 0.3,
                                          .instructionsCheckTimeInterval = 0.3,
                                          .logFolder = m_home.filePath(QStringLiteral("log"))});
    {
        DesktopWindows windows(*m_delegate);
        m_delegate->applicationDidFinishLaunching();
        login();
        submitWindow();
        jobs();
        others();
        windows.hideAll();
    }
    m_service.releaseHangs();
    if (!m_delegate->endAllWork())
        std::_Exit(EXIT_SUCCESS);
    m_delegate.reset();
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 3) {
        std::fputs("usage: quillpost-screenshots FOLDER SAMPLES [--dark]\n", stderr);
        return 1;
    }
    if (arguments.contains(QStringLiteral("--dark")))
        QApplication::setPalette(darkPalette());
    const MainThread::Attachment mainThread;
    QDir().mkpath(arguments.at(1));
    Photographer(arguments.at(1), arguments.at(2)).run();
    return 0;
}
