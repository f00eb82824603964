#pragma once

#include "foundation/Error.h"

#include <QByteArray>
#include <QString>

#include <optional>

// Files that matter: a reader finds the old contents or the new ones, never a part.
namespace AtomicFile {

// Written beside, flushed to disk, renamed over the old file, and the folder flushed. Readable by the user alone.
// Returns what went wrong; the old file is then as it was.
[[nodiscard]] std::optional<Error> write(const QString& path, const QByteArray& contents);

// Brings to disk what others wrote to a file or a folder. Blocks for as long as the disk takes.
bool flush(const QString& path);

} // namespace AtomicFile
