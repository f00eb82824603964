#include "support/GeneratedMedia.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

// Looked up before any test changes PATH.
const QString realFfmpeg = QStandardPaths::findExecutable(QStringLiteral("ffmpeg"));

// Not through QProcess: thread sanitizers lose sight of a thread that starts one.
QString run(const QStringList& arguments, bool* succeeded)
{
    std::vector<std::string> texts{QFile::encodeName(realFfmpeg).toStdString()};
    for (const QString& argument : arguments)
        texts.push_back(QFile::encodeName(argument).toStdString());
    std::vector<char*> pointers;
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);

    const QTemporaryDir folder;
    const QString outputPath = folder.filePath(QStringLiteral("output"));
    const QByteArray encodedPath = QFile::encodeName(outputPath);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, encodedPath.constData(), O_WRONLY | O_CREAT, 0600);
    pid_t processId = -1;
    const int failure = posix_spawn(&processId, pointers.front(), &actions, nullptr, pointers.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    int status = -1;
    *succeeded = failure == 0 && ::waitpid(processId, &status, 0) == processId && status == 0;
    QFile output(outputPath);
    return output.open(QIODevice::ReadOnly) ? QString::fromUtf8(output.readAll()) : QString();
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
