#pragma once

#include <chrono>
#include <mutex>

// Bounds the media uploads under way, loosely: threads that wait test the count again and again rather than being
// woken, and the count follows the replies, not the uploads. Each reply counts one out, also the transcript's, which
// never counted in; a transfer that fails counts nothing out. So the count may fall below zero, and an upload that
// never got a reply holds its place for as long as the program runs. Callable from every thread.
class UploadGate
{
public:
    explicit UploadGate(std::chrono::milliseconds pause = std::chrono::milliseconds(5)) : m_pause(pause) {}

    void setMaximum(int maximum);
    [[nodiscard]] int maximum() const;
    [[nodiscard]] int count() const;
    // How many threads wait for a place now.
    [[nodiscard]] int waiting() const;

    // False when the gate was given up: the caller is then not counted. A maximum below 1 is a programming error.
    [[nodiscard]] bool wait();
    // An upload that does not pass the gate, but whose reply will signal.
    void passBy();
    // A reply came.
    void signal();
    // An upload that was counted in, or passed by, gets no reply: its place stays taken.
    void lose();
    // Frees the place that an upload which was counted in had kept when lose() was called for it.
    void giveBack();
    void giveUp();
    // Threads wait, and no reply is to come that could let one in.
    [[nodiscard]] bool isBlocked() const;

private:
    [[nodiscard]] bool mayStopWaiting() const { return m_isGivenUp || m_count < m_maximum; }

    const std::chrono::milliseconds m_pause;
    mutable std::mutex m_mutex; // guards the members below
    int m_maximum = 0;
    int m_count = 0;
    int m_waiting = 0;
    int m_repliesToCome = 0;
    bool m_isGivenUp = false;
};
