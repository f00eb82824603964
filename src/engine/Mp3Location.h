#pragma once

#include "model/Job.h"

#include <QString>

namespace Mp3Location {

// The folder of a job's converted files: the temporary folder's subfolder with the deposition number.
[[nodiscard]] QString folderOfJob(const QString& tempFilesFolder, const Job& job);

// Where a media file's MP3 is made: "clip.mov" gives "clip.mov.mp3" in the job's folder. Where that is the name of an
// earlier file's MP3 (cameras name alike), the place in the list is put in, so that neither overwrites the other.
// Letter case does not tell two names apart. A name longer than a file system takes is cut, and its place put in.
[[nodiscard]] QString ofMediaFile(const QString& tempFilesFolder, const Job& job, const MediaFile& mediaFile);

} // namespace Mp3Location
