#include "archive/ZipCipher.h"

#include <zlib.h>

namespace {

std::uint32_t crcStep(std::uint32_t crc, unsigned char byte)
{
    return static_cast<std::uint32_t>(get_crc_table()[(crc ^ byte) & 0xff]) ^ (crc >> 8);
}

} // namespace

ZipCipher::ZipCipher(const QByteArray& password)
{
    for (const char c : password)
        updateKeys(static_cast<unsigned char>(c));
}

unsigned char ZipCipher::decrypted(unsigned char byte)
{
    const auto plain = static_cast<unsigned char>(byte ^ mask());
    updateKeys(plain);
    return plain;
}

unsigned char ZipCipher::encrypted(unsigned char byte)
{
    const auto cipher = static_cast<unsigned char>(byte ^ mask());
    updateKeys(byte);
    return cipher;
}

unsigned char ZipCipher::mask() const
{
    const std::uint32_t mixed = (m_keys[2] & 0xffff) | 2;
    return static_cast<unsigned char>((mixed * (mixed ^ 1)) >> 8);
}

void ZipCipher::updateKeys(unsigned char plain)
{
    m_keys[0] = crcStep(m_keys[0], plain);
    m_keys[1] = (m_keys[1] + (m_keys[0] & 0xff)) * 134775813 + 1;
    m_keys[2] = crcStep(m_keys[2], static_cast<unsigned char>(m_keys[1] >> 24));
}
