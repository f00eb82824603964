#include "engine/UploadGate.h"

#include "foundation/Assertion.h"

#include <thread>

void UploadGate::setMaximum(int maximum)
{
    const std::scoped_lock lock(m_mutex);
    m_maximum = maximum;
}

int UploadGate::maximum() const
{
    const std::scoped_lock lock(m_mutex);
    return m_maximum;
}

int UploadGate::count() const
{
    const std::scoped_lock lock(m_mutex);
    return m_count;
}

int UploadGate::waiting() const
{
    const std::scoped_lock lock(m_mutex);
    return m_waiting;
}

bool UploadGate::wait()
{
    // The text speaks of ffmpeg; people who search logs for it know both causes.
    Assertion::check(maximum() >= 1, "Invalid max number of running ffmpeg procesess");
    std::unique_lock lock(m_mutex);
    ++m_waiting;
    while (!mayStopWaiting()) {
        lock.unlock();
        std::this_thread::sleep_for(m_pause);
        lock.lock();
    }
    --m_waiting;
    if (m_isGivenUp)
        return false;
    ++m_count;
    ++m_repliesToCome;
    return true;
}

void UploadGate::passBy()
{
    const std::scoped_lock lock(m_mutex);
    ++m_repliesToCome;
}

void UploadGate::signal()
{
    const std::scoped_lock lock(m_mutex);
    --m_count;
    --m_repliesToCome;
}

void UploadGate::lose()
{
    const std::scoped_lock lock(m_mutex);
    --m_repliesToCome;
}

void UploadGate::giveBack()
{
    const std::scoped_lock lock(m_mutex);
    --m_count;
}

bool UploadGate::isBlocked() const
{
    const std::scoped_lock lock(m_mutex);
    return m_waiting > 0 && m_count >= m_maximum && m_repliesToCome <= 0;
}

void UploadGate::giveUp()
{
    const std::scoped_lock lock(m_mutex);
    m_isGivenUp = true;
}
