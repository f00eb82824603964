#include "model/MediaFile.h"

#include "foundation/PathText.h"
#include "foundation/Text.h"
#include "model/JsonReading.h"
#include "model/PathBookmarks.h"

#include <QFileInfo>
#include <QVarLengthArray>

#include <algorithm>
#include <typeinfo>

MediaFile::MediaFile(const QString& path, bool isServerMediaFile) : m_isServerMediaFile(isServerMediaFile)
{
    if (isServerMediaFile) {
        storePath(path);
        return;
    }
    m_sourceFileURL = getBookmarkedURL(path);
    if (m_sourceFileURL.isEmpty()) {
        setSourceFilePath(path);
    } else {
        PathBookmarks::startAccessing(m_sourceFileURL);
        setSourceFilePath(m_sourceFileURL.toLocalFile());
    }
    readFileAttributes();
}

MediaFile::~MediaFile() = default;

std::shared_ptr<MediaFile> MediaFile::mediaFileWithPath(const QString& path)
{
    return {new MediaFile(path, /*isServerMediaFile=*/false), DeletedOnMainThread()};
}

std::shared_ptr<MediaFile> MediaFile::serverMediaFile(int segmentNumber)
{
    return {new MediaFile(Text::format("Segment{}.abc", segmentNumber), /*isServerMediaFile=*/true),
            DeletedOnMainThread()};
}

std::shared_ptr<MediaFile> MediaFile::decode(const QJsonObject& archive)
{
    const QString path = JsonReading::text(archive.value(u"sourceFilePath"));
    if (path.isEmpty())
        return nullptr;
    auto file = mediaFileWithPath(path);
    file->setSourceDuration(JsonReading::optionalFloat(archive.value(u"sourceDuration")));
    file->setMp3FilePath(JsonReading::text(archive.value(u"mp3FilePath")));
    file->setMp3Duration(JsonReading::optionalFloat(archive.value(u"mp3Duration")));
    file->setStreamsInfo(JsonReading::text(archive.value(u"streamsInfo")));
    file->setStatus(settledJobStatus(JsonReading::intOrZero(archive.value(u"status"))));
    return file;
}

QJsonObject MediaFile::encode() const
{
    const std::scoped_lock lock(m_mutex);
    return {
        {QStringLiteral("sourceFilePath"), JsonReading::fromText(m_sourceFilePath)},
        {QStringLiteral("sourceDuration"), JsonReading::fromOptional(m_sourceDuration)},
        {QStringLiteral("mp3FilePath"), JsonReading::fromText(m_mp3FilePath)},
        {QStringLiteral("mp3Duration"), JsonReading::fromOptional(m_mp3Duration)},
        {QStringLiteral("status"), m_status.load()},
        {QStringLiteral("streamsInfo"), JsonReading::fromText(m_streamsInfo)},
    };
}

void MediaFile::storePath(const QString& path)
{
    const std::scoped_lock lock(m_mutex);
    m_sourceFilePath = path;
    // Folded rather than upper-cased: texts that compare equal without regard to case always fold alike.
    m_pathHash = qHash(path.toCaseFolded());
}

void MediaFile::readFileAttributes()
{
    const QFileInfo file(sourceFilePath());
    if (!file.exists())
        return;
    setSourceFileSizeInBytes(file.size());
    setSourceFileLastModifiedDate(file.lastModified());
}

void MediaFile::tellObservers(MediaFileChange change)
{
    // Most files have one.
    QVarLengthArray<Observation, 2> observations;
    {
        const std::scoped_lock lock(m_mutex);
        for (const Observation& observation : m_observations)
            observations.append(observation);
    }
    for (const Observation& observation : observations) {
        // Held while it is told, so that it does not end on another thread meanwhile.
        if (const auto observer = observation.observer.lock())
            observer->mediaFileChanged(change);
    }
}

void MediaFile::statusDidChange()
{
    tellObservers(MediaFileChange::Status);
}

void MediaFile::addObserver(const std::shared_ptr<MediaFileObserver>& observer)
{
    const std::scoped_lock lock(m_mutex);
    std::erase_if(m_observations, [](const Observation& observation) { return observation.observer.expired(); });
    m_observations.push_back({observer, observer.get()});
}

void MediaFile::removeObserver(const MediaFileObserver* observer)
{
    const std::scoped_lock lock(m_mutex);
    const auto found =
        std::find_if(m_observations.begin(), m_observations.end(), [observer](const Observation& observation) {
            return observation.identity == observer && !observation.observer.expired();
        });
    if (found != m_observations.end())
        m_observations.erase(found);
}

QString MediaFile::sourceFilePath() const
{
    return copied(m_sourceFilePath);
}

void MediaFile::setSourceFilePath(const QString& sourceFilePath)
{
    storePath(sourceFilePath);
    setName(PathText::lastPathComponent(sourceFilePath));
    saveBookmark(sourceFilePath);
    tellObservers(MediaFileChange::SourceFilePath);
    Q_EMIT sourceFilePathChanged();
}

std::optional<qint64> MediaFile::sourceFileSizeInBytes() const
{
    return copied(m_sourceFileSizeInBytes);
}

