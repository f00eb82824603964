#include "media/FfmpegLocation.h"

#include "ExtractorFixture.h"

#include <QCoreApplication>
#include <QFile>

namespace {

class FfmpegLocationTest : public ExtractorFixture
{
protected:
    ~FfmpegLocationTest() override { qputenv("PATH", m_oldPath); }

    const QByteArray m_oldPath = qgetenv("PATH");
};

} // namespace

TEST_F(FfmpegLocationTest, TakesTheOneBesideTheProgramFirst)
{
    const QString beside = writeFile(QStringLiteral("program/ffmpeg"), "#!/bin/sh\n");
    QFile::setPermissions(beside, QFile::ReadOwner | QFile::ExeOwner);
    m_ffmpeg.putFirstOnPath();
    EXPECT_EQ(FfmpegLocation::ffmpegPath(path(QStringLiteral("program"))), beside);
}

TEST_F(FfmpegLocationTest, PassesOverAFileBesideTheProgramThatCannotBeRun)
{
    writeFile(QStringLiteral("program/ffmpeg"), "notes");
    m_ffmpeg.putFirstOnPath();
    EXPECT_EQ(FfmpegLocation::ffmpegPath(path(QStringLiteral("program"))), m_ffmpeg.path());
}

TEST_F(FfmpegLocationTest, LooksBesideTheRunningProgramUnlessToldOtherwise)
{
    EXPECT_EQ(FfmpegLocation::programFolder(), QCoreApplication::applicationDirPath());
    m_ffmpeg.putFirstOnPath();
    EXPECT_EQ(FfmpegLocation::ffmpegPath(), m_ffmpeg.path());
}

TEST_F(FfmpegLocationTest, IsEmptyWhereThereIsNone)
{
    qputenv("PATH", path(QStringLiteral("nothing")).toUtf8());
    EXPECT_EQ(FfmpegLocation::ffmpegPath(path(QStringLiteral("program"))), QString());
    EXPECT_EQ(FfmpegLocation::ffmpegPath(QString()), QString());
}

TEST_F(FfmpegLocationTest, WithoutOneThereIsNoExtractorAndTheLogSaysWhy)
{
    qputenv("PATH", path(QStringLiteral("nothing")).toUtf8());
    EXPECT_EQ(AudioExtractor::audioExtractorWithInputMediaFile(mediaFile(path(QStringLiteral("a.wav")))), nullptr);
    EXPECT_TRUE(m_log.contains(QStringLiteral("[error] [main] Error: ffmpeg is not found inside app bundle")));
}

TEST_F(FfmpegLocationTest, WithoutADescriptorForItsTaskThereIsNoExtractorAndTheLogSaysWhy)
{
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "The undefined-behaviour checks need descriptors themselves.";
#endif
    const auto file = mediaFile(path(QStringLiteral("a.wav")));
    std::shared_ptr<AudioExtractor> extractor;
    {
        const NoDescriptorsLeft none;
        extractor = AudioExtractor::audioExtractorWithInputMediaFile(file, m_ffmpeg.path());
    }
    EXPECT_EQ(extractor, nullptr);
    EXPECT_TRUE(m_log.contains(QStringLiteral("[error] [main] Error: unable to create new NSTask object\n")));
}

TEST_F(FfmpegLocationTest, WithoutAMediaFileThereIsNoExtractor)
{
    EXPECT_EQ(AudioExtractor::audioExtractorWithInputMediaFile(nullptr, m_ffmpeg.path()), nullptr);
    EXPECT_TRUE(m_log.contains(QStringLiteral("[error] [main] Error: no media file")));
}
