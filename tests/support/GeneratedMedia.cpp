#include "support/GeneratedMedia.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <gtest/gtest.h>

namespace {

// Looked up before any test changes PATH.
const QString realFfmpeg = QStandardPaths::findExecutable(QStringLiteral("ffmpeg"));

QString run(const QStringList& arguments, bool* succeeded)
{
    QProcess process;
    process.setStandardInputFile(QProcess::nullDevice());
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(realFfmpeg, arguments);
    *succeeded = process.waitForFinished(-1) && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    return QString::fromUtf8(process.readAll());
}

QString make(const QString& path, QStringList arguments)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    // Tests run in parallel.
    arguments << QStringLiteral("-threads") << QStringLiteral("1") << QStringLiteral("-y") << path;
    bool succeeded = false;
    const QString output = run(arguments, &succeeded);
    EXPECT_TRUE(succeeded) << qPrintable(output);
    return path;
}

QStringList tone(double seconds)
{
    return {QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
            QStringLiteral("sine=frequency=440:sample_rate=22050:duration=%1").arg(seconds)};
}

QStringList picture(double seconds)
{
    return {QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
            QStringLiteral("testsrc=size=64x48:rate=25:duration=%1").arg(seconds)};
}

QString write(const QString& path, const QByteArray& contents)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << qPrintable(path);
    EXPECT_EQ(file.write(contents), contents.size());
    return path;
}

} // namespace

QString GeneratedMedia::ffmpegPath()
{
    return realFfmpeg;
}

QString GeneratedMedia::sound(const QString& path, double seconds, int channels)
{
    return make(path, tone(seconds) << QStringLiteral("-ac") << QString::number(channels));
}

QString GeneratedMedia::film(const QString& path, double seconds)
{
    return make(path, picture(seconds) + tone(seconds));
}

QString GeneratedMedia::filmWithoutSound(const QString& path, double seconds)
{
    return make(path, picture(seconds));
}

QString GeneratedMedia::emptyFile(const QString& path)
{
    return write(path, {});
}

QString GeneratedMedia::textFile(const QString& path)
{
    return write(path, QByteArray("This is a letter, not a recording.\n").repeated(50));
}

QString GeneratedMedia::description(const QString& path)
{
    // Without an output file ffmpeg always ends with a failure.
    [[maybe_unused]] bool succeeded = false;
    return run({QStringLiteral("-i"), path}, &succeeded);
}
