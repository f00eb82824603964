#include "ExtractorFixture.h"

#include "foundation/MainThread.h"
#include "support/Waiting.h"

#include <QDir>

namespace {

// What an extractor makes of single lines, without running anything.
class AudioExtractorLines : public ExtractorFixture
{
protected:
    void take(const QString& line)
    {
        m_extractor->processFFMPEGOutputString(line);
        m_extractor->processFFMPEGOutputStringForErrors(line);
        MainThread::drain();
    }

    const std::shared_ptr<MediaFile> m_file = mediaFile(path(QStringLiteral("folder/../day 1.mov")));
    const std::shared_ptr<AudioExtractor> m_extractor = scriptedExtractor(m_file);
    const std::optional<float> m_before = m_file->durationProcessed();
    const std::optional<float> m_durationBefore = m_file->sourceDuration();
};

} // namespace

TEST_F(AudioExtractorLines, TakeTheDuration)
{
    take(QStringLiteral("  Duration: 01:02:03.45, start: 0.000000, bitrate: 64 kb/s"));
    EXPECT_FLOAT_EQ(m_file->sourceDuration().value(), 3723.45F);
    EXPECT_EQ(m_file->durationProcessed(), m_before);
}

TEST_F(AudioExtractorLines, TellTheSystemLogTheDurationWithTheResolvedPath)
{
    take(QStringLiteral("Duration: 00:00:01.50"));
    EXPECT_TRUE(m_log.contains(
        QStringLiteral("[info] [main] Input file: %1 duration:1.500000").arg(path(QStringLiteral("day 1.mov")))));
}

TEST_F(AudioExtractorLines, CutTheProcessedTimeToWholeSeconds)
{
    take(QStringLiteral("size=      29kB time=00:00:10.99 bitrate=  21.4kbits/s speed= 150x"));
    EXPECT_EQ(m_file->durationProcessed(), 10.0F);
    EXPECT_EQ(m_file->sourceDuration(), m_durationBefore);
}

TEST_F(AudioExtractorLines, MoveTheProgressAndTheMp3sDurationWithTheProcessedTime)
{
    take(QStringLiteral("time=01:00:02.00"));
    EXPECT_EQ(m_file->processedValue(), 3602.0);
    EXPECT_EQ(m_file->mp3Duration(), 3602.0F);
}

TEST_F(AudioExtractorLines, IgnoreTimesThatAreNotWhole)
{
    for (const QString& time :
         {QStringLiteral("12.34"), QStringLiteral("N/A"), QStringLiteral("00:00:10"), QStringLiteral("00:00:10."),
          QStringLiteral("00:10.99"), QStringLiteral("00:00:x.99"), QStringLiteral("00::10.99"), QStringLiteral(":"),
          QStringLiteral("00-00:10.99"), QStringLiteral("00:00-10.99"), QStringLiteral("")}) {
        take(QStringLiteral("size= 1kB time=") + time);
        take(QStringLiteral("  Duration: ") + time);
        EXPECT_EQ(m_file->durationProcessed(), m_before) << qPrintable(time);
        EXPECT_EQ(m_file->sourceDuration(), m_durationBefore) << qPrintable(time);
    }
}

TEST_F(AudioExtractorLines, TakeHoursOfAnyNumberOfDigits)
{
    take(QStringLiteral("  Duration: 123:00:01.00, bitrate: 1 kb/s"));
    EXPECT_EQ(m_file->sourceDuration(), 442801.0F);
    take(QStringLiteral("  Duration: 99999999999:00:00.00"));
    EXPECT_GT(m_file->sourceDuration().value(), 1e12F);
}

// The sign belongs to the hours alone, as each number is read by itself.
TEST_F(AudioExtractorLines, ReadNegativeTimesNumberByNumber)
{
    take(QStringLiteral("time=00:00:07.00"));
    take(QStringLiteral("time=-00:00:00.02"));
    EXPECT_EQ(m_file->durationProcessed(), 0.0F);
    take(QStringLiteral("time=-577014:32:22.77"));
    EXPECT_EQ(m_file->durationProcessed(), -2077248512.0F);
}

TEST_F(AudioExtractorLines, TakeTheFirstDurationOfALineOnly)
{
    take(QStringLiteral("    comment : Duration: unknown, Duration: 00:00:09.00"));
    EXPECT_EQ(m_file->sourceDuration(), m_durationBefore);
    take(QStringLiteral("    comment         : Duration: 00:00:05.00 in all"));
    EXPECT_EQ(m_file->sourceDuration(), 5.0F);
}

TEST_F(AudioExtractorLines, WithDurationButNoColonAndBlankChangeNothing)
{
    take(QStringLiteral("Duration 00:00:05.00"));
    take(QStringLiteral("Duration:00:00:05.00"));
    EXPECT_EQ(m_file->sourceDuration(), m_durationBefore);
}

TEST_F(AudioExtractorLines, AreSearchedForTimesWhateverTheLetterCase)
{
    take(QStringLiteral("DURATION: 00:00:05.00"));
    EXPECT_EQ(m_file->sourceDuration(), 5.0F);
    take(QStringLiteral("TIME=00:00:03.20"));
    EXPECT_EQ(m_file->durationProcessed(), 3.0F);
}

TEST_F(AudioExtractorLines, OfTwoStreamsAreJoinedByOneLineFeed)
{
    m_file->setStreamsInfo(QString());
    take(QStringLiteral("    Stream #0:0(und): Video: h264  "));
    take(QStringLiteral("\tStream #0:1(und): Audio: aac"));
    take(QStringLiteral("Output stream"));
    take(QStringLiteral("  stream #0:2"));
    EXPECT_EQ(m_file->streamsInfo(), QStringLiteral("Stream #0:0(und): Video: h264\nStream #0:1(und): Audio: aac"));
}

