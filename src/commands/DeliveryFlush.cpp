#include "commands/DeliveryFlush.h"

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

bool flushOne(const QString& path, int flags)
{
    const int descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | flags);
    if (descriptor < 0)
        return false;
    const bool isFlushed = ::fsync(descriptor) == 0;
    ::close(descriptor);
    return isFlushed;
}

// By the system's own time: what is unpacked has the dates that the archive gives.
bool isChangedSince(const QString& path, std::chrono::system_clock::time_point since)
{
    struct stat status
    {};
    if (::lstat(QFile::encodeName(path).constData(), &status) != 0 || !S_ISREG(status.st_mode))
        return false;
    // The kernel's file times lag behind its clock by a tick.
    return std::chrono::system_clock::from_time_t(status.st_ctime) >= since - std::chrono::seconds(2);
}

} // namespace

bool DeliveryFlush::flush(const QString& folder, std::chrono::system_clock::time_point since)
{
    bool isFlushed = flushOne(folder, O_DIRECTORY);
    QDirIterator each(folder, QDir::Files | QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot | QDir::NoSymLinks,
                      QDirIterator::Subdirectories);
    while (each.hasNext()) {
        const QString path = each.next();
        if (each.fileInfo().isDir())
            isFlushed = flushOne(path, O_DIRECTORY) && isFlushed;
        else if (isChangedSince(path, since))
            isFlushed = flushOne(path, 0) && isFlushed;
    }
    return isFlushed;
}
