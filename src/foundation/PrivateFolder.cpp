#include "foundation/PrivateFolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

bool PrivateFolder::make(const QString& path)
{
    const QString folder = QDir::cleanPath(QFileInfo(path).absoluteFilePath());
    if (path.isEmpty() || QFileInfo(folder).isDir())
        return !path.isEmpty();
    const QString parent = QFileInfo(folder).path();
    if (parent == folder || !make(parent))
        return false;
    // Another program, or another thread, may make it at the same time.
    return ::mkdir(QFile::encodeName(folder).constData(), S_IRWXU) == 0 || QFileInfo(folder).isDir();
}
