#include "commands/HeldFile.h"

#include <QFile>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

HeldFile::~HeldFile()
{
    if (m_map)
        ::munmap(m_map, m_mapSize);
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

HeldFile::HeldFile(HeldFile&& other) noexcept
{
    swap(other);
}

HeldFile& HeldFile::operator=(HeldFile&& other) noexcept
{
    swap(other);
    return *this;
}

void HeldFile::swap(HeldFile& other) noexcept
{
    std::swap(m_copy, other.m_copy);
    std::swap(m_descriptor, other.m_descriptor);
    std::swap(m_map, other.m_map);
    std::swap(m_mapSize, other.m_mapSize);
    std::swap(m_changed, other.m_changed);
}

bool HeldFile::read(const QString& path)
{
    m_descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    struct stat attributes = {};
    if (m_descriptor < 0 || ::fstat(m_descriptor, &attributes) != 0 || !S_ISREG(attributes.st_mode))
        return false;
    m_changed = attributes.st_mtim;
    const auto size = static_cast<std::size_t>(attributes.st_size);
    if (size >= large && map(size))
        return true;
    const bool isRead = readWhole(size);
    ::close(std::exchange(m_descriptor, -1));
    return isRead;
}

bool HeldFile::map(std::size_t size)
{
    void* const memory = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, m_descriptor, 0);
    if (memory == MAP_FAILED)
        return false;
    m_map = static_cast<char*>(memory);
    m_mapSize = size;
    // Brings it from the disk now. Not by touching the mapping: the other threads, the window's among them, would wait
    // for the disk wherever they change what memory there is.
    ::posix_fadvise(m_descriptor, 0, 0, POSIX_FADV_WILLNEED);
    return true;
}

// Everything there is to be read, whatever the attributes said of its size.
bool HeldFile::readWhole(std::size_t expected)
{
    constexpr std::size_t piece = 1 << 20;
    // One byte more than there should be finds the end without another piece of memory.
    const std::size_t whole = expected + 1;
    if (!m_copy.room(whole))
        return false;
    for (;;) {
        const std::size_t wanted = m_copy.size() < whole ? std::min(whole - m_copy.size(), piece) : piece;
        char* const place = m_copy.room(wanted);
        const ssize_t count = place ? ::read(m_descriptor, place, wanted) : -1;
        if (count < 0 && place && errno == EINTR)
            continue;
        if (count <= 0)
            return count == 0;
        m_copy.added(static_cast<std::size_t>(count));
    }
}

bool HeldFile::copy(std::size_t from, char* place, std::size_t count) const
{
    if (!m_map) {
        if (count > 0)
            std::memcpy(place, m_copy.data() + from, count);
        return true;
    }
    // Out of the same pages, but by the kernel: where the file was cut meanwhile it says so, while a look into the
    // mapping would end the program.
    const ssize_t copied = ::pread(m_descriptor, place, count, static_cast<off_t>(from));
    return copied == static_cast<ssize_t>(count) && (from + count < m_mapSize || isUnchanged());
}

bool HeldFile::isUnchanged() const
{
    struct stat attributes = {};
    return ::fstat(m_descriptor, &attributes) == 0 && static_cast<std::size_t>(attributes.st_size) == m_mapSize &&
           attributes.st_mtim.tv_sec == m_changed.tv_sec && attributes.st_mtim.tv_nsec == m_changed.tv_nsec;
}
