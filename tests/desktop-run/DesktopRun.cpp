#include "DesktopRun.h"

#include "app/DesktopWindows.h"
#include "app/QuillpostAppDelegate.h"
#include "settings/Preferences.h"
#include "ui/login/LoginWindowController.h"
#include "ui/submit/SubmitJobWindowController.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTimer>
#include <QWidget>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr std::chrono::seconds longestWait{300};

} // namespace

DesktopRun::DesktopRun(QString samples, int processorCount, const std::optional<ServiceHosts>& elsewhere)
    : m_samples(std::move(samples))
{
    m_defaults = std::make_unique<UserDefaults>(m_home.filePath(QStringLiteral("Quillpost.ini")));
    UserDefaults::setStandard(m_defaults.get());
    Preferences::initialize(*m_defaults, processorCount, m_home.filePath(QStringLiteral("data")), m_home.path());
    const auto demo = ServiceHosts::fromTexts(QString::fromStdString(m_service.secureHost()),
                                              QString::fromStdString(m_service.fileHost()));
    m_delegate = std::make_unique<QuillpostAppDelegate>(
        QuillpostAppDelegate::Environment{.defaults = *m_defaults,
                                          .dialogs = m_dialogs,
                                          .hosts = elsewhere.value_or(std::get<ServiceHosts>(demo)),
                                          .open = [](const QUrl&) { return true; },
                                          .statusCheckTimeInterval = 0.3,
                                          .instructionsCheckTimeInterval = 0.3,
                                          .logFolder = m_home.filePath(QStringLiteral("log"))});
    m_windows = std::make_unique<DesktopWindows>(*m_delegate);
    m_delegate->applicationDidFinishLaunching();
}

DesktopRun::~DesktopRun()
{
    m_windows->hideAll();
    m_windows.reset();
    m_service.releaseHangs();
    if (!m_delegate->endAllWork())
        std::_Exit(EXIT_SUCCESS);
    m_delegate.reset();
}

QString DesktopRun::transcript(const QString& name) const
{
    const QString path = m_home.filePath(name);
    QFile::copy(m_samples + QStringLiteral("/Doe-Jane-2026-03-04.txt"), path);
    return path;
}

QWidget& DesktopRun::window(const char* className)
{
    for (QWidget* const widget : QApplication::topLevelWidgets()) {
        if (qstrcmp(widget->metaObject()->className(), className) == 0)
            return *widget;
    }
    std::fprintf(stderr, "no window %s\n", className);
    std::exit(1);
}

void DesktopRun::logIn()
{
    LoginWindowController& controller = m_delegate->loginWindowController();
    controller.setUsername(QStringLiteral("demo"));
    controller.setPassword(QStringLiteral("demo1234"));
    controller.performLogin();
    turnUntil("the log-in", [&] { return !m_delegate->userName().isEmpty(); });
}

QString DesktopRun::recording(const QString& name, const QString& seconds) const
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

std::shared_ptr<Job> DesktopRun::submit(const QString& name, const QStringList& media)
{
    SubmitJobWindowController& controller = m_delegate->submitJobWindowController();
    m_delegate->showSubmitJobWindow();
    turnUntil("the prices", [&] { return !controller.isGettingRatesInProgress(); });
    controller.addTranscriptFile(transcript(name));
    controller.addMediaFiles(media);
    turnUntil("the recordings", [&] { return !controller.isReadingMediaFiles(); });
    const auto job = controller.job();
    controller.submitButton();
    return job;
}

void DesktopRun::turnUntil(const char* what, const std::function<bool()>& condition)
{
    QElapsedTimer since;
    since.start();
    QTimer tick; // asleep in between, as a program is
    tick.start(std::chrono::milliseconds(10));
    while (!condition()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        if (since.hasExpired(std::chrono::milliseconds(longestWait).count())) {
            std::fprintf(stderr, "waited in vain: %s\n", what);
            std::exit(1);
        }
    }
}
