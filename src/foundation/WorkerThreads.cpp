#include "foundation/WorkerThreads.h"

#include "foundation/Log.h"
#include "foundation/MainThread.h"

#include <system_error>
#include <thread>

namespace {

constexpr int mostAttempts = 100;

} // namespace

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
    // The new thread takes the work over and lets it go there; until it has started, it is kept here.
    auto work = std::make_unique<std::function<void()>>(std::move(body));
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
        try {
            std::thread([this, name, taken = work.get()] {
                run(name, std::unique_ptr<std::function<void()>>(taken));
            }).detach();
            static_cast<void>(work.release());
            return;
        } catch (const std::system_error& error) {
            // The system's limit of threads; others end all the time.
            Log::error("Unable to start thread {}: {}", name, error.what());
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }
    Log::error("Gave up starting thread {}", name);
    const std::scoped_lock lock(m_mutex);
    --m_count;
    m_ended.notify_all();
}

void WorkerThreads::run(const std::string& name, std::unique_ptr<std::function<void()>> body)
{
    Log::setThreadName(name);
    (*body)();
    body.reset();
    const std::scoped_lock lock(m_mutex);
    --m_count;
    // Under the lock: the owner may be gone as soon as it can see the count.
    m_ended.notify_all();
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
