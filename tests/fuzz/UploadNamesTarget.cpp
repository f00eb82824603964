// The paths of a job's files: the transcript, then recordings. What they are converted to and uploaded as.
#include "FuzzTarget.h"

#include "engine/DestinationFileName.h"
#include "engine/Mp3Location.h"

#include <QSet>

using FuzzTarget::require;

namespace {

constexpr qsizetype mostFiles = 30;

void requireUploadName(const QString& name)
{
    require(!name.contains(u'/'), "an upload's name is one name");
    require(name.isEmpty() || (name.startsWith(QStringLiteral("5120_883")) && name.endsWith(u']')),
            "an upload's name tells its job");
}

} // namespace

FUZZ_TARGET(UploadNames)
{
    const QList<QByteArray> paths = FuzzTarget::pieces(input).mid(0, mostFiles);
    const auto job = Job::job();
    job->setOrderNum(5120);
    job->setDepoNum(883);
    job->setTranscriptFile(QString::fromUtf8(paths.at(0)));
    requireUploadName(DestinationFileName::ofTranscript(*job));
    for (const QByteArray& path : paths.mid(1))
        job->insertObject(MediaFile::mediaFileWithPath(QString::fromUtf8(path)), job->mediaFiles().size());

    const QString folder = Mp3Location::folderOfJob(QStringLiteral("/t"), *job);
    require(folder == u"/t/883", "a job's folder bears its number");
    QSet<QString> places;
    int segment = 0;
    for (const auto& file : job->mediaFiles()) {
        requireUploadName(DestinationFileName::ofSegment(*job, ++segment));
        const QString mp3 = Mp3Location::ofMediaFile(QStringLiteral("/t"), *job, *file);
        require(mp3.startsWith(folder + u'/'), "an MP3 lies in its job's folder");
        const QString name = mp3.mid(folder.size() + 1);
        require(!name.contains(u'/') && name.endsWith(QStringLiteral(".mp3")), "an MP3's name is one name");
        require(name.toUtf8().size() <= 255, "an MP3's name is as long as a file system takes");
        // Also where letter case does not count.
        require(!places.contains(mp3.toCaseFolded()), "no recording is converted over another");
        places.insert(mp3.toCaseFolded());
    }
}
