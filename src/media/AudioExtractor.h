#pragma once

#include "media/AudioExtractorErrorObserver.h"
#include "media/FfmpegLines.h"
#include "media/FfmpegLocation.h"
#include "media/FfmpegTask.h"
#include "model/MediaFile.h"

#include <QString>
#include <QStringList>

#include <atomic>
#include <memory>

// Runs ffmpeg for one media file: to learn its duration and streams, or to write a low-rate MP3 of its sound. Good for
// one operation; a new extractor is made for each.
//
// An operation blocks the calling thread until ffmpeg has ended. Meanwhile the file's durations are set on the main
// thread, this thread waiting, and its stream lines are appended there without waiting; the main thread must therefore
// not wait for the operation without running its queue. How ffmpeg ended is not examined: success shows in the values
// that were set and the errors that were reported.
class AudioExtractor
{
public:
    // Null, with a line in the log, when there is no ffmpeg, or the system lets no process be prepared. Only for shared
    // ownership: a thread that may call terminate() keeps the extractor alive meanwhile.
    [[nodiscard]] static std::shared_ptr<AudioExtractor>
    audioExtractorWithInputMediaFile(const std::shared_ptr<MediaFile>& inputMediaFile,
                                     const QString& ffmpegPath = FfmpegLocation::ffmpegPath());

    [[nodiscard]] std::shared_ptr<MediaFile> inputMediaFile() const { return m_inputMediaFile; }

    // Before the operation: the channels of the MP3 (1 or 2; 1 unless set), and who is told of errors, or null.
    void setNumberOfChannels(int numberOfChannels) { m_numberOfChannels = numberOfChannels; }
    void setObserver(AudioExtractorErrorObserver* observer) { m_observer = observer; }

    // Sets sourceDuration and streamsInfo, as far as they are found.
    void extractInfo();
    // Writes an MP3 of 11025 Hz and 24000 bits per second to `path`, over any file there, and sets durationProcessed as
    // it goes.
    void convertToMp3(const QString& path);

    // Makes the operation that runs, or is started later, return soon: see FfmpegTask. Callable from every thread.
    void terminate() { m_task.terminate(); }

    // What the operations do with each line of ffmpeg's output, in this order: take the values that it tells, and
    // report the errors that it speaks of.
    void processFFMPEGOutputString(const QString& line);
    void processFFMPEGOutputStringForErrors(const QString& line);

private:
    AudioExtractor(std::shared_ptr<MediaFile> inputMediaFile, const QString& ffmpegPath);

    [[nodiscard]] QString sourcePath() const;
    void runTask(const QStringList& arguments);
    void outputListener(QByteArrayView piece);
    void reportError(const QString& words);

    const std::shared_ptr<MediaFile> m_inputMediaFile;
    FfmpegTask m_task;
    FfmpegLines m_lines;
    std::atomic<bool> m_infoExtractionInProgress = false;
    std::atomic<bool> m_mp3ConversionInProgress = false;
    bool m_isOutputBroken = false; // of the thread that extracts
    AudioExtractorErrorObserver* m_observer = nullptr;
    int m_numberOfChannels = 1;
};