TEST_F(AudioExtractorLines, CanCarryADurationATimeAndAStreamAtOnce)
{
    take(QStringLiteral("Stream Duration: 00:00:05.00 time=00:00:03.20 Error"));
    EXPECT_EQ(m_file->sourceDuration(), 5.0F);
    EXPECT_EQ(m_file->durationProcessed(), 3.0F);
    EXPECT_TRUE(m_file->streamsInfo().startsWith(QStringLiteral("Stream Duration")));
    EXPECT_EQ(m_observer.errors().size(), 1);
    // The time is looked for from the start of the line again.
    take(QStringLiteral("time=00:00:04.20 Duration: 00:00:06.00"));
    EXPECT_EQ(m_file->sourceDuration(), 6.0F);
    EXPECT_EQ(m_file->durationProcessed(), 4.0F);
}

TEST_F(AudioExtractorLines, WithAWordOfFailureBecomeErrors)
{
    for (const QString& word : {QStringLiteral("Unknown format"), QStringLiteral("Error"),
                                QStringLiteral("incomplete frame"), QStringLiteral("Header missing")}) {
        const QString line = QStringLiteral(" [mp3 @ 0x1] ") + word + QStringLiteral(" {}%1 ");
        const qsizetype before = m_observer.errors().size();
        take(line);
        ASSERT_EQ(m_observer.errors().size(), before + 1) << qPrintable(word);
        EXPECT_EQ(m_observer.errors().last(), (Error{QStringLiteral("com.ostrova.Quillpost.SyncBaseErrorDomain"), 2,
                                                     QStringLiteral("FFMPEG error( ") + line + QStringLiteral(" )")}));
    }
}

TEST_F(AudioExtractorLines, AreSearchedForFailuresWhateverTheLetterCase)
{
    for (const QString& line : {QStringLiteral("an error while decoding"), QStringLiteral("UNKNOWN FORMAT"),
                                QStringLiteral("Incomplete Frame"), QStringLiteral("header missing")}) {
        const qsizetype before = m_observer.errors().size();
        take(line);
        EXPECT_EQ(m_observer.errors().size(), before + 1) << qPrintable(line);
    }
}

TEST_F(AudioExtractorLines, WithTwoWordsOfFailureBecomeTwoErrors)
{
    take(QStringLiteral("Header missing: Error, another error"));
    EXPECT_EQ(m_observer.descriptions(),
              (QStringList{QStringLiteral("FFMPEG error( Header missing: Error, another error )"),
                           QStringLiteral("FFMPEG error( Header missing: Error, another error )")}));
}

TEST_F(AudioExtractorLines, WithoutAWordOfFailureBecomeNoErrors)
{
    take(QStringLiteral("  Metadata:"));
    take(QStringLiteral("/home/anna/a.mov: No such file or directory"));
    EXPECT_EQ(m_observer.errors().size(), 0);
}

TEST_F(AudioExtractorLines, WithAWordOfFailureAndNoObserverChangeNothing)
{
    m_extractor->setObserver(nullptr);
    take(QStringLiteral("Error"));
    EXPECT_EQ(m_observer.errors().size(), 0);
}

TEST_F(AudioExtractorLines, ChangeDurationsOnTheMainThreadWhileTheWorkerWaits)
{
    for (const QString& line : {QStringLiteral("Duration: 00:00:05.00"), QStringLiteral("time=00:00:05.00")}) {
        bool changed = false;
        std::atomic<bool> returned = false;
        const auto onChange = [&] {
            changed = true;
            EXPECT_TRUE(MainThread::isCurrent());
            // Long enough for a worker that does not wait to go on.
            const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(100);
            while (!returned && std::chrono::steady_clock::now() < deadline)
                std::this_thread::yield();
            EXPECT_FALSE(returned);
        };
        const auto first = QObject::connect(m_file.get(), &MediaFile::sourceDurationChanged, onChange);
        const auto second = QObject::connect(m_file.get(), &MediaFile::durationProcessedChanged, onChange);
        Worker worker([&] {
            m_extractor->processFFMPEGOutputString(line);
            returned = true;
        });
        EXPECT_TRUE(worker.join());
        EXPECT_TRUE(changed);
        QObject::disconnect(first);
        QObject::disconnect(second);
    }
}

TEST_F(AudioExtractorLines, AppendStreamsOnTheMainThreadWithoutWaiting)
{
    m_file->setStreamsInfo(QString());
    bool onMainThread = false;
    QObject::connect(m_file.get(), &MediaFile::streamsInfoChanged,
                     [&onMainThread] { onMainThread = MainThread::isCurrent(); });
    // The main loop does not turn meanwhile, so a worker that waited would never end.
    std::thread([this] { m_extractor->processFFMPEGOutputString(QStringLiteral("Stream #0")); }).join();
    EXPECT_EQ(m_file->streamsInfo(), QString());
    MainThread::drain();
    EXPECT_EQ(m_file->streamsInfo(), QStringLiteral("Stream #0"));
    EXPECT_TRUE(onMainThread);
}

TEST_F(AudioExtractorLines, ReachAMediaFileThatTheirExtractorDidNotOutlive)
{
    std::thread([this] { scriptedExtractor(m_file)->processFFMPEGOutputString(QStringLiteral("Stream #7")); }).join();
    MainThread::drain();
    EXPECT_EQ(m_file->streamsInfo(), QStringLiteral("Stream #7"));
}
