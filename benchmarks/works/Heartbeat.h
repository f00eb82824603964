#pragma once

#include <QObject>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <vector>

// A timer that is due again and again; how late it comes is how long any event would have waited for the main thread.
// Main thread. In milliseconds.
class Heartbeat
{
public:
    Heartbeat()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] {
            const auto now = std::chrono::steady_clock::now();
            m_late.push_back(
                std::max(0.0, std::chrono::duration<double, std::milli>(now - m_before).count() - interval));
            m_before = now;
        });
    }
    void start()
    {
        m_late.clear();
        m_before = std::chrono::steady_clock::now();
        m_timer.start(interval);
    }
    void stop()
    {
        m_timer.stop();
        std::sort(m_late.begin(), m_late.end());
    }
    // After stop(). The share is between 0 and 1: of so many beats none came later.
    [[nodiscard]] double lateBy(double share) const
    {
        if (m_late.empty())
            return 0;
        const auto last = static_cast<double>(m_late.size() - 1);
        return m_late[static_cast<std::size_t>(share * last)];
    }
    [[nodiscard]] std::size_t beats() const { return m_late.size(); }

private:
    static constexpr int interval = 2;
    QTimer m_timer;
    std::chrono::steady_clock::time_point m_before;
    std::vector<double> m_late;
};
