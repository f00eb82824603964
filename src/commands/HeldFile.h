#pragma once

#include "commands/TransferBuffer.h"

#include <QString>

#include <cstddef>
#include <ctime>

// A file held while it is sent, as it was when this was made. Small files are copied. Those of a recording's size are
// mapped and read out of the system's cache, which costs neither the time nor the memory of a copy: should somebody
// change or cut such a file meanwhile, copy() says so before the last of it is given out, so that no mixture is sent as
// the file. Made on one thread, read on another.
class HeldFile
{
public:
    HeldFile() = default;
    ~HeldFile();
    HeldFile(HeldFile&& other) noexcept;
    HeldFile& operator=(HeldFile&& other) noexcept;

    // False when it cannot be read.
    [[nodiscard]] bool read(const QString& path);
    // In bytes.
    [[nodiscard]] std::size_t size() const { return m_map ? m_mapSize : m_copy.size(); }
    // So many bytes from a place within it. False when the file is no longer the one that was read.
    [[nodiscard]] bool copy(std::size_t from, char* place, std::size_t count) const;

    // From here on a file is mapped.
    static constexpr std::size_t large = std::size_t{4} << 20;

private:
    void swap(HeldFile& other) noexcept;
    [[nodiscard]] bool readWhole(std::size_t expected);
    [[nodiscard]] bool map(std::size_t size);
    [[nodiscard]] bool isUnchanged() const;

    TransferBuffer m_copy;
    int m_descriptor = -1; // of a mapped file
    char* m_map = nullptr;
    std::size_t m_mapSize = 0;
    timespec m_changed{}; // when the mapped file was changed last
};
