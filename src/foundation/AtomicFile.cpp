#include "foundation/AtomicFile.h"

#include "foundation/Text.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <fcntl.h>
#include <unistd.h>

std::optional<Error> AtomicFile::write(const QString& path, const QByteArray& contents)
{
    // QSaveFile flushes the new file to disk before it renames it, but also renames one whose buffer it could not
    // write: on a full disk that would put an empty file in the place of the old one.
    QSaveFile file(path);
    file.setDirectWriteFallback(false);
    const bool written = file.open(QIODevice::WriteOnly) &&
                         file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner) &&
                         file.write(contents) == contents.size() && file.flush() && file.commit();
    if (!written)
        return Error{ErrorDomain::Platform, static_cast<int>(file.error()),
                     Text::format("{}: {}", path, file.errorString())};

    flush(QFileInfo(path).absolutePath());
    return std::nullopt;
}

bool AtomicFile::flush(const QString& path)
{
    const int descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    const bool isFlushed = ::fsync(descriptor) == 0;
    ::close(descriptor);
    return isFlushed;
}
