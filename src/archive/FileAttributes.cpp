#include "archive/FileAttributes.h"

#include "foundation/Text.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <array>
#include <cerrno>
#include <climits>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// As many as the kernel follows.
constexpr int mostLinks = 40;

void setError(Error* error, const QString& path, int number)
{
    if (error != nullptr)
        *error = {.domain = ErrorDomain::Platform,
                  .code = number,
                  .localizedDescription = Text::format("{}: {}", path, qt_error_string(number))};
}

std::optional<FileAttributes::Attributes> attributes(const QString& path, bool followingSymLinks, int linksLeft,
                                                     Error* error)
{
    struct stat status
    {};
    if (lstat(QFile::encodeName(path).constData(), &status) != 0) {
        setError(error, path, errno);
        return std::nullopt;
    }
    const bool isLink = S_ISLNK(status.st_mode);
    if (followingSymLinks && isLink) {
        std::array<char, PATH_MAX> target{};
        const ssize_t length = readlink(QFile::encodeName(path).constData(), target.data(), target.size());
        if (length < 0 || linksLeft == 0) {
            setError(error, path, linksLeft == 0 ? ELOOP : errno);
            return std::nullopt;
        }
        // A relative target counts from the link's own folder.
        const QString targetPath = QFile::decodeName(QByteArray(target.data(), length));
        return attributes(QDir(QFileInfo(path).path()).filePath(targetPath), true, linksLeft - 1, error);
    }
    const qint64 milliseconds = status.st_mtim.tv_sec * 1000LL + status.st_mtim.tv_nsec / 1'000'000;
    return FileAttributes::Attributes{.modificationDate = QDateTime::fromMSecsSinceEpoch(milliseconds),
                                      .size = static_cast<std::uint64_t>(status.st_size),
                                      .isSymbolicLink = isLink};
}

} // namespace

std::optional<FileAttributes::Attributes> FileAttributes::attributesOfItemAtPath(const QString& path,
                                                                                 bool followingSymLinks, Error* error)
{
    return attributes(path, followingSymLinks, mostLinks, error);
}
