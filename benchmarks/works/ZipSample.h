#pragma once

#include <QString>

#include <cstdint>

// The archive that unpacking is measured with.
namespace ZipSample {

// Writes an archive of so many entries that unpack to so many bytes, in folders three deep, of sizes from a tenth of
// the mean to twice of it. Half of the bytes are text, deflated; the other half are bytes that do not shrink, as
// recordings and pictures are, of which one half is stored and the other deflated all the same. False when it could
// not be written.
[[nodiscard]] bool write(const QString& path, int entries, std::uint64_t bytes);

} // namespace ZipSample
