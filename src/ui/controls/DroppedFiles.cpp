#include "ui/controls/DroppedFiles.h"

#include <QMimeData>

QStringList DroppedFiles::localPaths(const QList<QUrl>& urls)
{
    QStringList paths;
    for (const QUrl& url : urls) {
        if (const QString path = url.toLocalFile(); !path.isEmpty())
            paths << path;
    }
    return paths;
}

QStringList DroppedFiles::localPaths(const QMimeData* data)
{
    return data != nullptr && data->hasUrls() ? localPaths(data->urls()) : QStringList();
}

Qt::DropAction DroppedFiles::action(const QMimeData* data, Qt::DropActions offered)
{
    return offered.testFlag(Qt::CopyAction) && !localPaths(data).isEmpty() ? Qt::CopyAction : Qt::IgnoreAction;
}
