#include "model/PathBookmarks.h"

#include "foundation/Log.h"
#include "foundation/UserDefaults.h"
#include "settings/Bookmark.h"

#include <QFileInfo>

namespace {

QString defaultsKey(const QString& path)
{
    return QUrl::fromPercentEncoding(path.toUtf8());
}

QString urlText(const QUrl& url)
{
    return QString::fromLatin1(url.toEncoded());
}

bool isReadable(const QUrl& url)
{
    return QFileInfo(url.toLocalFile()).isReadable();
}

} // namespace

void PathBookmarks::saveBookmark(const QString& path)
{
    if (path.isEmpty())
        return;
    const auto bookmark = Bookmark::create(path);
    if (const Error* error = std::get_if<Error>(&bookmark)) {
        Log::error("Unable to create bookmark for url = {}, error = {}", urlText(QUrl::fromLocalFile(path)),
                   error->localizedDescription);
        return;
    }
    UserDefaults::standard().setValue(defaultsKey(path), std::get<QByteArray>(bookmark));
}

QUrl PathBookmarks::getBookmarkedURL(const QString& path)
{
    if (path.isEmpty())
        return {};
    const QVariant bookmark = UserDefaults::standard().value(defaultsKey(path));
    if (!bookmark.isValid())
        return {};
    const Bookmark::Resolution resolved = Bookmark::resolve(bookmark.toByteArray());
    // Two paths that differ in percent-escapes alone share a key; the entry of the other file is none of this one's.
    if (!resolved.path.isEmpty() && resolved.path != path)
        return {};
    if (resolved.error) {
        Log::error("Unable to create url from persisted bookmark, filePath = {}, error = {}", path,
                   resolved.error->localizedDescription);
        return {};
    }
    const QUrl url = QUrl::fromLocalFile(resolved.path);
    if (resolved.isStale && isReadable(url))
        saveBookmark(resolved.path);
    return url;
}

bool PathBookmarks::startAccessing(const QUrl& url)
{
    if (url.isEmpty() || isReadable(url))
        return true;
    Log::error("Unable to start accessing security scoped url = {}", urlText(url));
    return false;
}
