#pragma once

#include "archive/EntryReader.h"
#include "archive/ZipHandles.h"

#include <array>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

class ZipSource;

// Reads and inflates entries on threads of its own, each the next that no other has, while the caller takes them in
// their order and writes what they hold. The threads go no more than a few entries, and a few pieces of each, ahead of
// the caller, which bounds the memory. They touch the archive's file alone, so that whatever ends an extraction leaves
// nothing behind of the entries that lie ahead. Joined by the destructor.
class ReadAhead : public EntryReader
{
public:
    // Null where as many handles or threads are not to be had.
    [[nodiscard]] static std::unique_ptr<ReadAhead> start(const ZipSource& source, unsigned threads);
    ~ReadAhead() override;
    ReadAhead(const ReadAhead&) = delete;
    ReadAhead& operator=(const ReadAhead&) = delete;

    [[nodiscard]] bool open() override;
    [[nodiscard]] Piece read() override;
    [[nodiscard]] int close() override;

private:
    // Who has to wait waits until half of the room is free, or filled: a thread that were woken for each piece would
    // be woken thousands of times.
    static constexpr std::size_t entriesAhead = 8;
    static constexpr std::size_t piecesAhead = 4;

    // One entry on its way from a thread to the caller. All but the bytes is guarded by m_mutex; the bytes of a piece
    // are the thread's until the piece counts as filled, and the caller's until it is given back.
    struct Slot
    {
        [[nodiscard]] std::size_t waiting() const { return filled - taken; }
        [[nodiscard]] bool isWorthWaking() const { return isRead || waiting() >= piecesAhead / 2; }

        std::condition_variable somethingTaken; // for the thread that reads the entry
        enum class Opening { NotYet, Opened, Failed } opening = Opening::NotYet;
        std::array<int, piecesAhead> sizes{};
        std::size_t filled = 0; // pieces, since the entry was opened
        std::size_t taken = 0;
        bool isRead = false; // there are no more pieces
        int end = 0;         // what is read behind the last piece
        int closing = UNZ_OK;
        bool fitsOneStep = false;
        bool isLeft = false; // the caller wants no more of it
        std::unique_ptr<char[]> bytes;
    };

    explicit ReadAhead(std::vector<UnzHandle> handles);

    void work(unzFile file);
    // Waits for the next entry that a thread may read; nothing at the end.
    [[nodiscard]] std::optional<std::uint64_t> takeEntry();
    [[nodiscard]] std::uint64_t freeSlots() const { return entriesAhead - (m_nextEntry - m_callersEntry); }
    [[nodiscard]] Slot& slotOf(std::uint64_t entry) { return m_slots.at(entry % entriesAhead); }
    void readEntry(unzFile file, Slot& slot);
    void publishOpening(Slot& slot, bool isOpened);
    void publishPiece(Slot& slot, int size, bool fitsOneStep);
    void publishEnd(Slot& slot, int end, int closing);
    // Where the next piece goes; null when no more are wanted.
    [[nodiscard]] char* freePiece(Slot& slot);
    // Waits, for the caller, until the condition holds for its slot.
    template <typename Condition>
    void await(std::unique_lock<std::mutex>& lock, const Slot& slot, Condition condition);
    // Wakes the caller if that is what it waits for.
    void wakeCaller(const Slot& slot);

    std::mutex m_mutex;                      // guards what has no other word
    std::condition_variable m_slotsFree;     // for the threads
    std::condition_variable m_somethingRead; // for the caller
    std::array<Slot, entriesAhead> m_slots;
    const Slot* m_awaited = nullptr;  // by the caller
    std::uint64_t m_nextEntry = 0;    // for a thread to read
    std::uint64_t m_callersEntry = 0; // what it has open, or opens next
    bool m_ends = false;
    bool m_holdsPiece = false;        // the caller's alone
    std::vector<UnzHandle> m_handles; // one for each thread
    std::vector<std::thread> m_threads;
};
