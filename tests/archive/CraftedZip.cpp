#include "CraftedZip.h"

#include <zlib.h>

#include <algorithm>

namespace {

void add16(QByteArray& bytes, std::uint32_t value)
{
    bytes += static_cast<char>(value & 0xff);
    bytes += static_cast<char>((value >> 8) & 0xff);
}

void add32(QByteArray& bytes, std::uint32_t value)
{
    add16(bytes, value & 0xffff);
    add16(bytes, value >> 16);
}

std::uint32_t size32(const QByteArray& bytes)
{
    return static_cast<std::uint32_t>(bytes.size());
}

// The fields that both headers of an entry share.
QByteArray sharedFields(const CraftedEntry& entry)
{
    QByteArray bytes;
    add16(bytes, 20);
    add16(bytes, entry.flags);
    add16(bytes, entry.method);
    add16(bytes, entry.dosTime);
    add16(bytes, entry.dosDate);
    const auto checksum = static_cast<std::uint32_t>(
        crc32(0, reinterpret_cast<const Bytef*>(entry.data.constData()), size32(entry.data)));
    add32(bytes, entry.wrongChecksum ? ~checksum : checksum);
    add32(bytes, size32(entry.data));
    add32(bytes, entry.saysSize.value_or(size32(entry.data)));
    add16(bytes, size32(entry.name));
    add16(bytes, 0);
    return bytes;
}

} // namespace

QByteArray craftedZip(const QList<CraftedEntry>& entries)
{
    QByteArray zip;
    QByteArray directory;
    std::uint32_t start = 0;
    for (const CraftedEntry& entry : entries) {
        if (!entry.overlaps)
            start = size32(zip);
        directory += QByteArray("PK\x01\x02\x14\x03", 6) + sharedFields(entry);
        add16(directory, 0);
        add16(directory, 0);
        add16(directory, 0);
        add32(directory, entry.externalAttributes);
        add32(directory, start);
        directory += entry.name;
        if (!entry.overlaps)
            zip += "PK\x03\x04" + sharedFields(entry) + entry.name + entry.data;
    }
    const std::uint32_t directoryStart = size32(zip);
    const auto count = static_cast<std::uint32_t>(std::min<qsizetype>(entries.size(), 0xffff));
    zip += directory + QByteArray("PK\x05\x06\0\0\0\0", 8);
    add16(zip, count);
    add16(zip, count);
    add32(zip, size32(directory));
    add32(zip, directoryStart);
    add16(zip, 0);
    return zip;
}
