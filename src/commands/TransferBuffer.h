#pragma once

#include <cstddef>
#include <string_view>

// The bytes of one transfer, held in memory whole: hundreds of megabytes of a recording. Grows without copying, takes
// its memory from the system in large pages, which costs a fraction of the small ones, and gives all of it back at its
// end; what was cleared is kept for the next transfer that uses the same buffer. One thread at a time.
class TransferBuffer
{
public:
    TransferBuffer() = default;
    ~TransferBuffer();
    TransferBuffer(TransferBuffer&& other) noexcept;
    TransferBuffer& operator=(TransferBuffer&& other) noexcept;

    [[nodiscard]] const char* data() const { return m_data; }
    [[nodiscard]] std::size_t size() const { return m_size; }
    [[nodiscard]] std::string_view view() const { return {m_data, m_size}; }

    // Room for so many bytes behind those that are there: where they may be written before added() counts them. Null
    // when there is no memory for them, and everything is as it was.
    [[nodiscard]] char* room(std::size_t bytes);
    void added(std::size_t bytes) { m_size += bytes; }
    // False when there is no memory for them.
    [[nodiscard]] bool append(const char* bytes, std::size_t size);
    // Empty, with its memory.
    void clear() { m_size = 0; }

private:
    char* m_data = nullptr;
    std::size_t m_size = 0;
    std::size_t m_capacity = 0;
};
