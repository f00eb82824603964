#include "ExtractorFixture.h"

#include "foundation/Assertion.h"
#include "foundation/MainThread.h"
#include "support/Waiting.h"

#include <QDir>

using namespace std::chrono_literals;

namespace {

// An extractor with the scripted ffmpeg.
class AudioExtractorChild : public ExtractorFixture
{
protected:
    const std::shared_ptr<MediaFile> m_file = mediaFile(path(QStringLiteral("day 1.mov")));
    const std::shared_ptr<AudioExtractor> m_extractor = scriptedExtractor(m_file);
    const QString m_mp3 = path(QStringLiteral("out/day 1.mp3"));
};

class CountedFile : public MediaFile
{
public:
    explicit CountedFile(const QString& path) : MediaFile(path, /*isServerMediaFile=*/false) {}
    void startAccessingBookmarkedURL() override { m_calls.append(QStringLiteral("start")); }
    void stopAccessingBookmarkedURL() override { m_calls.append(QStringLiteral("stop")); }

    QStringList m_calls;
};

// Starts another operation from inside the first.
class SecondStart : public AudioExtractorErrorObserver
{
public:
    explicit SecondStart(std::function<void(AudioExtractor&)> start) : m_start(std::move(start)) {}
    void audioExtractorHandleError(AudioExtractor& extractor, const Error&) override { m_start(extractor); }

private:
    std::function<void(AudioExtractor&)> m_start;
};

} // namespace

TEST_F(AudioExtractorChild, IsProbedWithTheSourcePathAlone)
{
    const auto file = mediaFile(path(QStringLiteral("a/./b/../-Jo's \"Tag\" & [1] Zürich.mov")));
    extractInfo(scriptedExtractor(file));
    EXPECT_EQ(m_ffmpeg.runs(),
              QList<QStringList>({{QStringLiteral("-i"), path(QStringLiteral("a/-Jo's \"Tag\" & [1] Zürich.mov"))}}));
}

TEST_F(AudioExtractorChild, ConvertsToALowRateMonoMp3)
{
    convertToMp3(m_extractor, path(QStringLiteral("out/../out/day 1.mp3")));
    EXPECT_EQ(m_ffmpeg.runs(),
              QList<QStringList>({{QStringLiteral("-i"), path(QStringLiteral("day 1.mov")), QStringLiteral("-ab"),
                                   QStringLiteral("24000"), QStringLiteral("-ar"), QStringLiteral("11025"),
                                   QStringLiteral("-ac"), QStringLiteral("1"), QStringLiteral("-acodec"),
                                   QStringLiteral("libmp3lame"), QStringLiteral("-y"), m_mp3}}));
}

TEST_F(AudioExtractorChild, ConvertsWithTheChannelsAskedFor)
{
    m_extractor->setNumberOfChannels(2);
    convertToMp3(m_extractor, m_mp3);
    EXPECT_EQ(m_ffmpeg.runs().value(0).mid(6, 2), (QStringList{QStringLiteral("-ac"), QStringLiteral("2")}));
}

TEST_F(AudioExtractorChild, ExpandsTheHomeFolderInBothPaths)
{
    m_file->setSourceFilePath(QStringLiteral("~/day 2.mov"));
    convertToMp3(m_extractor, QStringLiteral("~/day 2.mp3"));
    const QStringList arguments = m_ffmpeg.runs().value(0);
    EXPECT_EQ(arguments.value(1), path(QStringLiteral("day 2.mov")));
    EXPECT_EQ(arguments.last(), path(QStringLiteral("day 2.mp3")));
}

TEST_F(AudioExtractorChild, ProbingClearsTheStreamsOfBefore)
{
    m_ffmpeg.prints("  Duration: 00:00:05.00, start\n    Stream #0:0: Audio\n    Stream #0:1: Data\n");
    m_file->setStreamsInfo(QStringLiteral("Stream of before"));
    extractInfo(m_extractor);
    EXPECT_EQ(m_file->streamsInfo(), QStringLiteral("Stream #0:0: Audio\nStream #0:1: Data"));
    EXPECT_EQ(m_file->sourceDuration(), 5.0F);
}

TEST_F(AudioExtractorChild, ConvertingLeavesTheStreamsOfBefore)
{
    m_ffmpeg.prints("Stream mapping:\n  Stream #0:0 -> #0:0\n");
    m_file->setStreamsInfo(QStringLiteral("Stream of before"));
    convertToMp3(m_extractor, m_mp3);
    EXPECT_EQ(m_file->streamsInfo(), QStringLiteral("Stream of before\nStream mapping:\nStream #0:0 -> #0:0"));
}

