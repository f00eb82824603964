#include "archive/ReadAhead.h"

#include "archive/ZipSource.h"

#include <system_error>
#include <utility>

std::unique_ptr<ReadAhead> ReadAhead::start(const ZipSource& source, unsigned threads)
{
    std::vector<UnzHandle> handles;
    for (unsigned i = 0; i < threads; ++i) {
        handles.push_back(source.newHandle());
        if (!handles.back())
            return nullptr;
    }
    std::unique_ptr<ReadAhead> reader(new ReadAhead(std::move(handles)));
    try {
        for (const UnzHandle& handle : reader->m_handles)
            reader->m_threads.emplace_back(&ReadAhead::work, reader.get(), handle.get());
    } catch (const std::system_error&) {
        return nullptr;
    }
    return reader;
}

ReadAhead::ReadAhead(std::vector<UnzHandle> handles) : m_handles(std::move(handles))
{
    for (Slot& slot : m_slots)
        slot.bytes = std::make_unique_for_overwrite<char[]>(piecesAhead * pieceSize);
    m_threads.reserve(m_handles.size());
}

ReadAhead::~ReadAhead()
{
    {
        const std::scoped_lock lock(m_mutex);
        m_ends = true;
        m_slotsFree.notify_all();
        for (Slot& slot : m_slots)
            slot.somethingTaken.notify_one();
    }
    for (std::thread& thread : m_threads)
        thread.join();
}

// On the caller's thread.

template <typename Condition>
void ReadAhead::await(std::unique_lock<std::mutex>& lock, const Slot& slot, Condition condition)
{
    m_awaited = &slot;
    m_somethingRead.wait(lock, condition);
    m_awaited = nullptr;
}

bool ReadAhead::open()
{
    std::unique_lock lock(m_mutex);
    const Slot& slot = slotOf(m_callersEntry);
    // With pieces, or its end, there is something to go on with.
    await(lock, slot, [&] { return slot.opening == Slot::Opening::Failed || slot.isWorthWaking(); });
    return slot.opening == Slot::Opening::Opened;
}

EntryReader::Piece ReadAhead::read()
{
    std::unique_lock lock(m_mutex);
    Slot& slot = slotOf(m_callersEntry);
    if (std::exchange(m_holdsPiece, false)) {
        ++slot.taken;
        if (slot.waiting() == piecesAhead / 2)
            slot.somethingTaken.notify_one();
    }
    if (slot.waiting() == 0)
        await(lock, slot, [&] { return slot.isWorthWaking(); });
    if (slot.waiting() == 0)
        return {.data = nullptr, .size = slot.end};
    m_holdsPiece = true;
    const std::size_t place = slot.taken % piecesAhead;
    return {.data = slot.bytes.get() + place * pieceSize, .size = slot.sizes.at(place)};
}

int ReadAhead::close()
{
    std::unique_lock lock(m_mutex);
    Slot& slot = slotOf(m_callersEntry);
    const bool wasReadToItsEnd = slot.isRead && slot.waiting() == 0;
    slot.isLeft = true;
    slot.somethingTaken.notify_one();
    m_holdsPiece = false;
    // Another thread may take the slot only when this one is done with it.
    await(lock, slot, [&] { return slot.isRead; });
    const int closing = wasReadToItsEnd || slot.fitsOneStep ? slot.closing : UNZ_OK;
    slot.opening = Slot::Opening::NotYet;
    slot.isRead = false;
    slot.filled = slot.taken = 0;
    ++m_callersEntry;
    if (freeSlots() >= entriesAhead / 2)
        m_slotsFree.notify_all();
    return closing;
}

// On the threads.

void ReadAhead::work(unzFile file)
{
    int found = unzGoToFirstFile(file);
    std::uint64_t at = 0;
    while (const auto entry = takeEntry()) {
        for (; at < *entry; ++at)
            found = unzGoToNextFile(file);
        Slot& slot = slotOf(*entry);
        const bool isOpened = found == UNZ_OK && unzOpenCurrentFile(file) == UNZ_OK;
        publishOpening(slot, isOpened);
        // What cannot be opened ends the extraction.
        if (!isOpened)
            return;
        readEntry(file, slot);
    }
}

std::optional<std::uint64_t> ReadAhead::takeEntry()
{
    std::unique_lock lock(m_mutex);
    if (freeSlots() == 0)
        m_slotsFree.wait(lock, [&] { return m_ends || freeSlots() >= entriesAhead / 2; });
    return m_ends ? std::nullopt : std::optional(m_nextEntry++);
}

void ReadAhead::readEntry(unzFile file, Slot& slot)
{
    EntryPieces pieces;
    bool isFirst = true;
    int read = 0;
    while (char* const place = freePiece(slot)) {
        read = pieces.read(file, place, pieceSize);
        if (read <= 0)
            break;
        // An entry of less than a step has been read to its end with it.
        const bool fitsOneStep =
            std::exchange(isFirst, false) && read <= static_cast<int>(stepSize) && unzeof(file) == 1;
        publishPiece(slot, read, fitsOneStep);
    }
    // One that cannot be read is closed with the handle.
    publishEnd(slot, read < 0 ? read : 0, read < 0 ? UNZ_OK : unzCloseCurrentFile(file));
}

char* ReadAhead::freePiece(Slot& slot)
{
    std::unique_lock lock(m_mutex);
    const auto isUnwanted = [&] { return m_ends || slot.isLeft; };
    if (slot.waiting() == piecesAhead)
        slot.somethingTaken.wait(lock, [&] { return isUnwanted() || slot.waiting() <= piecesAhead / 2; });
    return isUnwanted() ? nullptr : slot.bytes.get() + slot.filled % piecesAhead * pieceSize;
}

void ReadAhead::publishOpening(Slot& slot, bool isOpened)
{
    const std::scoped_lock lock(m_mutex);
    slot.end = 0;
    slot.closing = UNZ_OK;
    slot.fitsOneStep = false;
    slot.isLeft = false;
    slot.opening = isOpened ? Slot::Opening::Opened : Slot::Opening::Failed;
    if (!isOpened)
        wakeCaller(slot);
}

void ReadAhead::publishPiece(Slot& slot, int size, bool fitsOneStep)
{
    const std::scoped_lock lock(m_mutex);
    slot.fitsOneStep = slot.fitsOneStep || fitsOneStep;
    slot.sizes.at(slot.filled % piecesAhead) = size;
    ++slot.filled;
    if (slot.isWorthWaking())
        wakeCaller(slot);
}

void ReadAhead::publishEnd(Slot& slot, int end, int closing)
{
    const std::scoped_lock lock(m_mutex);
    slot.end = end;
    slot.closing = closing;
    slot.isRead = true;
    wakeCaller(slot);
}

void ReadAhead::wakeCaller(const Slot& slot)
{
    if (m_awaited == &slot)
        m_somethingRead.notify_one();
}
