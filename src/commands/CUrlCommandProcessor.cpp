#include "commands/CUrlCommandProcessor.h"

#include "foundation/MainThread.h"

CUrlCommandProcessor::CUrlCommandProcessor(std::chrono::milliseconds tick) : m_tick(tick) {}

CUrlCommandProcessor::~CUrlCommandProcessor()
{
    stop();
    cancelRunningCommands();
}

void CUrlCommandProcessor::start()
{
    if (!m_isStarted.exchange(true))
        m_threads.start("commands", [this] { threadMain(); });
}

void CUrlCommandProcessor::stop()
{
    {
        const std::scoped_lock lock(m_threadLock);
        m_isCancelled = true;
    }
    m_wake.notify_all();
}

void CUrlCommandProcessor::cancelRunningCommands()
{
    const std::scoped_lock lock(m_threadLock);
    for (const auto& command : m_running)
        command->cancel();
}

void CUrlCommandProcessor::postCommand(std::shared_ptr<CUrlCommand> command)
{
    const std::scoped_lock lock(m_threadLock);
    m_queue.push_back(std::move(command));
}

std::shared_ptr<CUrlCommand> CUrlCommandProcessor::getCommandFromQueue()
{
    const std::scoped_lock lock(m_threadLock);
    if (m_queue.empty())
        return nullptr;
    auto command = std::move(m_queue.front());
    m_queue.pop_front();
    return command;
}

bool CUrlCommandProcessor::sleepForTick()
{
    std::unique_lock lock(m_threadLock);
    return !m_wake.wait_for(lock, m_tick, [this] { return m_isCancelled; });
}

void CUrlCommandProcessor::threadMain()
{
    while (sleepForTick()) {
        if (m_currentNumOfCommandThreads >= m_maxNumOfCommandThreads)
            continue;
        auto command = getCommandFromQueue();
        if (!command)
            continue;
        {
            const std::scoped_lock lock(m_threadLock);
            if (m_isCancelled) // A command taken while stop() came is not executed either.
                return;
            ++m_currentNumOfCommandThreads;
            m_running.insert(command);
        }
        m_threads.start("command", [this, taken = std::move(command)] { threadCommand(taken); });
    }
}

void CUrlCommandProcessor::threadCommand(const std::shared_ptr<CUrlCommand>& command)
{
    command->execute();
    MainThread::runAndWait([&] {
        CUrlCommandResultObserver* const observer = command->observer();
        if (!observer)
            return;
        if (command->result() != 0)
            observer->curlCommandFailed(*command);
        else
            observer->curlCommandDone(*command);
    });
    const std::scoped_lock lock(m_threadLock);
    --m_currentNumOfCommandThreads;
    m_running.erase(command);
}
