#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

// Gathers which rows of a list have changed, on whatever thread, and wakes the list on the main thread once for each
// batch. Held by the list and by every connection to a row's object, so that it outlives both.
class RowChanges : public std::enable_shared_from_this<RowChanges>
{
public:
    using RowId = std::uint64_t;

    // Main thread. Called there after the first change of a batch; without it, changes wake nobody.
    void setWake(std::function<void()> wake) { m_wake = std::move(wake); }

    // Any thread.
    void changed(RowId row);
    // Ends the batch: what has changed since the last one, each row once, the last first.
    [[nodiscard]] std::vector<RowId> take();

private:
    std::function<void()> m_wake; // of the main thread alone
    std::mutex m_mutex;           // guards all below
    std::vector<RowId> m_rows;    // some perhaps twice
    bool m_isAwake = false;
};
