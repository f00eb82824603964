#include "archive/ZipArchive.h"

#include "archive/ZipExtraction.h"
#include "foundation/Log.h"

#include <QFileInfo>

void ZipArchiveDelegate::ErrorMessage(const QString& /*message*/) {}

bool ZipArchiveDelegate::OverWriteOperation(const QString& /*path*/)
{
    return true;
}

bool ZipArchive::UnzipOpenFile(const QString& path)
{
    m_unzippedFiles.clear();
    m_numFiles = 0;
    m_unzFile.reset();
    // Opening a pipe would wait for its writer.
    const QFileInfo file(path);
    m_archiveSize = static_cast<std::uint64_t>(file.size());
    if (file.isFile())
        m_unzFile.reset(unzOpen64(path.toUtf8().constData()));
    if (!m_unzFile)
        return false;
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
    if (const auto refusal = ZipLimits::refusal(m_unzFile.get(), m_archiveSize, freeSpace)) {
        m_refusal = *refusal;
        OutputErrorMessage(m_refusal);
        return false;
    }
    return ZipExtraction(*this, folder, overWrite, ZipLimits::room(m_archiveSize, freeSpace)).run();
}

bool ZipArchive::UnzipCloseFile()
{
    m_password.clear();
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
