#include "demo-service/Zip.h"

#include <zip.h>

#include <algorithm>
#include <stdexcept>

namespace DemoService {
namespace {

// An archive that grows in memory, behind the file functions that minizip calls.
struct MemoryFile
{
    std::string bytes;
    std::size_t place = 0;
};

MemoryFile* memoryFile(voidpf stream)
{
    return static_cast<MemoryFile*>(stream);
}

voidpf openMemory(voidpf opaque, const void*, int)
{
    return opaque;
}

uLong readMemory(voidpf, voidpf stream, void* buffer, uLong size)
{
    MemoryFile* file = memoryFile(stream);
    const std::size_t taken = std::min<std::size_t>(size, file->bytes.size() - file->place);
    std::copy_n(file->bytes.data() + file->place, taken, static_cast<char*>(buffer));
    file->place += taken;
    return static_cast<uLong>(taken);
}

uLong writeMemory(voidpf, voidpf stream, const void* buffer, uLong size)
{
    MemoryFile* file = memoryFile(stream);
    file->bytes.resize(std::max<std::size_t>(file->bytes.size(), file->place + size));
    std::copy_n(static_cast<const char*>(buffer), size, file->bytes.data() + file->place);
    file->place += size;
    return size;
}

ZPOS64_T tellMemory(voidpf, voidpf stream)
{
    return memoryFile(stream)->place;
}

long seekMemory(voidpf, voidpf stream, ZPOS64_T offset, int origin)
{
    MemoryFile* file = memoryFile(stream);
    const std::size_t start = origin == ZLIB_FILEFUNC_SEEK_SET   ? 0
                              : origin == ZLIB_FILEFUNC_SEEK_CUR ? file->place
                                                                 : file->bytes.size();
    if (start + offset > file->bytes.size())
        return -1;
    file->place = start + offset;
    return 0;
}

int closeMemory(voidpf, voidpf)
{
    return 0;
}

int errorOfMemory(voidpf, voidpf)
{
    return 0;
}

bool addFile(zipFile archive, const std::string& name, const std::string& bytes)
{
    zip_fileinfo information{};
    information.tmz_date = {.tm_sec = 0, .tm_min = 0, .tm_hour = 12, .tm_mday = 1, .tm_mon = 0, .tm_year = 2020};
    return zipOpenNewFileInZip(archive, name.c_str(), &information, nullptr, 0, nullptr, 0, nullptr, Z_DEFLATED,
                               Z_DEFAULT_COMPRESSION) == ZIP_OK &&
           zipWriteInFileInZip(archive, bytes.data(), static_cast<unsigned>(bytes.size())) == ZIP_OK &&
           zipCloseFileInZip(archive) == ZIP_OK;
}

} // namespace

std::string zipped(const std::vector<std::pair<std::string, std::string>>& files)
{
    MemoryFile memory;
    zlib_filefunc64_def functions{openMemory, readMemory,  writeMemory,   tellMemory,
                                  seekMemory, closeMemory, errorOfMemory, &memory};
    zipFile archive = zipOpen2_64("memory", APPEND_STATUS_CREATE, nullptr, &functions);
    bool good = archive != nullptr;
    for (const auto& [name, bytes] : files)
        good = good && addFile(archive, name, bytes);
    if (archive != nullptr && zipClose(archive, nullptr) != ZIP_OK)
        good = false;
    if (!good)
        throw std::runtime_error("cannot make the zip archive");
    return std::move(memory.bytes);
}

} // namespace DemoService
