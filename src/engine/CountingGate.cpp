#include "engine/CountingGate.h"

#include "foundation/Assertion.h"

void CountingGate::setMaximum(int maximum)
{
    {
        const std::scoped_lock lock(m_mutex);
        m_maximum = maximum;
    }
    m_condition.notify_one();
}

int CountingGate::maximum() const
{
    const std::scoped_lock lock(m_mutex);
    return m_maximum;
}

int CountingGate::count() const
{
    const std::scoped_lock lock(m_mutex);
    return m_count;
}

bool CountingGate::wait()
{
    Assertion::check(maximum() >= 1, "Invalid max number of running ffmpeg procesess");
    std::unique_lock lock(m_mutex);
    m_condition.wait(lock, [this] { return m_isGivenUp || m_count < m_maximum; });
    if (m_isGivenUp)
        return false;
    ++m_count;
    return true;
}

void CountingGate::signal()
{
    {
        const std::scoped_lock lock(m_mutex);
        --m_count;
    }
    m_condition.notify_one();
}

void CountingGate::giveUp()
{
    {
        const std::scoped_lock lock(m_mutex);
        m_isGivenUp = true;
    }
    m_condition.notify_all();
}
