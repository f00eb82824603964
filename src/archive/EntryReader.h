#pragma once

#include "archive/EncryptedEntry.h"
#include "archive/ZipHandles.h"

#include <QByteArray>
#include <unzip.h>

#include <array>
#include <cstddef>
#include <memory>

// Reads the entries of an archive, from the first on, each in pieces. One thread at a time.
class EntryReader
{
public:
    // An entry counts as read in steps of so many bytes, whatever the size of the pieces: a step that fails gives
    // nothing, and the steps before it count.
    static constexpr unsigned stepSize = 4096;
    static constexpr unsigned pieceSize = 32 * stepSize;

    struct Piece
    {
        // To the next call.
        const char* data = nullptr;
        // 0 at the end, negative when the entry cannot be read.
        int size = 0;
    };

    virtual ~EntryReader() = default;

    // Opens the next entry, the first at first. False when that cannot be done.
    [[nodiscard]] virtual bool open() = 0;
    // The next piece of the entry that is open.
    [[nodiscard]] virtual Piece read() = 0;
    // Closes an entry of which all was read, or of which one piece was: UNZ_CRCERROR when all of it was read, or is no
    // more than a step, and is not what was packed.
    [[nodiscard]] virtual int close() = 0;
};

// The pieces of one entry that is open and not encrypted.
class EntryPieces
{
public:
    // As unzReadCurrentFile.
    [[nodiscard]] int read(unzFile file, char* buffer, unsigned size);

private:
    int m_error = UNZ_OK;
};

// Reads on the calling thread, from where the handle stands, which is moved from entry to entry by its owner and
// outlives this; one that is let go of meanwhile opens nothing.
class DirectReader : public EntryReader
{
public:
    // `password` is empty for none; one that is not ASCII opens nothing that needs it.
    DirectReader(const UnzHandle& handle, QByteArray password);

    [[nodiscard]] bool open() override;
    [[nodiscard]] Piece read() override;
    [[nodiscard]] int close() override;

private:
    const UnzHandle& m_handle;
    QByteArray m_password;
    // The current entry where a password is needed to read it.
    std::unique_ptr<EncryptedEntry> m_encrypted;
    EntryPieces m_pieces;
    bool m_isFirst = true;
    std::array<char, pieceSize> m_buffer{};
};
