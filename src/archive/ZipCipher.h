#pragma once

#include <QByteArray>

#include <array>
#include <cstdint>

// The zip format's own cipher: weak, but read everywhere. Debian's minizip does not read what is encrypted, and
// encrypts in a way that no reader understands, so it is here. One object for one entry.
class ZipCipher
{
public:
    // In front of an entry's data, encrypted with it: random bytes, and a last one that shows whether a password fits.
    static constexpr int headerSize = 12;

    explicit ZipCipher(const QByteArray& password);

    [[nodiscard]] unsigned char decrypted(unsigned char byte);
    [[nodiscard]] unsigned char encrypted(unsigned char byte);

private:
    [[nodiscard]] unsigned char mask() const;
    void updateKeys(unsigned char plain);

    std::array<std::uint32_t, 3> m_keys{0x12345678, 0x23456789, 0x34567890};
};
