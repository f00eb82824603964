#include "media/AudioExtractor.h"

#include "foundation/Assertion.h"
#include "foundation/Log.h"
#include "foundation/MainThread.h"
#include "foundation/PathText.h"
#include "foundation/Text.h"
#include "foundation/TextScanner.h"

#include <QFile>

#include <cmath>
#include <cstdint>
#include <optional>
#include <utility>

namespace {

// Seconds out of the "hh:mm:ss.cc" behind `word`; nothing when it does not stand there whole ("N/A"). Each number is
// read as any int is: hours may have more digits or a sign, which holds for the hours alone ("-00:00:00.02" is 0.02).
std::optional<float> timeBehind(QStringView word, const QString& line)
{
    TextScanner scanner(line);
    scanner.scanUpToString(word);
    if (!scanner.scanString(word))
        return std::nullopt;
    const std::optional<int> hours = scanner.scanInt();
    if (!hours || !scanner.scanString(u":"))
        return std::nullopt;
    const std::optional<int> minutes = scanner.scanInt();
    if (!minutes || !scanner.scanString(u":"))
        return std::nullopt;
    const std::optional<int> seconds = scanner.scanInt();
    if (!seconds || !scanner.scanString(u"."))
        return std::nullopt;
    const std::optional<int> hundredths = scanner.scanInt();
    if (!hundredths)
        return std::nullopt;
    const std::int64_t wholeSeconds = std::int64_t{*hours} * 3600 + std::int64_t{*minutes} * 60 + *seconds;
    return static_cast<float>(wholeSeconds) + static_cast<float>(*hundredths) * 0.01F;
}

// Lowers a flag at the end of an operation, however it ends.
class InProgress
{
public:
    explicit InProgress(std::atomic<bool>& flag) : m_flag(flag) { m_flag = true; }
    ~InProgress() { m_flag = false; }
    InProgress(const InProgress&) = delete;
    InProgress& operator=(const InProgress&) = delete;

private:
    std::atomic<bool>& m_flag;
};

// What ffmpeg says of a sound file that it could not write whole. It may all the same end as if nothing were wrong.
bool tellsOfBrokenOutput(const QString& line)
{
    for (const QStringView words : {u"No space left on device", u"Disk quota exceeded", u"File too large",
                                    u"Error writing trailer", u"Error closing file", u"av_interleaved_write_frame()"}) {
        if (line.contains(words))
            return true;
    }
    return false;
}

} // namespace

std::shared_ptr<AudioExtractor>
AudioExtractor::audioExtractorWithInputMediaFile(const std::shared_ptr<MediaFile>& inputMediaFile,
                                                 const QString& ffmpegPath)
{
    if (ffmpegPath.isEmpty()) {
        Log::error("Error: ffmpeg is not found inside app bundle");
        return nullptr;
    }
    if (!inputMediaFile) {
        Log::error("Error: no media file to extract the sound of");
        return nullptr;
    }
    std::shared_ptr<AudioExtractor> extractor(new AudioExtractor(inputMediaFile, ffmpegPath));
    if (!extractor->m_task.isUsable()) {
        Log::error("Error: unable to create new NSTask object");
        return nullptr;
    }
    return extractor;
}

AudioExtractor::AudioExtractor(std::shared_ptr<MediaFile> inputMediaFile, const QString& ffmpegPath)
    : m_inputMediaFile(std::move(inputMediaFile)), m_task(ffmpegPath)
{}

void AudioExtractor::extractInfo()
{
    if (!Assertion::check(!m_infoExtractionInProgress,
                          "Trying to start info exctraction while another extraction in progress") ||
        !Assertion::check(!m_mp3ConversionInProgress,
                          "Trying to start info exctraction while mp3 conversion in progress"))
        return;
    if (m_task.isTerminated())
        return;
    const InProgress inProgress(m_infoExtractionInProgress);
    // On the main thread, so that it comes after the stream lines of an earlier extraction that still wait there.
    MainThread::runAndWait([this] { m_inputMediaFile->setStreamsInfo(QStringLiteral("")); });
    runTask({QStringLiteral("-i"), sourcePath()});
}

