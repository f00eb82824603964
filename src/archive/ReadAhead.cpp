#include "archive/ReadAhead.h"

#include "archive/ZipSource.h"

#include <system_error>
#include <utility>

namespace {

// Enough that the threads find work while the caller makes the file of a small entry.
constexpr std::size_t entriesAhead = 16;

} // namespace

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

ReadAhead::ReadAhead(std::vector<UnzHandle> handles) : m_handles(std::move(handles)), m_slots(entriesAhead)
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
    }
    m_somethingFree.notify_all();
    for (std::thread& thread : m_threads)
        thread.join();
}

// On the caller's thread.

bool ReadAhead::open()
{
    std::unique_lock lock(m_mutex);
    const Slot& slot = slotOf(m_callersEntry);
    m_somethingRead.wait(lock, [&] { return slot.opening != Slot::Opening::NotYet; });
    return slot.opening == Slot::Opening::Opened;
}

EntryReader::Piece ReadAhead::read()
{
    std::unique_lock lock(m_mutex);
    Slot& slot = slotOf(m_callersEntry);
    if (std::exchange(m_holdsPiece, false)) {
        ++slot.taken;
        m_somethingFree.notify_all();
    }
    m_somethingRead.wait(lock, [&] { return slot.taken < slot.filled || slot.isRead; });
    if (slot.taken == slot.filled)
        return {.data = nullptr, .size = slot.end};
    m_holdsPiece = true;
    const std::size_t place = slot.taken % piecesAhead;
    return {.data = slot.bytes.get() + place * pieceSize, .size = slot.sizes[place]};
}

int ReadAhead::close()
{
    std::unique_lock lock(m_mutex);
    Slot& slot = slotOf(m_callersEntry);
    slot.isLeft = true;
    m_holdsPiece = false;
    m_somethingFree.notify_all();
    const bool wasReadToItsEnd = slot.isRead && slot.taken == slot.filled;
    m_somethingRead.wait(lock, [&] { return slot.isRead; });
    const int closing = wasReadToItsEnd || slot.fitsOneStep ? slot.closing : UNZ_OK;
    slot.opening = Slot::Opening::NotYet;
    ++m_callersEntry;
    m_somethingFree.notify_all();
    return closing;
}

// On the threads.

bool ReadAhead::takeEntry(std::uint64_t& entry)
{
    std::unique_lock lock(m_mutex);
    m_somethingFree.wait(lock, [&] { return m_ends || m_nextEntry < m_callersEntry + m_slots.size(); });
    if (m_ends)
        return false;
    entry = m_nextEntry++;
    return true;
}

void ReadAhead::work(unzFile file)
{
    int found = unzGoToFirstFile(file);
    std::uint64_t at = 0;
    std::uint64_t entry = 0;
    while (takeEntry(entry)) {
        for (; at < entry; ++at)
            found = unzGoToNextFile(file);
        Slot& slot = slotOf(entry);
        const bool isOpened = found == UNZ_OK && unzOpenCurrentFile(file) == UNZ_OK;
        publishOpening(slot, isOpened);
        // What cannot be opened ends the extraction.
        if (!isOpened)
            return;
        readEntry(file, slot);
    }
}

void ReadAhead::publishOpening(Slot& slot, bool isOpened)
{
    {
        const std::scoped_lock lock(m_mutex);
        slot.filled = 0;
        slot.taken = 0;
        slot.isRead = false;
        slot.end = 0;
        slot.closing = UNZ_OK;
        slot.fitsOneStep = false;
        slot.isLeft = false;
        slot.opening = isOpened ? Slot::Opening::Opened : Slot::Opening::Failed;
    }
    m_somethingRead.notify_one();
}

char* ReadAhead::freePiece(Slot& slot)
{
    std::unique_lock lock(m_mutex);
    m_somethingFree.wait(lock, [&] { return m_ends || slot.isLeft || slot.filled < slot.taken + piecesAhead; });
    return m_ends || slot.isLeft ? nullptr : slot.bytes.get() + slot.filled % piecesAhead * pieceSize;
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
        {
            const std::scoped_lock lock(m_mutex);
            // An entry of less than a step has been read to its end with it.
            if (std::exchange(isFirst, false))
                slot.fitsOneStep = read <= static_cast<int>(stepSize) && unzeof(file) == 1;
            slot.sizes[slot.filled % piecesAhead] = read;
            ++slot.filled;
        }
        m_somethingRead.notify_one();
    }
    // One that cannot be read is closed with the handle.
    const int closing = read < 0 ? UNZ_OK : unzCloseCurrentFile(file);
    {
        const std::scoped_lock lock(m_mutex);
        slot.end = read < 0 ? read : 0;
        slot.closing = closing;
        slot.isRead = true;
    }
    m_somethingRead.notify_one();
}
