#include "commands/DeliveryFlush.h"

#include "foundation/AtomicFile.h"

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <unistd.h>

std::optional<int> DeliveryFlush::flush(const QString& folder)
{
    bool isFlushed = AtomicFile::flush(folder);
    int files = 0;
    QDirIterator each(folder, QDir::Files | QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot | QDir::NoSymLinks,
                      QDirIterator::Subdirectories);
    while (each.hasNext()) {
        const QString path = each.next();
        isFlushed = AtomicFile::flush(path) && isFlushed;
        files += each.fileInfo().isDir() ? 0 : 1;
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
