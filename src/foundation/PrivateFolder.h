#pragma once

#include <QString>

// Folders for what is the user's alone: settings, logs, saved jobs, converted recordings. Callable from every thread.
namespace PrivateFolder {

// Makes the folder and those missing above it, each readable by the user alone whatever the file mode mask; folders
// that are there stay as they are. False when it is not there afterwards.
bool make(const QString& path);

} // namespace PrivateFolder
