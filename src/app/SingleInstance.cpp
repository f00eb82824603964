#include "app/SingleInstance.h"

#include "foundation/Log.h"
#include "foundation/PrivateFolder.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>
#include <QLocalSocket>
#include <QThread>

namespace {

const QByteArray request = QByteArrayLiteral("come");
const QByteArray reply = QByteArrayLiteral("here\n");
constexpr qint64 longestRequest = 4096;

QString lockPath(const QString& settingsPath)
{
    return QFileInfo(settingsPath).absolutePath() + QStringLiteral("/quillpost");
}

// In the folder that the system keeps for such things. Its paths are short, as those of sockets must be.
QString socketPath(const QString& settingsPath)
{
    const QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    const auto hash = QCryptographicHash::hash(settingsPath.toUtf8(), QCryptographicHash::Sha1).toHex().left(16);
    return (QFileInfo(folder).isDir() ? folder : QFileInfo(settingsPath).absolutePath()) +
           QStringLiteral("/quillpost-") + QString::fromLatin1(hash);
}

} // namespace

SingleInstance::SingleInstance(const QString& settingsPath)
    : m_settingsPath(settingsPath), m_socketPath(socketPath(settingsPath))
{
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, &SingleInstance::answer);
}

SingleInstance::Outcome SingleInstance::start(std::chrono::milliseconds patience)
{
    PrivateFolder::make(QFileInfo(m_settingsPath).absolutePath());
    const QDeadlineTimer deadline(patience);
    do {
        // Also when the other is just ending.
        if (m_lock.take(lockPath(m_settingsPath))) {
            listen();
            return Outcome::First;
        }
        if (askOther(deadline))
            return Outcome::OtherCame;
        QThread::msleep(50); // It may just be starting.
    } while (!deadline.hasExpired());
    return Outcome::OtherIsSilent;
}

void SingleInstance::stopAnswering()
{
    m_server.close();
}

QString SingleInstance::otherProgram() const
{
    return SavedStateLock::holder(lockPath(m_settingsPath));
}

void SingleInstance::listen()
{
    // Left behind by a program that crashed: whoever has the lock is alone.
    QFile::remove(m_socketPath);
    if (!m_server.listen(m_socketPath))
        Log::warning("A second start cannot bring this program to the front: {}: {}", m_socketPath,
                     m_server.errorString());
}

void SingleInstance::answer()
{
    QLocalSocket* const socket = m_server.nextPendingConnection();
    connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
    connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
        if (!socket->canReadLine()) {
            if (socket->bytesAvailable() > longestRequest)
                socket->abort();
            return;
        }
        const QByteArray line = socket->readLine(longestRequest).trimmed();
        if (!line.startsWith(request)) {
            socket->abort();
            return;
        }
        Q_EMIT wanted(QString::fromUtf8(line.sliced(request.size()).trimmed()));
        socket->write(reply);
        socket->disconnectFromServer();
    });
}

bool SingleInstance::askOther(const QDeadlineTimer& deadline) const
{
    const auto left = [&] { return static_cast<int>(deadline.remainingTime()); };
    QLocalSocket socket;
    socket.connectToServer(m_socketPath);
    if (!socket.waitForConnected(left()))
        return false;
    socket.write(request + ' ' + qgetenv("XDG_ACTIVATION_TOKEN") + '\n');
    QByteArray said;
    while (said != reply && !deadline.hasExpired() && socket.waitForReadyRead(left()))
        said += socket.readAll();
    return said == reply;
}
