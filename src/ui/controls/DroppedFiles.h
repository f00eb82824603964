#pragma once

#include <QStringList>
#include <QUrl>

class QMimeData;

// What a drag brings from a file manager. Any thread.
namespace DroppedFiles {

// The paths of those that are files of this computer, in their order.
[[nodiscard]] QStringList localPaths(const QList<QUrl>& urls);
// Of a drag that carries files; empty for any other, and for none.
[[nodiscard]] QStringList localPaths(const QMimeData* data);
// How such a drag is taken: always as a copy, since the files stay where they are, whatever the other program would
// rather do. Ignored where it carries no files or allows no copy.
[[nodiscard]] Qt::DropAction action(const QMimeData* data, Qt::DropActions offered);

} // namespace DroppedFiles
