#include "engine/Mp3Location.h"

#include "foundation/NumberReading.h"
#include "foundation/PathText.h"
#include "foundation/Text.h"

#include <QSet>

namespace {

const QString ending = QStringLiteral(".mp3");
// What a file system takes, in bytes.
constexpr qsizetype longestName = 255;

// The root of the file system is no file, and its name would lead elsewhere.
QString nameOf(const MediaFile& file)
{
    return PathText::lastPathComponent(file.sourceFilePath()).remove(u'/');
}

QString cut(QString name, qsizetype longest)
{
    while (name.toUtf8().size() > longest)
        name.chop(name.size() > 1 && name.back().isLowSurrogate() ? 2 : 1);
    return name;
}

// The name of a file at that place of the list, without its ending, that is none of those taken. Its place tells it
// apart from others, again and again where another is named so.
QString freeName(const QString& fileName, qsizetype place, const QSet<QString>& taken)
{
    const qsizetype longest = longestName - ending.size();
    QString suffix = fileName.toUtf8().size() > longest ? Text::format(".{}", place) : QString();
    for (;;) {
        const QString name = cut(fileName, longest - suffix.size()) + suffix;
        if (!taken.contains(name.toCaseFolded()))
            return name;
        suffix += Text::format(".{}", place);
    }
}

} // namespace

QString Mp3Location::folderOfJob(const QString& tempFilesFolder, const Job& job)
{
    return PathText::appendingPathComponent(tempFilesFolder,
                                            QString::number(NumberReading::valueOrZero(job.depoNum())));
}

QString Mp3Location::ofMediaFile(const QString& tempFilesFolder, const Job& job, const MediaFile& mediaFile)
{
    QSet<QString> taken; // by the files before it
    qsizetype place = 0;
    for (const auto& other : job.mediaFiles()) {
        ++place;
        if (other.get() == &mediaFile)
            break;
        taken.insert(freeName(nameOf(*other), place, taken).toCaseFolded());
    }
    const QString name = freeName(nameOf(mediaFile), place, taken);
    return PathText::appendingPathComponent(folderOfJob(tempFilesFolder, job), name + ending);
}
