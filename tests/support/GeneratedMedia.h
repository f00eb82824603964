#pragma once

#include <QString>

// Short recordings made at test time with the real ffmpeg, also while a scripted one is first on PATH. Each function
// makes the file at `path`, with its folders, and returns the path; a failure fails the test.
namespace GeneratedMedia {

[[nodiscard]] QString ffmpegPath();

// A tone, in the format of the path's extension (wav, mp3, …).
QString sound(const QString& path, double seconds = 1, int channels = 1);
// A picture with a tone (mp4, mov, mpg, …), and without any sound.
QString film(const QString& path, double seconds = 1);
QString filmWithoutSound(const QString& path, double seconds = 1);
QString emptyFile(const QString& path);
// Text, whatever the path's extension promises.
QString textFile(const QString& path);

// What ffmpeg itself prints of a file.
[[nodiscard]] QString description(const QString& path);

} // namespace GeneratedMedia
