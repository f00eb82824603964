#include "ExtractorFixture.h"

#include "foundation/MainThread.h"
#include "support/GeneratedMedia.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <vector>

namespace {

// An extractor with the real ffmpeg, on recordings made for the test.
class AudioExtractorReal : public ExtractorFixture
{
protected:
    std::shared_ptr<MediaFile> probed(const QString& path)
    {
        auto file = mediaFile(path);
        extractInfo(realExtractor(file));
        return file;
    }

    const QString m_mp3 = path(QStringLiteral("out.mp3"));
};

} // namespace

TEST_F(AudioExtractorReal, FindsTheDurationAndTheStreamOfASound)
{
    const auto file = probed(GeneratedMedia::sound(path(QStringLiteral("a.wav")), 2.5));
    EXPECT_NEAR(file->sourceDuration().value_or(0), 2.5, 0.02);
    EXPECT_TRUE(file->streamsInfo().startsWith(QStringLiteral("Stream #0:0: Audio: pcm_s16le")))
        << qPrintable(file->streamsInfo());
    EXPECT_EQ(file->streamsInfo().count(u'\n'), 0);
    EXPECT_EQ(m_observer.errors().size(), 0);
}

TEST_F(AudioExtractorReal, FindsBothStreamsOfAFilm)
{
    const auto file = probed(GeneratedMedia::film(path(QStringLiteral("a.mp4")), 1));
    EXPECT_NEAR(file->sourceDuration().value_or(0), 1, 0.1);
    const QStringList streams = file->streamsInfo().split(u'\n');
    ASSERT_EQ(streams.size(), 2);
    EXPECT_TRUE(streams[0].contains(QStringLiteral("Video:")));
    EXPECT_TRUE(streams[1].contains(QStringLiteral("Audio:")));
}

TEST_F(AudioExtractorReal, ConvertsAFilmToAMonoMp3)
{
    const auto file = mediaFile(GeneratedMedia::film(path(QStringLiteral("a.mp4")), 3));
    convertToMp3(realExtractor(file), m_mp3);
    const QString description = GeneratedMedia::description(m_mp3);
    EXPECT_TRUE(description.contains(QStringLiteral("Audio: mp3, 11025 Hz, mono"))) << qPrintable(description);
    EXPECT_TRUE(description.contains(QStringLiteral("24 kb/s")));
    EXPECT_FALSE(description.contains(QStringLiteral("Video")));
    EXPECT_GE(file->durationProcessed().value_or(0), 2.0F);
    EXPECT_LE(file->durationProcessed().value_or(0), 3.0F);
    EXPECT_EQ(m_observer.errors().size(), 0);
}

TEST_F(AudioExtractorReal, ConvertsInStereoOverAnOlderFile)
{
    writeFile(QStringLiteral("out.mp3"), QByteArray(100000, 'x'));
    const auto extractor = realExtractor(mediaFile(GeneratedMedia::sound(path(QStringLiteral("a.wav")))));
    extractor->setNumberOfChannels(2);
    convertToMp3(extractor, m_mp3);
    const QString description = GeneratedMedia::description(m_mp3);
    EXPECT_TRUE(description.contains(QStringLiteral("Audio: mp3, 11025 Hz, stereo"))) << qPrintable(description);
    EXPECT_LT(QFileInfo(m_mp3).size(), 20000);
}

TEST_F(AudioExtractorReal, ReadsAndWritesFilesOfAnyName)
{
    for (const QString& name :
         {QStringLiteral("-y"), QStringLiteral("Jo's \"day\" 1"), QStringLiteral("a & b; $(c) `d`"),
          QStringLiteral("[1] {2} (3) %d *?"), QStringLiteral("Müller Łódź 証言"), QStringLiteral("a: b|c, d\\e"),
          QStringLiteral("line\nend")}) {
        const QString sound = GeneratedMedia::sound(path(QStringLiteral("plain.wav")));
        const QString source = path(QStringLiteral("in/") + name + QStringLiteral(".wav"));
        QDir().mkpath(path(QStringLiteral("in")));
        ASSERT_TRUE(QFile::rename(sound, source));
        EXPECT_NEAR(probed(source)->sourceDuration().value_or(0), 1, 0.02) << qPrintable(name);
        const QString mp3 = path(name + QStringLiteral(".mp3"));
        convertToMp3(realExtractor(mediaFile(source)), mp3);
        EXPECT_GT(QFileInfo(mp3).size(), 1000) << qPrintable(name);
    }
}

TEST_F(AudioExtractorReal, AFileNameThatHoldsAWordOfFailureIsReportedAsOne)
{
    const auto file = probed(GeneratedMedia::sound(path(QStringLiteral("Error 7.wav"))));
    ASSERT_GE(m_observer.errors().size(), 1);
    EXPECT_TRUE(m_observer.descriptions().first().contains(QStringLiteral("Error 7.wav")));
    EXPECT_NEAR(file->sourceDuration().value_or(0), 1, 0.02);
}