TEST_F(AudioExtractorChild, OpensAndClosesTheUsersFileAroundEitherOperation)
{
    const auto file = std::make_shared<CountedFile>(path(QStringLiteral("a.wav")));
    extractInfo(scriptedExtractor(file));
    EXPECT_EQ(file->m_calls, (QStringList{QStringLiteral("start"), QStringLiteral("stop")}));
    convertToMp3(scriptedExtractor(file), m_mp3);
    EXPECT_EQ(file->m_calls.size(), 4);
}

TEST_F(AudioExtractorChild, LogsEveryLineAtInfoLevel)
{
    m_ffmpeg.prints("ffmpeg version {0} %@\nsize= 1kB\r");
    extractInfo(m_extractor);
    const QStringList lines = m_log.text().split(u'\n');
    EXPECT_EQ(lines.filter(QStringLiteral("ffmpeg version {0} %@")).size(), 1);
    EXPECT_EQ(lines.filter(QStringLiteral("size= 1kB")).size(), 1);
    EXPECT_TRUE(lines.filter(QStringLiteral("ffmpeg version"))
                    .value(0)
                    .contains(QStringLiteral("[info] [main] ffmpeg version")));
}

TEST_F(AudioExtractorChild, ShowsProgressWhileTheConversionRuns)
{
    m_ffmpeg.prints("size=1kB time=00:00:02.50 bitrate=1\r").waitsForRelease(QStringLiteral("go"));
    m_ffmpeg.prints("size=2kB time=00:00:04.50 bitrate=1\r");
    Worker worker([this] { m_extractor->convertToMp3(m_mp3); });
    EXPECT_TRUE(Waiting::until([this] { return m_file->durationProcessed() == 2.0F; }));
    EXPECT_FALSE(worker.hasEnded());
    m_ffmpeg.release(QStringLiteral("go"));
    EXPECT_TRUE(worker.join());
    EXPECT_EQ(m_file->durationProcessed(), 4.0F);
}

// What the fields show for a given output depends on the repeated piece: here the second stream is seen through it.
TEST_F(AudioExtractorChild, PutsAPieceThatALineEndCompletedInFrontOfTheFollowingOutputAgain)
{
    m_ffmpeg.prints("time=00:00:01.00\rStream ").waitsForRelease(QStringLiteral("1"));
    m_ffmpeg.prints("one\ntime=00:00:02.00\r").waitsForRelease(QStringLiteral("2"));
    m_ffmpeg.prints("two\nthree\n");
    Worker worker([this] { m_extractor->extractInfo(); });
    EXPECT_TRUE(Waiting::until([this] { return m_file->durationProcessed() == 1.0F; }));
    m_ffmpeg.release(QStringLiteral("1"));
    EXPECT_TRUE(Waiting::until([this] { return m_file->durationProcessed() == 2.0F; }));
    m_ffmpeg.release(QStringLiteral("2"));
    EXPECT_TRUE(worker.join());
    MainThread::drain();
    EXPECT_EQ(m_file->streamsInfo(), QStringLiteral("Stream one\nStream two"));
}

TEST_F(AudioExtractorChild, ReportsErrorsOnItsThreadWhileItRunsAndGoesOn)
{
    m_ffmpeg.prints("Header missing\n").waitsForRelease(QStringLiteral("go")).prints("time=00:00:09.00\r");
    std::thread::id thread;
    Worker worker([&] {
        thread = std::this_thread::get_id();
        m_extractor->convertToMp3(m_mp3);
    });
    EXPECT_TRUE(Waiting::until([this] { return m_observer.errors().size() == 1; }));
    m_ffmpeg.release(QStringLiteral("go"));
    EXPECT_TRUE(worker.join());
    EXPECT_EQ(m_observer.thread(), thread);
    EXPECT_EQ(m_file->durationProcessed(), 9.0F);
}

TEST_F(AudioExtractorChild, ReportsEveryErrorOfADamagedFile)
{
    constexpr int count = 9000;
    m_ffmpeg.prints(QByteArray("[mpeg1video @ 0x55d0c8] Error while decoding a block, skipped\n").repeated(count));
    convertToMp3(m_extractor, m_mp3);
    EXPECT_EQ(m_observer.errors().size(), count);
}

TEST_F(AudioExtractorChild, ComesThroughAnEndlessLine)
{
    m_ffmpeg.prints(QByteArray(8 * 1024 * 1024, 'x') + "\n").waitsForRelease(QStringLiteral("go"));
    m_ffmpeg.prints("\n  Duration: 00:00:07.00\n");
    m_ffmpeg.release(QStringLiteral("go"));
    extractInfo(m_extractor);
    EXPECT_EQ(m_file->sourceDuration(), 7.0F);
}