void MediaFile::setSourceFileSizeInBytes(std::optional<qint64> sourceFileSizeInBytes)
{
    store(m_sourceFileSizeInBytes, sourceFileSizeInBytes);
}

QDateTime MediaFile::sourceFileLastModifiedDate() const
{
    return copied(m_sourceFileLastModifiedDate);
}

void MediaFile::setSourceFileLastModifiedDate(const QDateTime& sourceFileLastModifiedDate)
{
    store(m_sourceFileLastModifiedDate, sourceFileLastModifiedDate);
}

std::optional<float> MediaFile::sourceDuration() const
{
    return copied(m_sourceDuration);
}

void MediaFile::setSourceDuration(std::optional<float> sourceDuration)
{
    {
        const std::scoped_lock lock(m_mutex);
        m_sourceDuration = sourceDuration;
        m_totalValue = sourceDuration;
    }
    Q_EMIT totalValueChanged();
    tellObservers(MediaFileChange::SourceDuration);
    Q_EMIT sourceDurationChanged();
    Q_EMIT rowChanged();
}

QString MediaFile::mp3FilePath() const
{
    return copied(m_mp3FilePath);
}

void MediaFile::setMp3FilePath(const QString& mp3FilePath)
{
    store(m_mp3FilePath, mp3FilePath);
    Q_EMIT mp3FilePathChanged();
}

std::optional<float> MediaFile::mp3Duration() const
{
    return copied(m_mp3Duration);
}

void MediaFile::setMp3Duration(std::optional<float> mp3Duration)
{
    store(m_mp3Duration, mp3Duration);
    Q_EMIT mp3DurationChanged();
}

std::optional<float> MediaFile::durationProcessed() const
{
    return copied(m_durationProcessed);
}

void MediaFile::setDurationProcessed(std::optional<float> durationProcessed)
{
    {
        const std::scoped_lock lock(m_mutex);
        m_durationProcessed = durationProcessed;
        m_processedValue = durationProcessed;
        m_mp3Duration = durationProcessed;
    }
    Q_EMIT processedValueChanged();
    Q_EMIT mp3DurationChanged();
    tellObservers(MediaFileChange::DurationProcessed);
    Q_EMIT durationProcessedChanged();
    Q_EMIT rowChanged();
}

std::optional<qint64> MediaFile::mp3TotalFileSize() const
{
    return copied(m_mp3TotalFileSize);
}

void MediaFile::setMp3TotalFileSize(std::optional<qint64> mp3TotalFileSize)
{
    {
        const std::scoped_lock lock(m_mutex);
        m_mp3TotalFileSize = mp3TotalFileSize;
        m_totalValue = mp3TotalFileSize ? std::optional(static_cast<double>(*mp3TotalFileSize)) : std::nullopt;
    }
    Q_EMIT totalValueChanged();
    tellObservers(MediaFileChange::Mp3TotalFileSize);
    Q_EMIT mp3TotalFileSizeChanged();
    Q_EMIT rowChanged();
}

std::optional<double> MediaFile::mp3UploadedFileSize() const
{
    return copied(m_mp3UploadedFileSize);
}

void MediaFile::setMp3UploadedFileSize(std::optional<double> mp3UploadedFileSize)
{
    {
        const std::scoped_lock lock(m_mutex);
        m_mp3UploadedFileSize = mp3UploadedFileSize;
        m_processedValue = mp3UploadedFileSize;
    }
    Q_EMIT processedValueChanged();
    tellObservers(MediaFileChange::Mp3UploadedFileSize);
    Q_EMIT mp3UploadedFileSizeChanged();
    Q_EMIT rowChanged();
}

QString MediaFile::streamsInfo() const
{
    return copied(m_streamsInfo);
}

void MediaFile::setStreamsInfo(const QString& streamsInfo)
{
    store(m_streamsInfo, streamsInfo);
    Q_EMIT streamsInfoChanged();
}

bool MediaFile::isServerMediaFile() const
{
    return m_isServerMediaFile;
}

QUrl MediaFile::sourceFileURL() const
{
    return copied(m_sourceFileURL);
}

void MediaFile::setSourceFileURL(const QUrl& sourceFileURL)
{
    store(m_sourceFileURL, sourceFileURL);
}

bool MediaFile::isEqual(const QObject& other) const
{
    if (this == &other)
        return typeid(*this) == typeid(MediaFile);
    if (typeid(other) != typeid(MediaFile))
        return false;
    const auto& file = static_cast<const MediaFile&>(other);
    return hash() == file.hash() && sourceFilePath().compare(file.sourceFilePath(), Qt::CaseInsensitive) == 0;
}

int MediaFile::caseInsensitiveCompareByFileName(const MediaFile& other) const
{
    return PathText::lastPathComponent(sourceFilePath())
        .compare(PathText::lastPathComponent(other.sourceFilePath()), Qt::CaseInsensitive);
}

void MediaFile::startAccessingBookmarkedURL()
{
    PathBookmarks::startAccessing(sourceFileURL());
}

void MediaFile::stopAccessingBookmarkedURL() {}
