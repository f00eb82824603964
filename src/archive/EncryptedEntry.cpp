#include "archive/EncryptedEntry.h"

namespace {

constexpr uLong sizesFollowFlag = 8;

} // namespace

std::unique_ptr<EncryptedEntry> EncryptedEntry::open(unzFile file, const QByteArray& password)
{
    unz_file_info64 info{};
    int method = 0;
    int level = 0;
    constexpr int raw = 1;
    if (unzGetCurrentFileInfo64(file, &info, nullptr, 0, nullptr, 0, nullptr, 0) != UNZ_OK ||
        unzOpenCurrentFile2(file, &method, &level, raw) != UNZ_OK)
        return nullptr;
    std::unique_ptr<EncryptedEntry> entry(new EncryptedEntry(file, info, password));
    if ((method != 0 && !entry->m_inflates) || !entry->acceptsHeader()) {
        unzCloseCurrentFile(file);
        return nullptr;
    }
    return entry;
}

EncryptedEntry::EncryptedEntry(unzFile file, const unz_file_info64& info, const QByteArray& password)
    : m_file(file), m_info(info), m_cipher(password),
      m_inflates(info.compression_method == Z_DEFLATED && inflateInit2(&m_stream, -MAX_WBITS) == Z_OK),
      m_checksum(crc32(0, nullptr, 0))
{}

EncryptedEntry::~EncryptedEntry()
{
    if (m_inflates)
        inflateEnd(&m_stream);
}

bool EncryptedEntry::acceptsHeader()
{
    std::array<unsigned char, ZipCipher::headerSize> header{};
    if (readDeciphered(header.data(), ZipCipher::headerSize) != ZipCipher::headerSize)
        return false;
    // The last byte is the checksum's highest, or the time's where the checksum was not known in advance.
    const uLong expected = (m_info.flag & sizesFollowFlag) != 0 ? m_info.dosDate >> 8 : m_info.crc >> 24;
    return header.back() == (expected & 0xff);
}

int EncryptedEntry::readDeciphered(unsigned char* buffer, unsigned size)
{
    const int read = unzReadCurrentFile(m_file, buffer, size);
    for (int i = 0; i < read; ++i) {
        buffer[i] = m_cipher.decrypted(buffer[i]);
    }
    return read;
}

int EncryptedEntry::inflateInto(char* buffer, unsigned size)
{
    m_stream.next_out = reinterpret_cast<Bytef*>(buffer);
    m_stream.avail_out = size;
    while (m_stream.avail_out == size) {
        if (m_stream.avail_in == 0) {
            const int read = readDeciphered(m_input.data(), static_cast<unsigned>(m_input.size()));
            // Data that ends before its end mark is broken.
            if (read <= 0)
                return read < 0 ? read : Z_DATA_ERROR;
            m_stream.next_in = m_input.data();
            m_stream.avail_in = static_cast<uInt>(read);
        }
        const int result = inflate(&m_stream, Z_NO_FLUSH);
        if (result == Z_STREAM_END) {
            m_atEnd = true;
            break;
        }
        if (result != Z_OK && result != Z_BUF_ERROR)
            return result < 0 ? result : Z_DATA_ERROR;
    }
    return static_cast<int>(size - m_stream.avail_out);
}

int EncryptedEntry::read(char* buffer, unsigned size)
{
    if (m_atEnd || size == 0)
        return 0;
    const int read =
        m_inflates ? inflateInto(buffer, size) : readDeciphered(reinterpret_cast<unsigned char*>(buffer), size);
    m_atEnd = m_atEnd || read == 0;
    if (read > 0)
        m_checksum = crc32(m_checksum, reinterpret_cast<const Bytef*>(buffer), static_cast<uInt>(read));
    return read;
}

int EncryptedEntry::close()
{
    const int result = unzCloseCurrentFile(m_file);
    return result == UNZ_OK && m_atEnd && m_checksum != m_info.crc ? UNZ_CRCERROR : result;
}