void AudioExtractor::convertToMp3(const QString& path)
{
    if (!Assertion::check(!m_infoExtractionInProgress, "Trying to start mp3 conversion while extraction in progress") ||
        !Assertion::check(!m_mp3ConversionInProgress,
                          "Trying to start mp3 conversion while another mp3 conversion in progress"))
        return;
    const InProgress inProgress(m_mp3ConversionInProgress);
    runTask({QStringLiteral("-i"), sourcePath(), QStringLiteral("-ab"), QStringLiteral("24000"), QStringLiteral("-ar"),
             QStringLiteral("11025"), QStringLiteral("-ac"), QString::number(m_numberOfChannels),
             QStringLiteral("-acodec"), QStringLiteral("libmp3lame"), QStringLiteral("-y"),
             PathText::standardizedPath(path)});
    // Half a recording must not be taken for one, nor uploaded.
    if (m_isOutputBroken && QFile::remove(path))
        Log::error("{} could not be written whole and is removed", path);
}

QString AudioExtractor::sourcePath() const
{
    return PathText::standardizedPath(m_inputMediaFile->sourceFilePath());
}

void AudioExtractor::runTask(const QStringList& arguments)
{
    if (m_task.isTerminated())
        return;
    m_inputMediaFile->startAccessingBookmarkedURL();
    const QString failure = m_task.launch(arguments, [this](QByteArrayView piece) { outputListener(piece); });
    m_inputMediaFile->stopAccessingBookmarkedURL();
    if (!failure.isEmpty()) {
        Log::error("Error: unable to launch ffmpeg: {}", failure);
        reportError(failure);
    }
}

void AudioExtractor::outputListener(QByteArrayView piece)
{
    for (const QString& line : m_lines.add(piece)) {
        // What is left of the piece is not waited for: each line may cost a turn of the main thread.
        if (m_task.isTerminated())
            return;
        Log::info("{}", line);
        m_isOutputBroken = m_isOutputBroken || (m_mp3ConversionInProgress && tellsOfBrokenOutput(line));
        processFFMPEGOutputString(line);
        processFFMPEGOutputStringForErrors(line);
    }
}

void AudioExtractor::processFFMPEGOutputString(const QString& line)
{
    if (const std::optional<float> duration = timeBehind(u"Duration: ", line)) {
        Log::system("Input file: {} duration:{:f}", sourcePath(), *duration);
        MainThread::runAndWait([this, duration] { m_inputMediaFile->setSourceDuration(duration); });
    }
    if (const std::optional<float> processed = timeBehind(u"time=", line)) {
        const float wholeSeconds = std::trunc(*processed);
        MainThread::runAndWait([this, wholeSeconds] { m_inputMediaFile->setDurationProcessed(wholeSeconds); });
    }
    const QString trimmed = line.trimmed();
    if (trimmed.startsWith(QStringLiteral("Stream"))) {
        MainThread::post([file = m_inputMediaFile, trimmed] {
            const QString before = file->streamsInfo();
            file->setStreamsInfo(before.isEmpty() ? trimmed : before + u'\n' + trimmed);
        });
    }
}

void AudioExtractor::processFFMPEGOutputStringForErrors(const QString& line)
{
    for (const QStringView word : {u"Unknown format", u"Error", u"incomplete frame", u"Header missing"}) {
        if (line.contains(word, Qt::CaseInsensitive))
            reportError(line);
    }
}

void AudioExtractor::reportError(const QString& words)
{
    if (m_observer)
        m_observer->audioExtractorHandleError(
            *this, Error{ErrorDomain::SyncBase, 2, Text::format("FFMPEG error( {} )", words)});
}
