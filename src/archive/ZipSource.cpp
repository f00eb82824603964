#include "archive/ZipSource.h"

#include <QFileInfo>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace {

using SharedFile = std::shared_ptr<const FileDescriptor>;

// minizip reads headers byte by byte and goes back and forth between the directory and the entries, for which the C
// library's streams ask the system again and again. Here headers come out of a small window, and the data of entries
// goes straight to where it is wanted.
class SourceStream
{
public:
    explicit SourceStream(SharedFile file) : m_file(std::move(file)) {}

    std::size_t read(char* buffer, std::size_t size)
    {
        std::size_t done = 0;
        while (done < size) {
            const std::size_t left = size - done;
            const std::size_t count =
                left >= m_window.size() ? readFile(buffer + done, left) : readWindow(buffer + done, left);
            if (count == 0)
                break;
            done += count;
            m_position += static_cast<std::int64_t>(count);
        }
        return done;
    }
    [[nodiscard]] std::int64_t position() const { return m_position; }
    // Behind the end is fine, as for a file.
    bool seek(std::int64_t offset, int origin)
    {
        std::int64_t from = 0;
        if (origin == ZLIB_FILEFUNC_SEEK_CUR)
            from = m_position;
        else if (origin == ZLIB_FILEFUNC_SEEK_END)
            from = fileSize();
        if (from < 0 || offset < -from || offset > std::numeric_limits<std::int64_t>::max() - from)
            return false;
        m_position = from + offset;
        return true;
    }
    [[nodiscard]] bool hasFailed() const { return m_hasFailed; }

private:
    // Negative where it is not known.
    [[nodiscard]] std::int64_t fileSize() const
    {
        struct stat status = {};
        return fstat(m_file->get(), &status) == 0 ? static_cast<std::int64_t>(status.st_size) : -1;
    }
    // 0 at the end, and on an error.
    std::size_t readFile(char* buffer, std::size_t size)
    {
        ssize_t count = 0;
        do {
            count = pread(m_file->get(), buffer, size, m_position);
        } while (count < 0 && errno == EINTR);
        m_hasFailed = m_hasFailed || count < 0;
        return static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    }
    std::size_t readWindow(char* buffer, std::size_t size)
    {
        if (m_position < m_windowStart || m_position >= m_windowStart + static_cast<std::int64_t>(m_windowSize)) {
            m_windowStart = m_position;
            m_windowSize = readFile(m_window.data(), m_window.size());
        }
        const auto begin = static_cast<std::size_t>(m_position - m_windowStart);
        const std::size_t count = std::min(size, m_windowSize - begin);
        std::memcpy(buffer, m_window.data() + begin, count);
        return count;
    }

    SharedFile m_file;
    std::array<char, 4096> m_window{};
    std::int64_t m_windowStart = 0;
    std::size_t m_windowSize = 0;
    std::int64_t m_position = 0;
    bool m_hasFailed = false;
};

SourceStream* streamOf(voidpf stream)
{
    return static_cast<SourceStream*>(stream);
}

// What minizip calls; it takes the shared file where a name would be.
voidpf openStream(voidpf /*opaque*/, const void* file, int /*mode*/)
{
    return std::make_unique<SourceStream>(*static_cast<const SharedFile*>(file)).release();
}

uLong readStream(voidpf /*opaque*/, voidpf stream, void* buffer, uLong size)
{
    return streamOf(stream)->read(static_cast<char*>(buffer), size);
}

uLong writeStream(voidpf /*opaque*/, voidpf /*stream*/, const void* /*buffer*/, uLong /*size*/)
{
    return 0;
}

ZPOS64_T tellStream(voidpf /*opaque*/, voidpf stream)
{
    return static_cast<ZPOS64_T>(streamOf(stream)->position());
}

long seekStream(voidpf /*opaque*/, voidpf stream, ZPOS64_T offset, int origin)
{
    // A way back comes as a very large number.
    return streamOf(stream)->seek(static_cast<std::int64_t>(offset), origin) ? 0 : -1;
}

int closeStream(voidpf /*opaque*/, voidpf stream)
{
    const std::unique_ptr<SourceStream> closed(streamOf(stream));
    return 0;
}

int hasStreamFailed(voidpf /*opaque*/, voidpf stream)
{
    return streamOf(stream)->hasFailed() ? 1 : 0;
}

} // namespace

ZipSource::ZipSource(const QString& path)
{
    // Opening a pipe would wait for its writer.
    const QFileInfo info(path);
    if (!info.isFile())
        return;
    auto file = std::make_shared<FileDescriptor>(::open(path.toUtf8().constData(), O_RDONLY | O_CLOEXEC));
    if (!file->isOpen())
        return;
    m_file = std::move(file);
    m_size = static_cast<std::uint64_t>(info.size());
}

UnzHandle ZipSource::newHandle() const
{
    if (!m_file)
        return nullptr;
    zlib_filefunc64_def functions{.zopen64_file = &openStream,
                                  .zread_file = &readStream,
                                  .zwrite_file = &writeStream,
                                  .ztell64_file = &tellStream,
                                  .zseek64_file = &seekStream,
                                  .zclose_file = &closeStream,
                                  .zerror_file = &hasStreamFailed,
                                  .opaque = nullptr};
    return UnzHandle(unzOpen2_64(static_cast<const void*>(&m_file), &functions));
}
