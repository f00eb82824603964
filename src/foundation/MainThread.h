#pragma once

#include <functional>
#include <memory>

// Work for the main thread from any other. The queue is behind a mutex and drained by the main loop, in the order in
// which work arrived. It wakes the loop through a descriptor of its own rather than through Qt's cross-thread calls,
// so that thread sanitizers see every hand-over.
namespace MainThread {

// Makes the calling thread the main thread for as long as it lives. Needs a QCoreApplication on that thread, made
// before and destroyed after. One at a time.
class Attachment
{
public:
    Attachment();
    ~Attachment(); // shutDown(), then forgets what was not run
    Attachment(const Attachment&) = delete;
    Attachment& operator=(const Attachment&) = delete;

private:
    class Notifier;
    std::unique_ptr<Notifier> m_notifier;
};

[[nodiscard]] bool isCurrent();

// Runs `work` on the main thread and returns when it has run; on the main thread, runs it at once. False when it was
// not run because the main thread takes no more work.
bool runAndWait(const std::function<void()>& work);

// Queues `work` and returns. Dropped when the main thread takes no more work.
void post(std::function<void()> work);

// Runs what is queued now, without a turn of the main loop. For the end of an object whose threads still wait here.
void drain();

// No more work is taken and every waiter is released. For the end of the program.
void shutDown();

} // namespace MainThread
