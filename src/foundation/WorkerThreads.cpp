#include "foundation/WorkerThreads.h"

#include "foundation/Log.h"
#include "foundation/MainThread.h"

#include <thread>

WorkerThreads::~WorkerThreads()
{
    while (!waitUntilAllEnded(std::chrono::seconds(1))) {
    }
}

void WorkerThreads::start(const std::string& name, std::function<void()> body)
{
    {
        const std::scoped_lock lock(m_mutex);
        ++m_count;
    }
    std::thread([this, name, run = std::move(body)]() mutable {
        Log::setThreadName(name);
        run();
        run = nullptr;
        const std::scoped_lock lock(m_mutex);
        --m_count;
        // Under the lock: the owner may be gone as soon as it can see the count.
        m_ended.notify_all();
    }).detach();
}

std::size_t WorkerThreads::count() const
{
    const std::scoped_lock lock(m_mutex);
    return m_count;
}

bool WorkerThreads::waitUntilAllEnded(std::chrono::milliseconds atMost)
{
    const auto deadline = std::chrono::steady_clock::now() + atMost;
    std::unique_lock lock(m_mutex);
    while (m_count != 0) {
        if (std::chrono::steady_clock::now() >= deadline)
            return false;
        if (MainThread::isCurrent()) {
            lock.unlock();
            MainThread::drain();
            lock.lock();
            m_ended.wait_for(lock, std::chrono::milliseconds(2), [this] { return m_count == 0; });
        } else {
            m_ended.wait_until(lock, deadline, [this] { return m_count == 0; });
        }
    }
    return true;
}
