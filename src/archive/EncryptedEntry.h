#pragma once

#include "archive/ZipCipher.h"

#include <QByteArray>
#include <unzip.h>
#include <zlib.h>

#include <array>
#include <memory>

// The current entry of an archive that is encrypted with a password: minizip hands over the bytes as they are stored,
// and they are deciphered and inflated here. One thread at a time; the archive outlives it.
class EncryptedEntry
{
public:
    // Null when the entry cannot be opened or the password is not its own. The entry is then closed.
    [[nodiscard]] static std::unique_ptr<EncryptedEntry> open(unzFile file, const QByteArray& password);
    ~EncryptedEntry();
    EncryptedEntry(const EncryptedEntry&) = delete;
    EncryptedEntry& operator=(const EncryptedEntry&) = delete;

    // As unzReadCurrentFile: how many bytes were read, 0 at the end, negative when they cannot be read.
    [[nodiscard]] int read(char* buffer, unsigned size);
    // As unzCloseCurrentFile: UNZ_CRCERROR when all was read and is not what was packed.
    [[nodiscard]] int close();

private:
    EncryptedEntry(unzFile file, const unz_file_info64& info, const QByteArray& password);

    [[nodiscard]] bool acceptsHeader();
    // Stored bytes, deciphered; as unzReadCurrentFile.
    [[nodiscard]] int readDeciphered(unsigned char* buffer, unsigned size);
    [[nodiscard]] int inflateInto(char* buffer, unsigned size);

    unzFile m_file;
    unz_file_info64 m_info;
    ZipCipher m_cipher;
    z_stream m_stream{};
    bool m_inflates = false;
    bool m_atEnd = false;
    uLong m_checksum = 0;
    std::array<unsigned char, 4096> m_input{};
};
