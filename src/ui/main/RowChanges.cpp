#include "ui/main/RowChanges.h"

#include "foundation/MainThread.h"

#include <utility>

void RowChanges::changed(RowId row)
{
    {
        const std::scoped_lock lock(m_mutex);
        m_rows.insert(row);
        if (std::exchange(m_isAwake, true))
            return;
    }
    MainThread::post([weak = weak_from_this()] {
        if (const auto changes = weak.lock(); changes && changes->m_wake)
            changes->m_wake();
    });
}

std::unordered_set<RowChanges::RowId> RowChanges::take()
{
    const std::scoped_lock lock(m_mutex);
    m_isAwake = false;
    return std::exchange(m_rows, {});
}
