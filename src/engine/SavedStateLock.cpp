#include "engine/SavedStateLock.h"

#include "foundation/Log.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace {

QString lockPath(const QString& stateFilePath)
{
    return stateFilePath + QStringLiteral(".lock");
}

} // namespace

SavedStateLock::~SavedStateLock()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

bool SavedStateLock::take(const QString& stateFilePath)
{
    if (m_descriptor < 0)
        m_descriptor =
            ::open(QFile::encodeName(lockPath(stateFilePath)).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    // A file system without locks must not keep the user from working.
    if (m_descriptor < 0 || (::flock(m_descriptor, LOCK_EX | LOCK_NB) != 0 && errno != EWOULDBLOCK)) {
        Log::warning("{} cannot be locked: {}", lockPath(stateFilePath), qt_error_string(errno));
        return true;
    }
    if (::flock(m_descriptor, LOCK_EX | LOCK_NB) != 0)
        return false;
    const QByteArray name = QFileInfo(QCoreApplication::applicationFilePath()).fileName().toUtf8();
    const QByteArray words = name + " (process " + QByteArray::number(::getpid()) + ")";
    [[maybe_unused]] const bool isEmptied = ::ftruncate(m_descriptor, 0) == 0;
    [[maybe_unused]] const ssize_t written =
        ::pwrite(m_descriptor, words.constData(), static_cast<std::size_t>(words.size()), 0);
    return true;
}

QString SavedStateLock::holder(const QString& stateFilePath)
{
    QFile file(lockPath(stateFilePath));
    const QString words = file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.read(200)) : QString();
    return words.isEmpty() ? QStringLiteral("another program") : words;
}
