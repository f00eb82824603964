#include "foundation/FileLogger.h"

#include "foundation/PrivateFolder.h"

#include <QDateTime>
#include <QDir>
#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr std::size_t bufferLimit = 64 * 1024;
const QString filePattern = QStringLiteral("Quillpost *.log");

void writeWhole(int descriptor, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written < 0) {
            if (errno == EINTR)
                continue;
            return; // A full disk must not stop the program; the lines are lost.
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

// A new file with this program's lock on it, or -1 with errno as it was; EWOULDBLOCK where another program holds it.
int openLocked(const QByteArray& path)
{
    const int descriptor = ::open(path.constData(), O_WRONLY | O_CREAT | O_EXCL | O_APPEND | O_CLOEXEC, 0600);
    if (descriptor < 0)
        return -1;
    struct stat facts = {};
    if (::flock(descriptor, LOCK_EX | LOCK_NB) == 0 && ::fstat(descriptor, &facts) == 0 && facts.st_nlink > 0)
        return descriptor;
    ::close(descriptor);
    errno = EWOULDBLOCK;
    return -1;
}

} // namespace

FileLogger::FileLogger(QString folder, std::int64_t maximumFileSize)
    : m_folder(std::move(folder)), m_maximumFileSize(maximumFileSize)
{
    const std::scoped_lock lock(m_mutex);
    roll();
}

FileLogger::~FileLogger()
{
    const std::scoped_lock lock(m_mutex);
    writeOut();
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

bool FileLogger::isOpen() const
{
    const std::scoped_lock lock(m_mutex);
    return m_descriptor >= 0;
}

QStringList FileLogger::sortedLogFilePaths() const
{
    const std::scoped_lock lock(m_mutex);
    QStringList paths;
    if (m_descriptor >= 0)
        paths << m_path;
    const QDir folder(m_folder);
    // The names begin with the time of the run, so the reversed order by name is newest first.
    for (const QString& name : folder.entryList({filePattern}, QDir::Files, QDir::Name | QDir::Reversed)) {
        if (const QString path = folder.filePath(name); path != m_path)
            paths << path;
    }
    return paths;
}

void FileLogger::append(std::string_view line)
{
    const std::scoped_lock lock(m_mutex);
    if (m_descriptor < 0)
        return;
    if (m_size + static_cast<std::int64_t>(m_buffer.size() + line.size()) > m_maximumFileSize) {
        m_buffer.clear();
        if (::ftruncate(m_descriptor, 0) == 0)
            m_size = 0;
    }
    m_buffer += line.substr(0, static_cast<std::size_t>(m_maximumFileSize));
    if (m_buffer.size() >= bufferLimit)
        writeOut();
}

void FileLogger::flush()
{
    const std::scoped_lock lock(m_mutex);
    writeOut();
}

void FileLogger::roll()
{
    if (!PrivateFolder::make(m_folder))
        return;
    deleteFilesOfEndedRuns();
    // Names hold the millisecond, so two that start in the same one must not share a file; and another program's
    // sweep may take a file away before it is locked. Either way the next name will do.
    constexpr int attempts = 1000;
    for (int attempt = 0; attempt < attempts && m_descriptor < 0; ++attempt) {
        m_path = QDir(m_folder).filePath(
            QStringLiteral("Quillpost %1 %2.log")
                .arg(QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH-mm-ss.zzz")))
                .arg(::getpid()));
        m_descriptor = openLocked(QFile::encodeName(m_path));
        if (m_descriptor < 0 && errno != EEXIST && errno != EWOULDBLOCK)
            return;
        if (m_descriptor < 0)
            ::usleep(200);
    }
}

void FileLogger::deleteFilesOfEndedRuns()
{
    const QDir folder(m_folder);
    for (const QString& name : folder.entryList({filePattern}, QDir::Files)) {
        const QByteArray path = QFile::encodeName(folder.filePath(name));
        const int descriptor = ::open(path.constData(), O_RDONLY | O_CLOEXEC);
        if (descriptor < 0)
            continue;
        // A running program holds its file's lock; the kernel lets go of it however that program ends.
        if (::flock(descriptor, LOCK_EX | LOCK_NB) == 0)
            ::unlink(path.constData());
        ::close(descriptor);
    }
}

void FileLogger::writeOut()
{
    if (m_descriptor < 0 || m_buffer.empty())
        return;
    writeWhole(m_descriptor, m_buffer);
    m_size += static_cast<std::int64_t>(m_buffer.size());
    m_buffer.clear();
}
