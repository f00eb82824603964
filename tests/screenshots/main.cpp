// Takes the pictures of the user guide: the real windows over the real engine, against the demo service in this
// process. Usage: quillpost-screenshots FOLDER SAMPLES [--dark]
#include "DesktopRun.h"

#include "app/QuillpostAppDelegate.h"
#include "engine/JobModel.h"
#include "ui/errors/SyncErrorList.h"
#include "ui/login/LoginWindowController.h"
#include "ui/submit/SubmitJobWindowController.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QPalette>
#include <QStyleFactory>
#include <QTreeView>
#include <QWidget>

#include <cstdio>
#include <cstdlib>

namespace {

void settle()
{
    QElapsedTimer since;
    since.start();
    // Longer than the list gathers changes for.
    DesktopRun::turnUntil("a moment", [&] { return since.hasExpired(700); });
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
    Photographer(QString folder, QString samples) : m_folder(std::move(folder)), m_run(std::move(samples), 4) {}
    void login();
    void submitWindow();
    void jobs();
    void others();

private:
    void take(const char* className, const QString& name) const;

    const QString m_folder;
    DesktopRun m_run;
};

void Photographer::take(const char* className, const QString& name) const
{
    settle();
    const QString path = m_folder + u'/' + name + QStringLiteral(".png");
    if (!DesktopRun::window(className).grab().save(path)) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
        std::exit(1);
    }
}

void Photographer::login()
{
    take("LoginWindow", QStringLiteral("login"));
    LoginWindowController& controller = m_run.delegate().loginWindowController();
    controller.setUsername(QStringLiteral("demo"));
    controller.setPassword(QStringLiteral("forgotten"));
    controller.performLogin();
    DesktopRun::turnUntil("the refusal", [&] { return !controller.waitingForResponse(); });
    take("LoginWindow", QStringLiteral("login-refused"));
    m_run.service().setDemandPasswordChange(true);
    controller.setPassword(QStringLiteral("demo1234"));
    controller.performLogin();
    DesktopRun::turnUntil("the demand for a new password", [&] { return controller.viewState() == 1; });
    take("LoginWindow", QStringLiteral("login-change"));
    controller.setTheNewPassword(QStringLiteral("a better one"));
    controller.setTheNewPasswordConfirm(QStringLiteral("a better one"));
    controller.changePassword();
    DesktopRun::turnUntil("the log-in", [&] { return !m_run.delegate().userName().isEmpty(); });
    take("MainWindow", QStringLiteral("main-empty"));
}

void Photographer::submitWindow()
{
    m_run.delegate().showSubmitJobWindow();
    SubmitJobWindowController& controller = m_run.delegate().submitJobWindowController();
    DesktopRun::turnUntil("the prices", [&] { return !controller.isGettingRatesInProgress(); });
    take("SubmitJobWindow", QStringLiteral("submit-empty"));
    controller.addTranscriptFile(m_run.transcript(QStringLiteral("Doe-Jane-2026-03-04.txt")));
    controller.addMediaFiles({m_run.recording(QStringLiteral("Doe volume 1.mp3"), QStringLiteral("4520")),
                              m_run.recording(QStringLiteral("Doe volume 2.mp3"), QStringLiteral("3125"))});
    controller.newShortCaptionEntered(QStringLiteral("Doe v. Example Rail"));
    DesktopRun::turnUntil("the recordings", [&] { return !controller.isReadingMediaFiles(); });
    take("SubmitJobWindow", QStringLiteral("submit-filled"));
    controller.cancelButton();
    controller.setJob(nullptr);
}

void Photographer::jobs()
{
    const QString volume1 = m_run.recording(QStringLiteral("Doe volume 1.mp3"), QStringLiteral("4520"));
    const QString volume2 = m_run.recording(QStringLiteral("Doe volume 2.mp3"), QStringLiteral("3125"));
    const auto done = m_run.submit(QStringLiteral("Doe-Jane-2026-03-04.txt"), {volume1, volume2});
    DesktopRun::turnUntil("a delivery", [&] { return done->status() == JobStatusCompleted; });
    m_run.service().setTurnaround(std::chrono::hours(1));
    const auto working = m_run.submit(QStringLiteral("Marsh-Ellen-2026-03-11.txt"), {volume1});
    DesktopRun::turnUntil("a job on the service", [&] { return working->status() == JobStatusOnServer; });
    m_run.service().addOverride("jobdetails.php", {.reply = "The account has no credit left", .times = 1});
    const auto refused = m_run.submit(QStringLiteral("Abara-Samuel-2026-03-12.txt"), {volume2});
    DesktopRun::turnUntil("a refusal", [&] { return !m_run.delegate().syncErrorList().errorList().isEmpty(); });
    m_run.service().addOverride("test_custupload2.php", {.hang = true});
    const auto hanging = m_run.submit(QStringLiteral("Okafor-Grace-2026-03-18.txt"), {volume1, volume2});
    DesktopRun::turnUntil("uploads", [&] { return m_run.service().hanging() > 1; });
    auto* const list = DesktopRun::window("MainWindow").findChild<QTreeView*>();
    list->expandAll();
    take("MainWindow", QStringLiteral("main"));
}

void Photographer::others()
{
    m_run.delegate().showPreferencesWindow();
    take("PreferencesWindow", QStringLiteral("preferences"));
    m_run.delegate().showErrorWindow();
    take("ErrorWindow", QStringLiteral("errors"));
    m_run.delegate().showCustomLogWindow();
    take("CustomLogWindow", QStringLiteral("log"));
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
    QDir().mkpath(arguments.at(1));
    Photographer photographer(arguments.at(1), arguments.at(2));
    photographer.login();
    photographer.submitWindow();
    photographer.jobs();
    photographer.others();
    return 0;
}
