#pragma once

#include "model/MediaObject.h"

#include <QDateTime>
#include <QJsonObject>

#include <cstddef>
#include <vector>

enum class MediaFileChange {
    SourceFilePath,
    SourceDuration,
    DurationProcessed,
    Status,
    Mp3UploadedFileSize,
    Mp3TotalFileSize
};

// Told of a media file's changes at once, inside the change, on the thread that made it.
class MediaFileObserver
{
public:
    virtual ~MediaFileObserver() = default;
    virtual void mediaFileChanged(MediaFileChange change) = 0;
};

// One video or audio file of a job, the MP3 made from it, and how far both are processed; or a segment that only the
// service knows. Threads and ownership as MediaObject says. Durations are in seconds, sizes in bytes.
//
// Its progress pair follows its own setters: time while it is probed and converted, bytes while it is uploaded.
class MediaFile : public MediaObject
{
    Q_OBJECT
    Q_PROPERTY(QString sourceFilePath READ sourceFilePath WRITE setSourceFilePath NOTIFY sourceFilePathChanged)
    Q_PROPERTY(
        std::optional<float> sourceDuration READ sourceDuration WRITE setSourceDuration NOTIFY sourceDurationChanged)
    Q_PROPERTY(QString mp3FilePath READ mp3FilePath WRITE setMp3FilePath NOTIFY mp3FilePathChanged)
    Q_PROPERTY(std::optional<float> mp3Duration READ mp3Duration WRITE setMp3Duration NOTIFY mp3DurationChanged)
    Q_PROPERTY(std::optional<float> durationProcessed READ durationProcessed WRITE setDurationProcessed NOTIFY
                   durationProcessedChanged)
    Q_PROPERTY(std::optional<qint64> mp3TotalFileSize READ mp3TotalFileSize WRITE setMp3TotalFileSize NOTIFY
                   mp3TotalFileSizeChanged)
    Q_PROPERTY(std::optional<double> mp3UploadedFileSize READ mp3UploadedFileSize WRITE setMp3UploadedFileSize NOTIFY
                   mp3UploadedFileSizeChanged)
    Q_PROPERTY(QString streamsInfo READ streamsInfo WRITE setStreamsInfo NOTIFY streamsInfoChanged)
public:
    // A file on this disk. Its size and date are read now; a missing file has neither, which is no error.
    [[nodiscard]] static std::shared_ptr<MediaFile> mediaFileWithPath(const QString& path);
    // A segment that only the service knows, at the placeholder path "Segment<number>.abc"; without a name.
    [[nodiscard]] static std::shared_ptr<MediaFile> serverMediaFile(int segmentNumber);
    // Null when there is no source path. Work that was in flight goes back to where it can be done again. Values of
    // the wrong type count as missing.
    [[nodiscard]] static std::shared_ptr<MediaFile> decode(const QJsonObject& archive);
    [[nodiscard]] QJsonObject encode() const;
    ~MediaFile() override;

    // Also names the row after the file and keeps a bookmark of the path.
    [[nodiscard]] QString sourceFilePath() const;
    void setSourceFilePath(const QString& sourceFilePath);
    [[nodiscard]] std::optional<qint64> sourceFileSizeInBytes() const;
    void setSourceFileSizeInBytes(std::optional<qint64> sourceFileSizeInBytes);
    // Invalid when not known.
    [[nodiscard]] QDateTime sourceFileLastModifiedDate() const;
    void setSourceFileLastModifiedDate(const QDateTime& sourceFileLastModifiedDate);
    // Also sets totalValue.
    [[nodiscard]] std::optional<float> sourceDuration() const;
    void setSourceDuration(std::optional<float> sourceDuration);
    [[nodiscard]] QString mp3FilePath() const;
    void setMp3FilePath(const QString& mp3FilePath);
    [[nodiscard]] std::optional<float> mp3Duration() const;
    void setMp3Duration(std::optional<float> mp3Duration);
    // Also sets processedValue, then mp3Duration.
    [[nodiscard]] std::optional<float> durationProcessed() const;
    void setDurationProcessed(std::optional<float> durationProcessed);
    // Also sets totalValue.
    [[nodiscard]] std::optional<qint64> mp3TotalFileSize() const;
    void setMp3TotalFileSize(std::optional<qint64> mp3TotalFileSize);
    // Also sets processedValue.
    [[nodiscard]] std::optional<double> mp3UploadedFileSize() const;
    void setMp3UploadedFileSize(std::optional<double> mp3UploadedFileSize);
    [[nodiscard]] QString streamsInfo() const;
    void setStreamsInfo(const QString& streamsInfo);
    [[nodiscard]] bool isServerMediaFile() const;
    // Empty when no bookmark was found.
    [[nodiscard]] QUrl sourceFileURL() const;
    void setSourceFileURL(const QUrl& sourceFileURL);

    // The same source path, whatever the letter case; never equal to an object of a derived class.
    [[nodiscard]] bool isEqual(const QObject& other) const;
    // Equal files have equal hashes.
    [[nodiscard]] std::size_t hash() const { return m_pathHash.load(); }
    // The order of the file names, whatever their letter case: below, at or above 0.
    [[nodiscard]] int caseInsensitiveCompareByFileName(const MediaFile& other) const;

    void startAccessingBookmarkedURL() override;
    void stopAccessingBookmarkedURL() override;

    // An observer added twice is told twice; removing takes back one adding. An observer that is gone is told nothing.
    void addObserver(const std::shared_ptr<MediaFileObserver>& observer);
    void removeObserver(const MediaFileObserver* observer);

Q_SIGNALS:
    void sourceFilePathChanged();
    void sourceDurationChanged();
    void mp3FilePathChanged();
    void mp3DurationChanged();
    void durationProcessedChanged();
    void mp3TotalFileSizeChanged();
    void mp3UploadedFileSizeChanged();
    void streamsInfoChanged();

protected:
    MediaFile(const QString& path, bool isServerMediaFile);
    void statusDidChange() override;

private:
    void storePath(const QString& path);
    void readFileAttributes();
    void tellObservers(MediaFileChange change);

    QString m_sourceFilePath;
    std::atomic<std::size_t> m_pathHash = 0; // written under m_mutex, read without
    std::optional<qint64> m_sourceFileSizeInBytes;
    QDateTime m_sourceFileLastModifiedDate;
    std::optional<float> m_sourceDuration;
    QString m_mp3FilePath;
    std::optional<float> m_mp3Duration;
    std::optional<float> m_durationProcessed;
    std::optional<qint64> m_mp3TotalFileSize;
    std::optional<double> m_mp3UploadedFileSize;
    QString m_streamsInfo;
    const bool m_isServerMediaFile;
    QUrl m_sourceFileURL;
    struct Observation
    {
        std::weak_ptr<MediaFileObserver> observer;
        const MediaFileObserver* identity;
    };
    std::vector<Observation> m_observations;
};
