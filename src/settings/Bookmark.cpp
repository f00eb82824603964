#include "settings/Bookmark.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <cerrno>
#include <cstring>
#include <sys/stat.h>

namespace {

const QString pathKey = QStringLiteral("path");
const QString deviceKey = QStringLiteral("device");
const QString inodeKey = QStringLiteral("inode");

Error platformError(int code, const QString& words)
{
    return {ErrorDomain::Platform, code, words};
}

// What the system has at the path; numbers as texts, because JSON has no 64-bit integers.
std::variant<QJsonObject, Error> described(const QString& path)
{
    struct stat found = {};
    if (::stat(QFile::encodeName(path).constData(), &found) != 0) {
        const int code = errno;
        return platformError(code, path + QStringLiteral(": ") + QString::fromLocal8Bit(std::strerror(code)));
    }
    return QJsonObject{
        {pathKey, path}, {deviceKey, QString::number(found.st_dev)}, {inodeKey, QString::number(found.st_ino)}};
}

} // namespace

std::variant<QByteArray, Error> Bookmark::create(const QString& path)
{
    auto description = described(path);
    if (const Error* error = std::get_if<Error>(&description))
        return *error;
    return QJsonDocument(std::get<QJsonObject>(description)).toJson(QJsonDocument::Compact);
}

Bookmark::Resolution Bookmark::resolve(const QByteArray& bookmark)
{
    const QJsonObject stored = QJsonDocument::fromJson(bookmark).object();
    const QString path = stored.value(pathKey).toString();
    if (path.isEmpty())
        return {.error = platformError(EINVAL, QStringLiteral("the bookmark is not readable"))};
    const auto description = described(path);
    if (const Error* error = std::get_if<Error>(&description))
        return {.path = path, .error = *error};
    return {.path = path, .isStale = std::get<QJsonObject>(description) != stored};
}
