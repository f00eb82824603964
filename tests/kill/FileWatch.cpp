#include "FileWatch.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>

#include <array>
#include <cstdint>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <unistd.h>

FileWatch::FileWatch(const QString& firstFolder, const QString& secondFolder, Changed changed)
    : m_changed(std::move(changed)), m_descriptor(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK)),
      m_end(::eventfd(0, EFD_CLOEXEC))
{
    for (const QString& folder : {firstFolder, secondFolder}) {
        QDir().mkpath(folder);
        watchFolder(QFile::encodeName(folder).toStdString());
        QDirIterator each(folder, QDir::Dirs | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
        while (each.hasNext())
            watchFolder(QFile::encodeName(each.next()).toStdString());
    }
    m_thread = std::thread([this] { threadProc(); });
}

FileWatch::~FileWatch()
{
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(m_end, &one, sizeof one);
    m_thread.join();
    ::close(m_descriptor);
    ::close(m_end);
}

void FileWatch::watchFolder(const std::string& path)
{
    const int watch = ::inotify_add_watch(m_descriptor, path.c_str(),
                                          IN_CREATE | IN_MODIFY | IN_CLOSE_WRITE | IN_MOVED_TO | IN_DELETE);
    if (watch >= 0)
        m_folders[watch] = path;
}

void FileWatch::threadProc()
{
    std::array<pollfd, 2> sources{pollfd{m_descriptor, POLLIN, 0}, pollfd{m_end, POLLIN, 0}};
    while (sources[1].revents == 0) {
        if (::poll(sources.data(), sources.size(), -1) > 0 && sources[0].revents != 0)
            readChanges();
    }
}

void FileWatch::readChanges()
{
    alignas(inotify_event) std::array<char, 16 * 1024> buffer;
    const ssize_t size = ::read(m_descriptor, buffer.data(), buffer.size());
    for (ssize_t at = 0; at < size;) {
        const auto* const event = reinterpret_cast<const inotify_event*>(buffer.data() + at);
        at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
        const auto folder = m_folders.find(event->wd);
        if (folder == m_folders.end() || event->len == 0)
            continue;
        const std::string path = folder->second + '/' + event->name;
        if ((event->mask & IN_ISDIR) != 0)
            watchFolder(path);
        m_changed(path);
    }
}
