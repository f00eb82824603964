#pragma once

#include <condition_variable>
#include <mutex>

// Lets a bounded number of threads through at a time. Callable from every thread.
class CountingGate
{
public:
    // A thread that waits is woken and tests the new limit.
    void setMaximum(int maximum);
    [[nodiscard]] int maximum() const;
    // How many are inside.
    [[nodiscard]] int count() const;

    // Waits until fewer than the maximum are inside, then counts the caller in. False when the gate was given up:
    // the caller is then not counted. A maximum below 1 is a programming error.
    [[nodiscard]] bool wait();
    // Counts the caller out and wakes one that waits.
    void signal();
    // Releases every waiter, now and later: for the end of the program.
    void giveUp();

private:
    mutable std::mutex m_mutex; // guards the members below
    std::condition_variable m_condition;
    int m_maximum = 0;
    int m_count = 0;
    bool m_isGivenUp = false;
};
