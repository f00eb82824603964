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

    const int folder =
        ::open(QFile::encodeName(QFileInfo(path).absolutePath()).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder >= 0) {
        ::fsync(folder);
        ::close(folder);
    }
    return std::nullopt;
}
