#pragma once

#include "commands/CUrlCommand.h"
#include "foundation/WorkerThreads.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <set>

// Runs commands off the main thread. Posted commands wait in a first-in-first-out queue; a dispatcher thread takes at
// most one at each tick of 0.1 s, as long as fewer commands run than the limit, and gives it a thread of its own. That
// thread executes the command, then tells its observer on the main thread that it is done or failed, and ends when the
// observer has returned. So ten commands start a second, in the order in which they were posted.
//
// After stop() queued commands are never executed; those under way still reach their observers. Not started again.
class CUrlCommandProcessor
{
public:
    static constexpr std::chrono::milliseconds defaultTick{100};

    explicit CUrlCommandProcessor(std::chrono::milliseconds tick = defaultTick);
    ~CUrlCommandProcessor(); // stop(), cancels what is under way and waits for it; its observers are still told
    CUrlCommandProcessor(const CUrlCommandProcessor&) = delete;
    CUrlCommandProcessor& operator=(const CUrlCommandProcessor&) = delete;

    void start();
    void stop();
    // Makes the transfers under way fail soon. For the end of the program.
    void cancelRunningCommands();
    // Threads of this processor that have not ended.
    [[nodiscard]] bool waitUntilAllEnded(std::chrono::milliseconds atMost)
    {
        return m_threads.waitUntilAllEnded(atMost);
    }

    // From any thread; returns at once.
    void postCommand(std::shared_ptr<CUrlCommand> command);
    // The oldest command, taken out of the queue, or null.
    std::shared_ptr<CUrlCommand> getCommandFromQueue();

    // How many commands may run at once; 0 until set, so that nothing starts.
    [[nodiscard]] int maxNumOfCommandThreads() const { return m_maxNumOfCommandThreads; }
    void setMaxNumOfCommandThreads(int number) { m_maxNumOfCommandThreads = number; }
    [[nodiscard]] int currentNumOfCommandThreads() const { return m_currentNumOfCommandThreads; }

private:
    void threadMain();
    void threadCommand(const std::shared_ptr<CUrlCommand>& command);
    [[nodiscard]] bool sleepForTick();

    const std::chrono::milliseconds m_tick;
    std::atomic<int> m_maxNumOfCommandThreads{0};
    // Changed under m_threadLock; the dispatcher's comparison with the limit may read it a tick late.
    std::atomic<int> m_currentNumOfCommandThreads{0};
    std::atomic<bool> m_isStarted{false};

    std::mutex m_threadLock; // guards the members below
    std::condition_variable m_wake;
    bool m_isCancelled = false;
    std::deque<std::shared_ptr<CUrlCommand>> m_queue;
    std::set<std::shared_ptr<CUrlCommand>> m_running;

    WorkerThreads m_threads; // last: its threads use all the others
};
