#include "media/FfmpegLocation.h"

#include <QCoreApplication>
#include <QStandardPaths>

QString FfmpegLocation::programFolder()
{
    // Asked once, because Qt fills a cache of its own on the first call without a lock.
    static const QString folder = QCoreApplication::applicationDirPath();
    return folder;
}

QString FfmpegLocation::ffmpegPath(const QString& folder)
{
    const QString name = QStringLiteral("ffmpeg");
    // An empty list of folders would mean PATH.
    const QString beside = folder.isEmpty() ? QString() : QStandardPaths::findExecutable(name, {folder});
    return beside.isEmpty() ? QStandardPaths::findExecutable(name) : beside;
}
