#include "engine/Mp3Location.h"

#include "foundation/NumberReading.h"
#include "foundation/PathText.h"
#include "foundation/Text.h"

namespace {

// Longer names than a file system takes are cut; what tells two files apart is then their place in the list.
constexpr qsizetype longestName = 255;

bool isEarlierNameTheSame(const Job& job, const MediaFile& mediaFile, qsizetype& position)
{
    const QString name = PathText::lastPathComponent(mediaFile.sourceFilePath());
    bool isSame = false;
    position = 0;
    for (const auto& other : job.mediaFiles()) {
        ++position;
        if (other.get() == &mediaFile)
            return isSame;
        isSame = isSame || PathText::lastPathComponent(other->sourceFilePath()).compare(name, Qt::CaseInsensitive) == 0;
    }
    return isSame;
}

} // namespace

QString Mp3Location::folderOfJob(const QString& tempFilesFolder, const Job& job)
{
    return PathText::appendingPathComponent(tempFilesFolder,
                                            QString::number(NumberReading::valueOrZero(job.depoNum())));
}

QString Mp3Location::ofMediaFile(const QString& tempFilesFolder, const Job& job, const MediaFile& mediaFile)
{
    qsizetype position = 0;
    const bool isNameTaken = isEarlierNameTheSame(job, mediaFile, position);
    QString name = PathText::lastPathComponent(mediaFile.sourceFilePath());
    const bool isTooLong = name.toUtf8().size() + 4 > longestName;
    while (isTooLong && name.toUtf8().size() > longestName - 16)
        name.chop(1);
    if (isNameTaken || isTooLong)
        name += Text::format(".{}", position);
    return PathText::appendingPathComponent(folderOfJob(tempFilesFolder, job), name + QStringLiteral(".mp3"));
}
