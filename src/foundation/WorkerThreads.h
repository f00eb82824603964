#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

// Detached worker threads with names, counted by the object whose members they use, so that it can wait for their end
// before it goes. The owner first makes its threads want to end (closes gates, cancels transfers), then waits.
class WorkerThreads
{
public:
    WorkerThreads() = default;
    ~WorkerThreads(); // waits for all
    WorkerThreads(const WorkerThreads&) = delete;
    WorkerThreads& operator=(const WorkerThreads&) = delete;

    // `body` must not throw. Its captures are destroyed on the new thread, before the thread counts as ended.
    void start(const std::string& name, std::function<void()> body);

    [[nodiscard]] std::size_t count() const;

    // On the main thread, runs the work that the threads wait for there. False when time ran out.
    bool waitUntilAllEnded(std::chrono::milliseconds atMost);

private:
    void run(const std::string& name, std::unique_ptr<std::function<void()>> body);

    mutable std::mutex m_mutex; // guards m_count
    std::condition_variable m_ended;
    std::size_t m_count = 0;
};
