#pragma once

#include <QByteArray>
#include <QList>

#include <cstdint>
#include <optional>

// An entry as its bytes say, whether or not an archiver would write it so. The data is stored, not deflated.
struct CraftedEntry
{
    QByteArray name;
    QByteArray data = "data";
    // 4 March 2011, 10:20:30.
    std::uint16_t dosDate = (31 << 9) | (3 << 5) | 4;
    std::uint16_t dosTime = (10 << 11) | (20 << 5) | 15;
    bool wrongChecksum = false;
    std::uint32_t externalAttributes = 0;
    std::uint16_t method = 0;
    std::uint16_t flags = 0;
    // What the headers say of its size when unpacked, where that is not true.
    std::optional<std::uint32_t> saysSize = std::nullopt;
    // The directory says that it lies where the entry before it does.
    bool overlaps = false;
};

// Of more entries than the format can count, it says that they are as many as it can.
[[nodiscard]] QByteArray craftedZip(const QList<CraftedEntry>& entries);
