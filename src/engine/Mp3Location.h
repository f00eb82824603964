#pragma once

#include "model/Job.h"

#include <QString>

namespace Mp3Location {

// The folder of a job's converted files: the temporary folder's subfolder with the deposition number.
[[nodiscard]] QString folderOfJob(const QString& tempFilesFolder, const Job& job);

// Where a media file's MP3 is made: "clip.mov" gives "clip.mov.mp3" in the job's folder. Where an earlier file of the
// job has the same name (cameras name alike), the file's place in the list is put in, so that neither overwrites the
// other.
[[nodiscard]] QString ofMediaFile(const QString& tempFilesFolder, const Job& job, const MediaFile& mediaFile);

} // namespace Mp3Location
