#pragma once

#include <QString>

#include <optional>

// Brings a delivery to disk, so that a power cut behind it costs no file of it.
namespace DeliveryFlush {

// Every file below the folder, and every folder, the given one included: which of them are new the clock, which may be
// set meanwhile, does not tell. What is on disk already costs next to nothing. Blocks for as long as the disk takes.
// How many files there were; nothing where some of it could not be flushed.
[[nodiscard]] std::optional<int> flush(const QString& folder);

// Everything that was written to the file system of the folder.
[[nodiscard]] bool flushFileSystem(const QString& folder);

} // namespace DeliveryFlush