TEST_F(AudioExtractorChild, KeepsWhatACrashedFfmpegFound)
{
    m_ffmpeg.prints("  Duration: 00:00:05.00\n").crashes();
    extractInfo(m_extractor);
    EXPECT_EQ(m_file->sourceDuration(), 5.0F);
    EXPECT_EQ(m_observer.errors().size(), 0);
}

// Success shows in the values, not in how ffmpeg ended.
TEST_F(AudioExtractorChild, DoesNotMindTheExitStatus)
{
    m_ffmpeg.exits(1);
    extractInfo(m_extractor);
    EXPECT_EQ(m_observer.errors().size(), 0);
    EXPECT_FALSE(m_log.contains(QStringLiteral("Error")));
}

TEST_F(AudioExtractorChild, ReportsAnFfmpegThatCannotBeLaunched)
{
    const auto extractor =
        AudioExtractor::audioExtractorWithInputMediaFile(m_file, path(QStringLiteral("nothing/ffmpeg")));
    extractor->setObserver(&m_observer);
    extractInfo(extractor);
    ASSERT_EQ(m_observer.errors().size(), 1);
    EXPECT_EQ(m_observer.errors().first().code, 2);
    EXPECT_TRUE(m_log.contains(QStringLiteral("[error] [main] Error: unable to launch ffmpeg: ")));
}

TEST_F(AudioExtractorChild, IsGoodForOneOperation)
{
    extractInfo(m_extractor);
    convertToMp3(m_extractor, m_mp3);
    EXPECT_EQ(m_ffmpeg.runs().size(), 1);
    EXPECT_EQ(m_observer.descriptions(), QStringList{QStringLiteral("FFMPEG error( the task was launched before )")});
}

TEST_F(AudioExtractorChild, RefusesASecondStartDuringAnOperation)
{
    if constexpr (!Assertion::stopsTheProgram)
        GTEST_SKIP() << "assertions do not stop this build";
    m_ffmpeg.prints("Error\n");
    SecondStart probe([](AudioExtractor& extractor) { extractor.extractInfo(); });
    SecondStart convert([this](AudioExtractor& extractor) { extractor.convertToMp3(m_mp3); });
    m_extractor->setObserver(&probe);
    EXPECT_DEATH(m_extractor->extractInfo(), "Trying to start info exctraction while another extraction in progress");
    EXPECT_DEATH(m_extractor->convertToMp3(m_mp3), "Trying to start info exctraction while mp3 conversion in progress");
    m_extractor->setObserver(&convert);
    EXPECT_DEATH(m_extractor->extractInfo(), "Trying to start mp3 conversion while extraction in progress");
    EXPECT_DEATH(m_extractor->convertToMp3(m_mp3),
                 "Trying to start mp3 conversion while another mp3 conversion in progress");
}

TEST_F(AudioExtractorChild, TerminatedReturnsSoonWhateverItsChildDoes)
{
    m_ffmpeg.prints("time=00:00:01.00\r").ignoresRequestsToEnd().hangs();
    for (const bool probing : {true, false}) {
        const auto extractor = scriptedExtractor(m_file);
        m_file->setDurationProcessed(0.0F);
        Worker worker([&] { probing ? extractor->extractInfo() : extractor->convertToMp3(m_mp3); });
        EXPECT_TRUE(Waiting::until([this] { return m_file->durationProcessed() == 1.0F; }));
        extractor->terminate();
        EXPECT_TRUE(worker.join(5s));
        EXPECT_EQ(m_ffmpeg.runningCount(), 0);
    }
    EXPECT_EQ(m_ffmpeg.runs().size(), 2);
}

TEST_F(AudioExtractorChild, TerminatedBeforeItsStartDoesNothing)
{
    m_file->setStreamsInfo(QStringLiteral("Stream of before"));
    m_extractor->terminate();
    extractInfo(m_extractor);
    convertToMp3(m_extractor, m_mp3);
    EXPECT_EQ(m_ffmpeg.runs().size(), 0);
    EXPECT_EQ(m_file->streamsInfo(), QStringLiteral("Stream of before"));
    EXPECT_EQ(m_observer.errors().size(), 0);
}

TEST_F(AudioExtractorChild, TerminatedInTheMiddleOfManyLinesTakesNoMoreOfThem)
{
    m_ffmpeg.prints(QByteArray("Error\n").repeated(1000)).hangs();
    SecondStart ending([](AudioExtractor& extractor) { extractor.terminate(); });
    m_extractor->setObserver(&ending);
    extractInfo(m_extractor);
    EXPECT_LT(m_log.count(QStringLiteral("Error")), 3);
}
