// The transcript and the recordings of the submit window.

#include "foundation/Assertion.h"
#include "foundation/MainThread.h"
#include "foundation/PathText.h"
#include "media/AudioExtractor.h"
#include "transcript/TranscriptFileType.h"
#include "transcript/TranscriptPrefill.h"
#include "ui/ApplicationController.h"
#include "ui/UserDialogs.h"
#include "ui/controls/DroppedFiles.h"
#include "ui/submit/SubmitJobWindowController.h"

#include <QFileInfo>

namespace {

// Long names are cut in their middle: a message is no place for them, and the list shows them whole.
QString shortName(const QString& path)
{
    constexpr qsizetype longest = 48;
    const QString name = PathText::lastPathComponent(path);
    if (name.size() <= longest)
        return name;
    return name.first(longest / 2) + QStringLiteral("…") + name.last(longest / 2 - 1);
}

QString joined(const QStringList& problems)
{
    constexpr qsizetype most = 3;
    if (problems.size() <= most + 1)
        return problems.join(u'\n');
    return problems.first(most).join(u'\n') + u'\n' +
           SubmitJobWindowController::tr("%1 more were not added.").arg(problems.size() - most);
}

} // namespace

// Transcript

void SubmitJobWindowController::addTranscriptFile(const QString& path)
{
    if (takeTranscript(path))
        refreshCanSubmitJob();
}

void SubmitJobWindowController::browseTransciptButton()
{
    const auto chosen = m_application.dialogs().chooseFile(tr("Choose the Transcript"), {});
    if (chosen && Assertion::check(chosen->size() == 1, "illegal number of transcript files selected")) {
        if (PathText::pathExtension(chosen->first()).isEmpty())
            m_application.dialogs().warn(tr("Warning"), TranscriptFileType::missingExtensionWarning);
        else if (!takeTranscript(chosen->first()))
            return;
    }
    refreshCanSubmitJob();
}

void SubmitJobWindowController::newTrascriptFilePathEntered(const QString& path)
{
    m_isTranscriptBeingTyped = false;
    setTranscriptText(path);
    addTranscriptFile(path);
}

void SubmitJobWindowController::controlTextDidChange(const QString& path)
{
    // Whether a path leads anywhere is said when it has been typed.
    m_isTranscriptBeingTyped = true;
    setTranscriptText(path);
    addTranscriptFile(path);
}

bool SubmitJobWindowController::takeTranscript(const QString& path)
{
    // A path that is still being typed, or a folder on the way to the file.
    if (!m_job || !QFileInfo(path).isFile())
        return true;
    if (!TranscriptFileType::isKnown(PathText::pathExtension(path)))
        m_application.dialogs().warn(tr("Warning"), TranscriptFileType::unknownTypeWarning);
    m_job->setTranscriptFile(path);
    m_transcriptFile = path;
    setTranscriptText(path);
    return prefillFrom(path);
}

bool SubmitJobWindowController::prefillFrom(const QString& path)
{
    const auto reading = TranscriptPrefill::read(path);
    if (!reading)
        return true;
    if (reading->isOutOfRange) {
        setTranscriptRemark(tr("No name or date is taken from a corporate witness's transcript. Please enter them."));
        // The submit state is left to the next action.
        return false;
    }
    changeJob([&](Job& job) {
        if (job.deponentFirstName().isEmpty())
            job.setDeponentFirstName(reading->firstName);
        if (job.deponentLastName().isEmpty())
            job.setDeponentLastName(reading->lastName);
        if (reading->date) {
            m_unreadableDate.clear();
            job.setDepositionDate(*reading->date);
        }
    });
    Q_EMIT messagesChanged();
    if (!reading->dateString.isEmpty() && !reading->date)
        setTranscriptRemark(tr("The transcript's date, “%1”, is no date of the calendar. Please check the date below.")
                                .arg(reading->dateString));
    return true;
}

void SubmitJobWindowController::setTranscriptText(const QString& text)
{
    m_transcriptRemark.clear();
    if (m_transcriptText != text) {
        m_transcriptText = text;
        Q_EMIT transcriptTextChanged();
    }
    Q_EMIT messagesChanged();
}

void SubmitJobWindowController::setTranscriptRemark(const QString& remark)
{
    m_transcriptRemark = remark;
    Q_EMIT messagesChanged();
}

QString SubmitJobWindowController::transcriptMessage() const
{
    if (!m_transcriptRemark.isEmpty())
        return m_transcriptRemark;
    if (m_transcriptText == m_transcriptFile || m_isTranscriptBeingTyped)
        return {};
    QString message;
    if (!m_transcriptText.isEmpty()) {
        const QFileInfo file(m_transcriptText);
        message = file.isDir()    ? tr("This is a folder, not a transcript.")
                  : file.exists() ? tr("This is no file that can be sent.")
                                  : tr("There is no file at this path.");
    }
    if (!m_transcriptFile.isEmpty()) {
        message += message.isEmpty() ? QString() : QStringLiteral(" ");
        message += tr("The job's transcript is still %1.").arg(shortName(m_transcriptFile));
    }
    return message;
}

// Recordings

