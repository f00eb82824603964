#include "harness/InputFiles.h"

#include "harness/ChildRun.h"

#include <QFile>
#include <QFileInfo>

#include <cstring>
#include <random>
#include <unistd.h>

namespace Bench {

QByteArray noise(long long size, unsigned seed)
{
    std::mt19937_64 random(seed);
    QByteArray bytes(size, Qt::Uninitialized);
    char* const data = bytes.data();
    for (long long at = 0; at < size; at += 8) {
        const std::uint64_t word = random();
        std::memcpy(data + at, &word, static_cast<std::size_t>(std::min<long long>(8, size - at)));
    }
    return bytes;
}

QString noiseFile(const Context& context, const QString& name, long long size, unsigned seed)
{
    const QString path = context.folder.filePath(name);
    if (QFileInfo(path).size() == size)
        return path;
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(noise(size, seed)) != size)
        fail(path + QStringLiteral(" could not be written"));
    return path;
}

QStringList films(const Context& context, int number, int seconds)
{
    QStringList paths;
    for (int i = 1; i <= number; ++i) {
        const QString path = context.folder.filePath(QStringLiteral("Film-%1s-%2.mp4").arg(seconds).arg(i));
        paths << path;
        if (QFileInfo::exists(path))
            continue;
        // Beside, so that a film that was broken off is not taken for a whole one.
        const QString beside = context.folder.filePath(QStringLiteral("making.mp4"));
        const QString minute = context.folder.filePath(QStringLiteral("minute.mp4"));
        const QStringList quiet{QStringLiteral("ffmpeg"), QStringLiteral("-nostdin"), QStringLiteral("-loglevel"),
                                QStringLiteral("error"), QStringLiteral("-y")};
        // Noise in speech's band: as hard to encode as speech, which a tone is not.
        if (!QFileInfo::exists(minute))
            (void)runChild(quiet + QStringList{QStringLiteral("-f"),
                                               QStringLiteral("lavfi"),
                                               QStringLiteral("-i"),
                                               QStringLiteral("testsrc2=size=640x360:rate=25"),
                                               QStringLiteral("-f"),
                                               QStringLiteral("lavfi"),
                                               QStringLiteral("-i"),
                                               QStringLiteral("anoisesrc=color=pink:sample_rate=48000:seed=7,"
                                                              "bandpass=f=800:width_type=h:w=1200,volume=4,"
                                                              "aformat=channel_layouts=stereo"),
                                               QStringLiteral("-t"),
                                               QStringLiteral("60"),
                                               QStringLiteral("-c:v"),
                                               QStringLiteral("libx264"),
                                               QStringLiteral("-preset"),
                                               QStringLiteral("ultrafast"),
                                               QStringLiteral("-crf"),
                                               QStringLiteral("35"),
                                               QStringLiteral("-c:a"),
                                               QStringLiteral("aac"),
                                               QStringLiteral("-b:a"),
                                               QStringLiteral("128k"),
                                               minute});
        (void)runChild(quiet + QStringList{QStringLiteral("-stream_loop"), QStringLiteral("-1"), QStringLiteral("-i"),
                                           minute, QStringLiteral("-t"), QString::number(seconds), QStringLiteral("-c"),
                                           QStringLiteral("copy"), beside});
        if (!QFile::rename(beside, path))
            fail(path + QStringLiteral(" could not be made"));
    }
    return paths;
}

QString freshFolder(const Context& context, const QString& name)
{
    QDir folder(context.folder.filePath(name));
    folder.removeRecursively();
    if (!folder.mkpath(QStringLiteral(".")))
        fail(folder.path() + QStringLiteral(" could not be made"));
    return folder.path();
}

void settleDisk()
{
    ::sync();
}

} // namespace Bench
