#pragma once

#include <QString>
#include <QUrl>

// The user's files remembered across launches: one bookmark for each path, in the standard user defaults under the path
// with its percent-escapes removed. Entries are never removed. Callable from every thread; failures are logged.
namespace PathBookmarks {

// Nothing is stored when the file cannot be remembered.
void saveBookmark(const QString& path);

// The file that the path's bookmark stands for; empty when there is none or the file is gone. A bookmark whose file was
// replaced is made afresh.
[[nodiscard]] QUrl getBookmarkedURL(const QString& path);

// Whether the file at `url` can be read; a refusal is logged. An empty URL is no refusal.
bool startAccessing(const QUrl& url);

} // namespace PathBookmarks