TEST_F(AudioExtractorReal, AFilmWithoutSoundGivesNoMp3AndEnds)
{
    const auto file = probed(GeneratedMedia::filmWithoutSound(path(QStringLiteral("a.mp4"))));
    EXPECT_EQ(file->streamsInfo().count(QStringLiteral("Video:")), 1);
    EXPECT_EQ(file->streamsInfo().count(QStringLiteral("Audio:")), 0);
    convertToMp3(realExtractor(file), m_mp3);
    EXPECT_LE(QFileInfo(m_mp3).size(), 0);
}

TEST_F(AudioExtractorReal, AFileThatIsNoRecordingKeepsItsValuesAndEnds)
{
    const QString empty = GeneratedMedia::emptyFile(path(QStringLiteral("empty.mov")));
    const QString text = GeneratedMedia::textFile(path(QStringLiteral("letter.mov")));
    const QString folder = path(QStringLiteral("folder.mov"));
    QDir().mkpath(folder);
    for (const QString& source : {empty, text, folder, path(QStringLiteral("nothing.mov"))}) {
        const auto untouched = mediaFile(source);
        const auto file = probed(source);
        EXPECT_EQ(file->sourceDuration(), untouched->sourceDuration()) << qPrintable(source);
        EXPECT_EQ(file->streamsInfo(), QString()) << qPrintable(source);
        convertToMp3(realExtractor(file), m_mp3);
        EXPECT_FALSE(QFile::exists(m_mp3)) << qPrintable(source);
    }
}

TEST_F(AudioExtractorReal, AFileThatVanishesBeforeItsConversionGivesNoMp3AndEnds)
{
    const auto file = probed(GeneratedMedia::sound(path(QStringLiteral("a.wav"))));
    const std::optional<float> duration = file->sourceDuration();
    ASSERT_TRUE(QFile::remove(path(QStringLiteral("a.wav"))));
    convertToMp3(realExtractor(file), m_mp3);
    EXPECT_FALSE(QFile::exists(m_mp3));
    EXPECT_EQ(file->sourceDuration(), duration);
    EXPECT_TRUE(m_log.contains(QStringLiteral("No such file or directory")));
}

TEST_F(AudioExtractorReal, ADamagedRecordingIsReportedAndEnds)
{
    QByteArray bytes = readFile(GeneratedMedia::sound(path(QStringLiteral("whole.mp3")), 20));
    for (qsizetype i = 2000; i < bytes.size(); i += 97)
        bytes[i] = static_cast<char>(i);
    const auto file = mediaFile(writeFile(QStringLiteral("damaged.mp3"), bytes));
    convertToMp3(realExtractor(file), m_mp3);
    EXPECT_GT(m_observer.errors().size(), 0);
}

TEST_F(AudioExtractorReal, AnMp3ThatCannotBeWrittenEnds)
{
    const auto file = mediaFile(GeneratedMedia::sound(path(QStringLiteral("a.wav"))));
    convertToMp3(realExtractor(file), path(QStringLiteral("no folder/out.mp3")));
    EXPECT_TRUE(m_log.contains(QStringLiteral("No such file or directory")));
}

TEST_F(AudioExtractorReal, SeveralRunAtOnce)
{
    const QString source = GeneratedMedia::sound(path(QStringLiteral("a.wav")), 2);
    std::vector<std::shared_ptr<MediaFile>> files;
    std::vector<std::unique_ptr<Worker>> workers;
    for (int i = 0; i < 4; ++i) {
        const auto file = files.emplace_back(mediaFile(source));
        const QString mp3 = path(QStringLiteral("out%1.mp3").arg(i));
        workers.push_back(std::make_unique<Worker>([this, file, mp3] {
            realExtractor(file)->extractInfo();
            realExtractor(file)->convertToMp3(mp3);
        }));
    }
    for (const auto& worker : workers)
        EXPECT_TRUE(worker->join());
    for (std::size_t i = 0; i < files.size(); ++i) {
        EXPECT_NEAR(files[i]->sourceDuration().value_or(0), 2, 0.02);
        EXPECT_GT(QFileInfo(path(QStringLiteral("out%1.mp3").arg(i))).size(), 1000);
    }
}

TEST_F(AudioExtractorReal, TerminatedInALongConversionLeavesNoChild)
{
    const auto file = mediaFile(GeneratedMedia::sound(path(QStringLiteral("a.wav")), 600));
    const auto extractor = realExtractor(file);
    QObject::connect(file.get(), &MediaFile::durationProcessedChanged, [&] { extractor->terminate(); });
    convertToMp3(extractor, m_mp3);
    EXPECT_LT(file->durationProcessed().value_or(0), 600.0F);
}
