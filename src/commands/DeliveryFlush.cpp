#include "commands/DeliveryFlush.h"

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
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

} // namespace

std::optional<int> DeliveryFlush::flush(const QString& folder)
{
    bool isFlushed = flushOne(folder, O_DIRECTORY);
    int files = 0;
    QDirIterator each(folder, QDir::Files | QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot | QDir::NoSymLinks,
                      QDirIterator::Subdirectories);
    while (each.hasNext()) {
        const QString path = each.next();
        const bool isFolder = each.fileInfo().isDir();
        isFlushed = flushOne(path, isFolder ? O_DIRECTORY : 0) && isFlushed;
        files += isFolder ? 0 : 1;
    }
    return isFlushed ? std::optional(files) : std::nullopt;
}

bool DeliveryFlush::flushFileSystem(const QString& folder)
{
    const int descriptor = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    const bool isFlushed = ::syncfs(descriptor) == 0;
    ::close(descriptor);
    return isFlushed;
}
