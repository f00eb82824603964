#include "app/DemoServiceChild.h"

#include "foundation/Text.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <csignal>
#include <sys/prctl.h>

namespace {

constexpr std::chrono::milliseconds longestStart{15000};
constexpr std::chrono::milliseconds longestEnd{500};
constexpr std::chrono::milliseconds checkRate{50};
const QString demoUser = QStringLiteral("demo");
const QString demoPassword = QStringLiteral("demo1234");
// Long enough to see the states of a job go by.
const QString turnaroundInSeconds = QStringLiteral("8");

Error failure(const QString& words)
{
    return {ErrorDomain::Platform, 0, words};
}

} // namespace

DemoServiceChild::DemoServiceChild()
{
    m_process.setProcessChannelMode(QProcess::MergedChannels);
    m_process.setStandardOutputFile(m_folder.filePath(QStringLiteral("output")));
    m_process.setStandardInputFile(QProcess::nullDevice());
    m_process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGTERM); });
}

DemoServiceChild::~DemoServiceChild()
{
    if (m_process.state() == QProcess::NotRunning)
        return;
    m_process.terminate();
    if (!m_process.waitForFinished(static_cast<int>(longestEnd.count()))) {
        m_process.kill();
        m_process.waitForFinished();
    }
}

QString DemoServiceChild::programPath()
{
    const QString name = QStringLiteral("quillpost-demo-service");
    const QFileInfo beside(QCoreApplication::applicationDirPath() + u'/' + name);
    return beside.isExecutable() ? beside.filePath() : QStandardPaths::findExecutable(name);
}

std::variant<DemoServiceChild::Account, Error> DemoServiceChild::start(const QString& program)
{
    if (program.isEmpty())
        return failure(QStringLiteral("The demo service (quillpost-demo-service) is not installed."));
    const QString readyFile = m_folder.filePath(QStringLiteral("ready"));
    m_process.start(program,
                    {QStringLiteral("--ready-file"), readyFile, QStringLiteral("--user"), demoUser,
                     QStringLiteral("--password"), demoPassword, QStringLiteral("--turnaround"), turnaroundInSeconds});
    QElapsedTimer since;
    since.start();
    // Nothing is on the screen yet, so nothing waits for this.
    while (!QFile::exists(readyFile)) {
        m_process.waitForFinished(static_cast<int>(checkRate.count()));
        if (m_process.state() == QProcess::NotRunning || since.hasExpired(longestStart.count())) {
            QFile output(m_folder.filePath(QStringLiteral("output")));
            const QByteArray words = output.open(QIODevice::ReadOnly) ? output.readAll().trimmed() : QByteArray();
            return failure(Text::format("The demo service did not start: {}",
                                        words.isEmpty() ? m_process.errorString() : QString::fromUtf8(words)));
        }
    }
    return account();
}

DemoServiceChild::Account DemoServiceChild::account() const
{
    Account account{{}, {}, demoUser, demoPassword};
    QFile ready(m_folder.filePath(QStringLiteral("ready")));
    if (!ready.open(QIODevice::ReadOnly))
        return account;
    const auto lines = QString::fromUtf8(ready.readAll()).split(u'\n');
    for (const QString& line : lines) {
        if (line.startsWith(u"SECURE_HOST="))
            account.secureHost = line.section(u'=', 1);
        else if (line.startsWith(u"FILE_HOST="))
            account.fileHost = line.section(u'=', 1);
    }
    return account;
}
