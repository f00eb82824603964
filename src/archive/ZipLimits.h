#pragma once

#include <QString>
#include <unzip.h>

#include <cstdint>
#include <functional>
#include <optional>

// What an archive may unpack to. An archive beyond it is not unpacked at all. Sizes are in bytes; an entry counts as
// whole blocks of a disk, so that many small files are not taken for nothing. Callable from every thread.
namespace ZipLimits {

constexpr std::uint64_t mostEntries = 100'000;
// Stays free on the volume, for all else that has to be written there.
constexpr std::uint64_t keptFree = 64ULL * 1024 * 1024;
// Nothing that is worth packing shrinks to less than a 250th of its size; small archives of zeros are let through.
constexpr std::uint64_t largestRatio = 250;
constexpr std::uint64_t smallSize = 256ULL * 1024 * 1024;

// How much may be written into a folder, which need not exist yet; nothing when that is not known.
using FreeSpace = std::function<std::optional<std::uint64_t>(const QString& folder)>;
// As the folder's volume says.
[[nodiscard]] std::optional<std::uint64_t> freeSpaceOf(const QString& folder);

// How many bytes an archive of that size may unpack to where so much is free.
[[nodiscard]] std::uint64_t room(std::uint64_t archiveSize, std::optional<std::uint64_t> freeSpace);

// Why the open archive must not be unpacked, by what its directory says; nothing when it may. Entries whose data lie in
// the same place, which is how a small file promises more than it holds, are a reason too. Walks the entries.
[[nodiscard]] std::optional<QString> refusal(unzFile file, std::uint64_t archiveSize,
                                             std::optional<std::uint64_t> freeSpace);

} // namespace ZipLimits
