#include "commands/TransferBuffer.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <sys/mman.h>
#include <utility>

namespace {

constexpr std::size_t largePage = std::size_t{2} << 20;
// Small replies and files do not pay for a large page: it is cleared whole when its first byte is written.
constexpr std::size_t smallest = 16384;

std::size_t capacityFor(std::size_t bytes, std::size_t before)
{
    // Twice as much each time; what is not written takes no memory.
    const std::size_t wanted = std::max(bytes, before * 2);
    if (wanted < largePage)
        return std::bit_ceil(std::max(wanted, smallest));
    return (wanted + largePage - 1) / largePage * largePage;
}

} // namespace

TransferBuffer::~TransferBuffer()
{
    if (m_data)
        ::munmap(m_data, m_capacity);
}

TransferBuffer::TransferBuffer(TransferBuffer&& other) noexcept
    : m_data(std::exchange(other.m_data, nullptr)), m_size(std::exchange(other.m_size, 0)),
      m_capacity(std::exchange(other.m_capacity, 0))
{}

TransferBuffer& TransferBuffer::operator=(TransferBuffer&& other) noexcept
{
    std::swap(m_data, other.m_data);
    std::swap(m_size, other.m_size);
    std::swap(m_capacity, other.m_capacity);
    return *this;
}

char* TransferBuffer::room(std::size_t bytes)
{
    if (bytes > std::numeric_limits<std::ptrdiff_t>::max() / 4 - m_size)
        return nullptr;
    if (m_size + bytes > m_capacity) {
        const std::size_t capacity = capacityFor(m_size + bytes, m_capacity);
        void* const memory =
            m_data ? ::mremap(m_data, m_capacity, capacity, MREMAP_MAYMOVE)
                   : ::mmap(nullptr, capacity, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED)
            return nullptr;
        if (capacity >= largePage)
            ::madvise(memory, capacity, MADV_HUGEPAGE); // A kernel without large pages gives small ones.
        m_data = static_cast<char*>(memory);
        m_capacity = capacity;
    }
    return m_data + m_size;
}

bool TransferBuffer::append(const char* bytes, std::size_t size)
{
    char* const place = room(size);
    if (!place)
        return false;
    if (size > 0)
        std::memcpy(place, bytes, size);
    added(size);
    return true;
}
