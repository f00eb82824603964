#pragma once

#include <QString>

#include <chrono>

// Brings a delivery to disk, so that a power cut behind it costs no file of it.
namespace DeliveryFlush {

// Every file below the folder that was made or changed since then, and every folder, the given one included. Blocks for
// as long as the disk takes. False where some of it could not be flushed.
bool flush(const QString& folder, std::chrono::system_clock::time_point since);

} // namespace DeliveryFlush
