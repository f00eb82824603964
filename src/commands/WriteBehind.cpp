#include "commands/WriteBehind.h"

#include "foundation/Log.h"

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <unistd.h>
#include <utility>

WriteBehind::WriteBehind()
    : m_thread([this] {
          Log::setThreadName("write behind");
          run();
      })
{}

WriteBehind::~WriteBehind()
{
    stop();
    m_thread.join();
}

void WriteBehind::add(const QString& path)
{
    {
        const std::scoped_lock lock(m_mutex);
        m_queue.push_back(path);
    }
    m_changed.notify_all();
}

int WriteBehind::wait()
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_isStopped || (m_queue.empty() && !m_isWriting); });
    return m_written;
}

void WriteBehind::stop()
{
    {
        const std::scoped_lock lock(m_mutex);
        m_isStopped = true;
    }
    m_changed.notify_all();
}

bool WriteBehind::isStopped()
{
    const std::scoped_lock lock(m_mutex);
    return m_isStopped;
}

void WriteBehind::run()
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [this] { return m_isStopped || !m_queue.empty(); });
        if (m_isStopped)
            return;
        const QString path = std::exchange(m_queue.front(), {});
        m_queue.pop_front();
        m_isWriting = true;
        lock.unlock();
        write(path);
        lock.lock();
        m_isWriting = false;
        m_changed.notify_all();
    }
}

void WriteBehind::write(const QString& path)
{
    const QFileInfo entry(path);
    if (!entry.isDir() || entry.isSymLink()) {
        writeFile(path);
        return;
    }
    QDirIterator each(path, QDir::Files | QDir::Hidden | QDir::NoSymLinks, QDirIterator::Subdirectories);
    while (each.hasNext() && !isStopped())
        writeFile(each.next());
}

// The data alone: the names and sizes go with the flush at the end, all together.
void WriteBehind::writeFile(const QString& path)
{
    const int descriptor =
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    const bool isWritten =
        ::sync_file_range(descriptor, 0, 0,
                          SYNC_FILE_RANGE_WAIT_BEFORE | SYNC_FILE_RANGE_WRITE | SYNC_FILE_RANGE_WAIT_AFTER) == 0;
    ::close(descriptor);
    if (!isWritten)
        return;
    const std::scoped_lock lock(m_mutex);
    ++m_written;
}
