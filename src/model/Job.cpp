#include "model/Job.h"

#include "foundation/Assertion.h"
#include "foundation/PathText.h"
#include "model/PathBookmarks.h"

#include <algorithm>

Job::Job() : m_depositionDate(QDateTime::currentDateTime()) {}

Job::~Job() = default;

std::shared_ptr<Job> Job::job()
{
    return {new Job, DeletedOnMainThread()};
}

void Job::emitAll(const Signals& changes)
{
    for (const Signal signal : changes)
        Q_EMIT(this->*signal)();
    if (!changes.isEmpty())
        Q_EMIT rowChanged();
}

QString Job::transcriptFile() const
{
    return copied(m_transcriptFile);
}

void Job::setTranscriptFile(const QString& transcriptFile)
{
    store(m_transcriptFile, transcriptFile);
    setName(PathText::lastPathComponent(transcriptFile));
    saveBookmark(transcriptFile);
    Q_EMIT transcriptFileChanged();
}

// Media files

Job::MediaFiles Job::mediaFiles() const
{
    // Elements of its own: a list shared with a reader on another thread would be changed in place as soon as Qt's
    // count says that the reader is done, which that count, read relaxed, does not order.
    const std::scoped_lock lock(m_mutex);
    return {m_mediaFiles.cbegin(), m_mediaFiles.cend()};
}

void Job::setMediaFiles(const MediaFiles& mediaFiles)
{
    MediaFiles files = mediaFiles;
    files.removeAll(nullptr);
    {
        const std::scoped_lock lock(m_mutex);
        m_mediaFiles = MediaFiles(files.cbegin(), files.cend());
        m_mediaFileHashesAreValid = false;
    }
    for (const auto& file : files)
        observe(file);
    recalculateTotalMediaDuration();
    Q_EMIT mediaFilesChanged();
    Q_EMIT rowChanged();
}

bool Job::holdsEqualLocked(const MediaFile& mediaFile)
{
    if (!m_mediaFileHashesAreValid) {
        m_mediaFileHashes.clear();
        for (const auto& present : m_mediaFiles)
            m_mediaFileHashes.insert(present->hash());
        m_mediaFileHashesAreValid = true;
    }
    return m_mediaFileHashes.contains(mediaFile.hash()) &&
           std::any_of(m_mediaFiles.cbegin(), m_mediaFiles.cend(),
                       [&](const std::shared_ptr<MediaFile>& present) { return mediaFile.isEqual(*present); });
}

void Job::insertObject(const std::shared_ptr<MediaFile>& mediaFile, qsizetype inMediaFilesAtIndex)
{
    if (!Assertion::check(mediaFile != nullptr, "no media file to insert"))
        return;
    bool inserted = false;
    {
        const std::scoped_lock lock(m_mutex);
        if (!holdsEqualLocked(*mediaFile)) {
            const bool isInRange = inMediaFilesAtIndex >= 0 && inMediaFilesAtIndex <= m_mediaFiles.size();
            Assertion::check(isInRange, "media file index out of range");
            m_mediaFiles.insert(std::clamp<qsizetype>(inMediaFilesAtIndex, 0, m_mediaFiles.size()), mediaFile);
            m_mediaFileHashes.insert(mediaFile->hash());
            inserted = true;
        }
    }
    if (inserted)
        observe(mediaFile);
    recalculateTotalStatus();
    if (inserted) {
        Q_EMIT mediaFilesChanged();
        Q_EMIT rowChanged();
    }
}

void Job::addMediaFilesObject(const std::shared_ptr<MediaFile>& mediaFile)
{
    insertObject(mediaFile, 0);
}

void Job::removeObjectFromMediaFilesAtIndex(qsizetype index)
{
    std::shared_ptr<MediaFile> removed;
    {
        const std::scoped_lock lock(m_mutex);
        if (Assertion::check(index >= 0 && index < m_mediaFiles.size(), "media file index out of range"))
            removed = m_mediaFiles.takeAt(index);
        m_mediaFileHashesAreValid = false;
    }
    if (!removed)
        return;
    removed->removeObserver(this);
    recalculateTotalMediaDuration();
    recalculateJobTotal();
    Q_EMIT mediaFilesChanged();
    Q_EMIT rowChanged();
}

void Job::removeMediaFilesObject(const std::shared_ptr<MediaFile>& mediaFile)
{
    if (!mediaFile)
        return;
    const MediaFiles files = mediaFiles();
    const auto found = std::find_if(files.cbegin(), files.cend(), [&](const std::shared_ptr<MediaFile>& present) {
        return mediaFile->isEqual(*present);
    });
    if (found != files.cend())
        removeObjectFromMediaFilesAtIndex(found - files.cbegin());
}

void Job::observe(const std::shared_ptr<MediaFile>& mediaFile)
{
    mediaFile->addObserver(std::static_pointer_cast<Job>(shared_from_this()));
}

void Job::mediaFileChanged(MediaFileChange change)
{
    switch (change) {
    case MediaFileChange::SourceFilePath:
        store(m_mediaFileHashesAreValid, false);
        break;
    case MediaFileChange::DurationProcessed:
        recalculateProcessedMediaDuration();
        break;
    case MediaFileChange::SourceDuration:
        recalculateTotalMediaDuration();
        break;
    case MediaFileChange::Status:
        recalculateTotalStatus();
        break;
    case MediaFileChange::Mp3UploadedFileSize:
        recalculateUploadedMediaFileSize();
        break;
    case MediaFileChange::Mp3TotalFileSize:
        recalculateTotalMediaFileSize();
        break;
    }
}

// The row and its file

QList<std::shared_ptr<MediaObject>> Job::childs() const
{
    const MediaFiles files = mediaFiles();
    return {files.cbegin(), files.cend()};
}

bool Job::isLeaf() const
{
    return false;
}

void Job::startAccessingBookmarkedURL()
{
    PathBookmarks::startAccessing(transcriptFileURL());
}

void Job::stopAccessingBookmarkedURL() {}
