#pragma once

#include <QString>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

// Sends finished files on their way to the disk while the next ones are fetched, on a thread of its own: the disk then
// works beside the network, and the flush at the end finds little to do. It promises nothing; a flush does.
class WriteBehind
{
public:
    WriteBehind();
    // Waits for the file that is being written; what is queued behind it stays to the system.
    ~WriteBehind();
    WriteBehind(const WriteBehind&) = delete;
    WriteBehind& operator=(const WriteBehind&) = delete;

    // A file, or every file below a folder. Links are left alone. Any thread.
    void add(const QString& path);
    // Until everything added is written, or stop() was called. How many files that were.
    int wait();
    // Any thread.
    void stop();

private:
    void run();
    [[nodiscard]] bool isStopped();
    void write(const QString& path);
    void writeFile(const QString& path);

    std::mutex m_mutex; // guards the members below
    std::condition_variable m_changed;
    std::deque<QString> m_queue;
    bool m_isWriting = false;
    bool m_isStopped = false;
    int m_written = 0;

    std::thread m_thread; // last: it uses all the others
};
