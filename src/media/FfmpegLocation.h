#pragma once

#include <QString>

// Where the ffmpeg program is. Callable from every thread while the application object lives.
namespace FfmpegLocation {

// The folder of the running program.
[[nodiscard]] QString programFolder();

// The executable file "ffmpeg" in `folder`, else the first on PATH; "" when there is none.
[[nodiscard]] QString ffmpegPath(const QString& folder = programFolder());

} // namespace FfmpegLocation
