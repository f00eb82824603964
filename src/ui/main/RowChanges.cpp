#include "ui/main/RowChanges.h"

#include "foundation/MainThread.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace {

void keepEachOnce(std::vector<RowChanges::RowId>& rows)
{
    std::sort(rows.begin(), rows.end(), std::greater<>());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
}

} // namespace

void RowChanges::changed(RowId row)
{
    {
        const std::scoped_lock lock(m_mutex);
        // Most rows change in several ways in a row.
        if (m_rows.empty() || m_rows.back() != row) {
            // Some few change all the time while the list has no turn.
            if (m_rows.size() == m_rows.capacity()) {
                keepEachOnce(m_rows);
                m_rows.reserve(m_rows.size() * 2 + 64);
            }
            m_rows.push_back(row);
        }
        if (std::exchange(m_isAwake, true))
            return;
    }
    MainThread::post([weak = weak_from_this()] {
        if (const auto changes = weak.lock(); changes && changes->m_wake)
            changes->m_wake();
    });
}

std::vector<RowChanges::RowId> RowChanges::take()
{
    std::vector<RowId> rows;
    {
        const std::scoped_lock lock(m_mutex);
        m_isAwake = false;
        rows.swap(m_rows);
    }
    keepEachOnce(rows);
    return rows;
}
