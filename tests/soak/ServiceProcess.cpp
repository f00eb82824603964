#include "ServiceProcess.h"

#include <QElapsedTimer>

#include <csignal>
#include <sys/prctl.h>

namespace {

constexpr int longestStart = 20000; // milliseconds

} // namespace

ServiceProcess::ServiceProcess()
{
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
}

ServiceProcess::~ServiceProcess()
{
    m_process.disconnect(this);
    m_process.closeWriteChannel();
    if (!m_process.waitForFinished(2000)) {
        m_process.kill();
        m_process.waitForFinished();
    }
}

bool ServiceProcess::start()
{
    m_process.start(QStringLiteral(SOAK_SERVICE), QStringList());
    QElapsedTimer since;
    since.start();
    const auto nextLine = [&] {
        while (!m_process.canReadLine() && !since.hasExpired(longestStart) && m_process.state() != QProcess::NotRunning)
            m_process.waitForReadyRead(100);
        return QString::fromUtf8(m_process.readLine()).trimmed();
    };
    m_secureHost = nextLine();
    m_fileHost = nextLine();
    connect(&m_process, &QProcess::readyReadStandardOutput, this, &ServiceProcess::readLines);
    connect(&m_process, &QProcess::finished, this, &ServiceProcess::ended);
    return !m_fileHost.isEmpty();
}

void ServiceProcess::order(const QString& line)
{
    m_process.write(line.toUtf8() + '\n');
}

void ServiceProcess::readLines()
{
    while (m_process.canReadLine()) {
        const QByteArray line = m_process.readLine().trimmed();
        if (line.startsWith("forgotten "))
            Q_EMIT forgotten(line.mid(10).toInt());
    }
}
