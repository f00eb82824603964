#include "archive/ZipLimits.h"

#include "foundation/Text.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <limits>
#include <sys/statvfs.h>

namespace {

constexpr std::uint64_t blockSize = 4096;
constexpr std::uint64_t most = std::numeric_limits<std::uint64_t>::max();

std::uint64_t sum(std::uint64_t a, std::uint64_t b)
{
    return a > most - b ? most : a + b;
}

std::uint64_t inBlocks(std::uint64_t size)
{
    return size > most - blockSize ? most : (size + blockSize - 1) / blockSize * blockSize;
}

std::uint64_t product(std::uint64_t a, std::uint64_t b)
{
    return b != 0 && a > most / b ? most : a * b;
}

} // namespace

std::optional<std::uint64_t> ZipLimits::freeSpaceOf(const QString& folder)
{
    QFileInfo existing(QDir::cleanPath(QDir().absoluteFilePath(folder)));
    while (!existing.exists() && !existing.isRoot())
        existing = QFileInfo(existing.path());
    struct statvfs volume
    {};
    if (statvfs(QFile::encodeName(existing.filePath()).constData(), &volume) != 0)
        return std::nullopt;
    return product(volume.f_bavail, volume.f_frsize);
}

std::uint64_t ZipLimits::room(std::uint64_t archiveSize, std::optional<std::uint64_t> freeSpace)
{
    const std::uint64_t byRatio = std::max(smallSize, product(archiveSize, largestRatio));
    return freeSpace ? std::min(byRatio, *freeSpace - std::min(*freeSpace, keptFree)) : byRatio;
}

std::optional<QString> ZipLimits::refusal(unzFile file, std::uint64_t archiveSize,
                                          std::optional<std::uint64_t> freeSpace)
{
    std::uint64_t entries = 0;
    std::uint64_t packed = 0;
    std::uint64_t unpacked = 0;
    // A directory that breaks off is reported when its entries are extracted.
    for (int result = unzGoToFirstFile(file); result == UNZ_OK; result = unzGoToNextFile(file)) {
        unz_file_info64 info{};
        if (unzGetCurrentFileInfo64(file, &info, nullptr, 0, nullptr, 0, nullptr, 0) != UNZ_OK)
            break;
        if (++entries > mostEntries)
            return Text::format("The zip file has more than {} entries", mostEntries);
        packed = sum(packed, info.compressed_size);
        unpacked = sum(unpacked, inBlocks(info.uncompressed_size));
    }
    if (freeSpace && unpacked > room(most, freeSpace))
        return Text::format("The zip file unpacks to {} bytes, and {} are free, of which {} are kept free", unpacked,
                            *freeSpace, keptFree);
    if (unpacked > room(archiveSize, std::nullopt))
        return Text::format("The zip file unpacks to {} bytes, more than {} times its size", unpacked, largestRatio);
    if (packed > archiveSize)
        return QStringLiteral("The entries of the zip file overlap");
    return std::nullopt;
}
