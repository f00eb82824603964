// The entries of a zip file whose checksums are right, so that what the entries say is all that is explored. Each piece
// is one: a byte of what is odd about it, its name, a NUL, its data.
#include "CraftedZip.h"
#include "FuzzTarget.h"
#include "UnpackedFolder.h"

namespace {

enum Oddity : unsigned {
    WrongChecksum = 1,
    Link = 2,
    Overlaps = 4,
    SaysMore = 8,
    SaysLess = 16,
    Deflated = 32,
    Utf8 = 64
};

constexpr std::uint32_t linkAttributes = 0120777U << 16;

CraftedEntry entryOf(const QByteArray& piece, bool isFirst)
{
    const unsigned oddity = piece.isEmpty() ? 0 : static_cast<unsigned char>(piece.front());
    const qsizetype end = piece.indexOf('\0', 1);
    CraftedEntry entry{.name = end < 0 ? piece.mid(1) : piece.mid(1, end - 1)};
    entry.data = end < 0 ? QByteArray() : piece.mid(end + 1);
    entry.wrongChecksum = (oddity & WrongChecksum) != 0;
    entry.externalAttributes = (oddity & Link) != 0 ? linkAttributes : 0;
    entry.overlaps = !isFirst && (oddity & Overlaps) != 0;
    if ((oddity & SaysMore) != 0)
        entry.saysSize = static_cast<std::uint32_t>(entry.data.size() * 1000 + 70'000);
    if ((oddity & SaysLess) != 0)
        entry.saysSize = static_cast<std::uint32_t>(entry.data.size() / 2);
    entry.method = (oddity & Deflated) != 0 ? 8 : 0;
    entry.flags = (oddity & Utf8) != 0 ? 1U << 11U : 0;
    return entry;
}

} // namespace

FUZZ_TARGET(ZipEntries)
{
    QList<CraftedEntry> entries;
    unsigned oddities = 0;
    for (const QByteArray& piece : FuzzTarget::pieces(input)) {
        entries.append(entryOf(piece, entries.isEmpty()));
        oddities |= piece.isEmpty() ? 0 : static_cast<unsigned char>(piece.front());
    }
    const bool unpacked = unpackAndLook(craftedZip(entries), QString(), 1024 * 1024);
    // Names alone, whatever they are, break no archive; a link is a name with data.
    if ((oddities & ~(unsigned{Link} | unsigned{Utf8})) == 0 && entries.size() < 200)
        FuzzTarget::require(unpacked, "an archive that is right is unpacked to its end");
}
