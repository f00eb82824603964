#include "archive/EntryReader.h"

#include <algorithm>
#include <utility>

namespace {

constexpr uLong encryptedFlag = 1;

bool isAscii(const QByteArray& text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

} // namespace

int EntryPieces::read(unzFile file, char* buffer, unsigned size)
{
    if (m_error != UNZ_OK)
        return m_error;
    const ZPOS64_T begin = unztell64(file);
    const int read = unzReadCurrentFile(file, buffer, size);
    if (read >= 0)
        return read;
    m_error = read;
    const auto unpacked = static_cast<int>(unztell64(file) - begin);
    const int inSteps = unpacked - unpacked % static_cast<int>(EntryReader::stepSize);
    return inSteps > 0 ? inSteps : m_error;
}

DirectReader::DirectReader(const UnzHandle& handle, QByteArray password)
    : m_handle(handle), m_password(std::move(password))
{}

bool DirectReader::open()
{
    unz_file_info64 info{};
    const bool isEncrypted =
        unzGetCurrentFileInfo64(m_handle.get(), &info, nullptr, 0, nullptr, 0, nullptr, 0) == UNZ_OK &&
        (info.flag & encryptedFlag) != 0;
    m_encrypted.reset();
    m_pieces = {};
    m_isFirst = true;
    if (m_password.isEmpty() || !isEncrypted)
        return unzOpenCurrentFile(m_handle.get()) == UNZ_OK;
    if (!isAscii(m_password))
        return false;
    m_encrypted = EncryptedEntry::open(m_handle.get(), m_password);
    return m_encrypted != nullptr;
}

EntryReader::Piece DirectReader::read()
{
    // An entry may be left after its first piece, and is then checked only where that is all of it.
    const unsigned size = m_encrypted || std::exchange(m_isFirst, false) ? stepSize : pieceSize;
    const int read =
        m_encrypted ? m_encrypted->read(m_buffer.data(), size) : m_pieces.read(m_handle.get(), m_buffer.data(), size);
    return {.data = m_buffer.data(), .size = read};
}

int DirectReader::close()
{
    return m_encrypted ? m_encrypted->close() : unzCloseCurrentFile(m_handle.get());
}