void SubmitJobWindowController::addMediaFiles(const QStringList& paths)
{
    if (!m_job)
        setJob(Job::job());
    QStringList problems;
    changeJob([&](Job& job) {
        for (const QString& path : paths) {
            QString problem = problemOfMedia(path);
            if (problem.isEmpty()) {
                const qsizetype before = job.mediaFiles().size();
                job.addMediaFilesObject(MediaFile::mediaFileWithPath(path));
                if (job.mediaFiles().size() == before)
                    problem = tr("%1 is in the list already.").arg(shortName(path));
            }
            if (!problem.isEmpty())
                problems.append(problem);
        }
    });
    setMediaMessage(joined(problems));
    startInfoThread();
    refreshCanSubmitJob();
}

QString SubmitJobWindowController::problemOfMedia(const QString& path) const
{
    const QString name = shortName(path);
    const QFileInfo file(path);
    if (file.isDir())
        return tr("%1 is a folder. Please add the recordings in it.").arg(name);
    if (!file.exists())
        return tr("%1 does not exist any more.").arg(name);
    if (TranscriptFileType::isKnown(PathText::pathExtension(path)))
        return tr("%1 is a transcript, not a recording.").arg(name);
    if (!file.isFile())
        return tr("%1 is not a file.").arg(name);
    return {};
}

void SubmitJobWindowController::removeMediaFiles(const Job::MediaFiles& mediaFiles)
{
    changeJob([&](Job& job) {
        for (const auto& mediaFile : mediaFiles)
            job.removeMediaFilesObject(mediaFile);
    });
}

void SubmitJobWindowController::browseMediaFiles()
{
    if (const auto chosen = m_application.dialogs().chooseFiles(tr("Choose Recordings"), {}))
        addMediaFiles(*chosen);
}

void SubmitJobWindowController::deleteSelectedMediaFiles(const Job::MediaFiles& selected)
{
    removeMediaFiles(selected);
    setMediaMessage({});
    refreshCanSubmitJob();
}

void SubmitJobWindowController::addDroppedFiles(const QStringList& paths)
{
    if (!m_job)
        setJob(Job::job());
    QStringList transcripts;
    QStringList recordings;
    for (const QString& path : paths) {
        const bool isTranscript = TranscriptFileType::isKnown(PathText::pathExtension(path));
        (isTranscript && QFileInfo(path).isFile() ? transcripts : recordings).append(path);
    }
    if (!transcripts.isEmpty())
        addTranscriptFile(transcripts.last());
    if (transcripts.size() > 1)
        setTranscriptRemark(tr("A job has one transcript. Of the %1 that were dropped, %2 was taken.")
                                .arg(transcripts.size())
                                .arg(shortName(transcripts.last())));
    if (!recordings.isEmpty())
        addMediaFiles(recordings);
}

Qt::DropAction SubmitJobWindowController::tableViewValidateDrop(const QMimeData* data, Qt::DropActions offered)
{
    return DroppedFiles::action(data, offered);
}

bool SubmitJobWindowController::tableViewAcceptDrop(const QMimeData* data)
{
    const QStringList paths = DroppedFiles::localPaths(data);
    if (paths.isEmpty())
        return false;
    addMediaFiles(paths);
    return true;
}

void SubmitJobWindowController::setMediaMessage(const QString& message)
{
    m_mediaMessage = message;
    Q_EMIT messagesChanged();
}

// Reading them

void SubmitJobWindowController::startInfoThread()
{
    ++m_readingCount;
    Q_EMIT isReadingMediaFilesChanged();
    // Let go of at the thread's end, and also where no thread could be started.
    const std::shared_ptr<void> untilItEnds(nullptr, [self = std::weak_ptr(m_self)](void*) {
        MainThread::post([self] {
            if (const auto controller = self.lock())
                (*controller)->infoThreadEnded();
        });
    });
    m_threads.start("submit media info", [this, job = m_job, untilItEnds] { extractMediaFilesInfoThreadProc(job); });
}

void SubmitJobWindowController::infoThreadEnded()
{
    --m_readingCount;
    Q_EMIT isReadingMediaFilesChanged();
    Q_EMIT jobValuesChanged();
}

void SubmitJobWindowController::extractMediaFilesInfoThreadProc(const std::shared_ptr<Job>& job)
{
    for (const auto& mediaFile : job->mediaFiles())
        extractInfo(mediaFile);
}

void SubmitJobWindowController::extractInfo(const std::shared_ptr<MediaFile>& mediaFile)
{
    if (isEnding())
        return;
    const auto extractor = AudioExtractor::audioExtractorWithInputMediaFile(mediaFile);
    if (!extractor)
        return;
    extractor->setObserver(this);
    {
        const std::scoped_lock lock(m_extractorsMutex);
        if (m_isEnding)
            return;
        m_runningExtractors.insert(extractor);
    }
    extractor->extractInfo();
    const std::scoped_lock lock(m_extractorsMutex);
    m_runningExtractors.erase(extractor);
}

bool SubmitJobWindowController::isEnding() const
{
    const std::scoped_lock lock(m_extractorsMutex);
    return m_isEnding;
}

void SubmitJobWindowController::audioExtractorHandleError(AudioExtractor& /*extractor*/, const Error& error)
{
    MainThread::runAndWait([&] {
        if (!isEnding())
            m_application.presentError(willPresentError(error));
    });
}
