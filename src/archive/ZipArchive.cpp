#include "archive/ZipArchive.h"

#include "archive/ReadAhead.h"
#include "archive/ZipExtraction.h"
#include "foundation/Log.h"

#include <algorithm>
#include <sched.h>

namespace {

// Starting threads takes longer than unpacking less.
constexpr std::uint64_t sizeWorthThreads = 256ULL * 1024;
// More than can be written as fast.
constexpr unsigned mostReaders = 4;

// Those that this program may run on.
unsigned numProcessors()
{
    cpu_set_t processors;
    CPU_ZERO(&processors);
    return sched_getaffinity(0, sizeof processors, &processors) == 0 ? static_cast<unsigned>(CPU_COUNT(&processors))
                                                                     : 1;
}

unsigned readersFor(std::uint64_t archiveSize)
{
    const unsigned processors = numProcessors();
    return archiveSize < sizeWorthThreads || processors < 2 ? 0 : std::min(processors, mostReaders);
}

} // namespace

void ZipArchiveDelegate::ErrorMessage(const QString& /*message*/) {}

bool ZipArchiveDelegate::OverWriteOperation(const QString& /*path*/)
{
    return true;
}

bool ZipArchive::UnzipOpenFile(const QString& path)
{
    m_unzippedFiles.clear();
    m_numFiles = 0;
    m_source.emplace(path);
    m_unzFile = m_source->newHandle();
    if (!m_unzFile) {
        m_source.reset();
        return false;
    }
    unz_global_info64 info{};
    if (unzGetGlobalInfo64(m_unzFile.get(), &info) == UNZ_OK) {
        m_numFiles = info.number_entry;
        Log::system("{} entries in the zip file", m_numFiles);
    }
    return true;
}

bool ZipArchive::UnzipOpenFilePassword(const QString& path, const QString& password)
{
    setPassword(password);
    return UnzipOpenFile(path);
}

bool ZipArchive::UnzipFileTo(const QString& folder, bool overWrite)
{
    m_refusal.clear();
    m_numPassedOver = 0;
    const std::optional<std::uint64_t> freeSpace = m_freeSpace ? m_freeSpace(folder) : std::nullopt;
    const std::uint64_t archiveSize = m_source ? m_source->size() : 0;
    if (const auto refusal = ZipLimits::refusal(m_unzFile.get(), archiveSize, freeSpace)) {
        m_refusal = *refusal;
        OutputErrorMessage(m_refusal);
        return false;
    }
    return ZipExtraction(*this, makeReader(), folder, overWrite, ZipLimits::room(archiveSize, freeSpace)).run();
}

std::unique_ptr<EntryReader> ZipArchive::makeReader() const
{
    if (m_unzFile && m_password.isEmpty()) {
        if (const unsigned readers = m_readers.value_or(readersFor(m_source->size())); readers > 0) {
            if (auto reader = ReadAhead::start(*m_source, readers))
                return reader;
        }
    }
    return std::make_unique<DirectReader>(m_unzFile, m_password.toUtf8());
}

bool ZipArchive::UnzipCloseFile()
{
    m_password.clear();
    m_source.reset();
    return !m_unzFile || unzClose(m_unzFile.release()) == UNZ_OK;
}

void ZipArchive::OutputErrorMessage(const QString& message) const
{
    // Held, so that a delegate that lets go of itself lives to the end of its call.
    if (const auto delegate = m_delegate)
        delegate->ErrorMessage(message);
}

bool ZipArchive::OverWrite(const QString& path) const
{
    const auto delegate = m_delegate;
    return !delegate || delegate->OverWriteOperation(path);
}
