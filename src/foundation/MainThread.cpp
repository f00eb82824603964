#include "foundation/MainThread.h"

#include <QSocketNotifier>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <sys/eventfd.h>
#include <thread>
#include <unistd.h>

namespace {

struct Waiter
{
    std::mutex mutex;
    std::condition_variable condition;
    bool finished = false;
    bool didRun = false;

    void finish(bool ran)
    {
        {
            const std::scoped_lock lock(mutex);
            finished = true;
            didRun = ran;
        }
        condition.notify_one();
    }
};

struct Item
{
    std::function<void()> work;
    std::shared_ptr<Waiter> waiter; // null for posted work
};

struct Queue
{
    std::mutex mutex; // guards all but `mainThread`
    std::deque<Item> items;
    int wakeDescriptor = -1;
    bool takesWork = false;
    std::atomic<std::thread::id> mainThread;
};

Queue& queue()
{
    static Queue* const theQueue = new Queue; // Outlives every thread, whatever the order of the end.
    return *theQueue;
}

bool enqueue(Item item)
{
    const std::scoped_lock lock(queue().mutex);
    if (!queue().takesWork)
        return false;
    queue().items.push_back(std::move(item));
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(queue().wakeDescriptor, &one, sizeof one);
    return true;
}

// False when the queue is empty; the descriptor is then quiet. It stays readable while items are left, so that a loop
// nested in one item's work goes on with the next.
bool runNext()
{
    Item item;
    {
        const std::scoped_lock lock(queue().mutex);
        if (queue().items.empty()) {
            std::uint64_t count = 0;
            if (queue().wakeDescriptor >= 0) {
                [[maybe_unused]] const ssize_t got = ::read(queue().wakeDescriptor, &count, sizeof count);
            }
            return false;
        }
        item = std::move(queue().items.front());
        queue().items.pop_front();
    }
    item.work();
    item.work = nullptr; // What the work held is let go on the main thread, before the waiter goes on.
    if (item.waiter)
        item.waiter->finish(/*ran=*/true);
    return true;
}

// So many at a time, then timers and input have their turn.
constexpr int itemsPerTurn = 64;

} // namespace

class MainThread::Attachment::Notifier : public QSocketNotifier
{
public:
    explicit Notifier(int descriptor) : QSocketNotifier(descriptor, QSocketNotifier::Read)
    {
        connect(this, &QSocketNotifier::activated, this, [] {
            for (int i = 0; i < itemsPerTurn && runNext(); ++i) {
            }
        });
    }
};

MainThread::Attachment::Attachment()
{
    const int descriptor = ::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    {
        const std::scoped_lock lock(queue().mutex);
        queue().wakeDescriptor = descriptor;
        queue().takesWork = true;
    }
    queue().mainThread = std::this_thread::get_id();
    m_notifier = std::make_unique<Notifier>(descriptor);
}

MainThread::Attachment::~Attachment()
{
    shutDown();
    m_notifier.reset();
    const std::scoped_lock lock(queue().mutex);
    ::close(queue().wakeDescriptor);
    queue().wakeDescriptor = -1;
    queue().mainThread = std::thread::id();
}

bool MainThread::isCurrent()
{
    return queue().mainThread.load() == std::this_thread::get_id();
}

bool MainThread::runAndWait(const std::function<void()>& work)
{
    if (isCurrent()) {
        work();
        return true;
    }
    const auto waiter = std::make_shared<Waiter>();
    if (!enqueue({work, waiter}))
        return false;
    std::unique_lock lock(waiter->mutex);
    waiter->condition.wait(lock, [&] { return waiter->finished; });
    return waiter->didRun;
}

void MainThread::post(std::function<void()> work)
{
    enqueue({std::move(work), nullptr});
}

void MainThread::drain()
{
    while (runNext()) {
    }
}

void MainThread::shutDown()
{
    std::deque<Item> left;
    {
        const std::scoped_lock lock(queue().mutex);
        queue().takesWork = false;
        left.swap(queue().items);
    }
    for (Item& item : left) {
        if (item.waiter)
            item.waiter->finish(/*ran=*/false);
    }
}
