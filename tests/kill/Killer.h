#pragma once

#include "Moment.h"

#include "demo-service/Service.h"

#include <condition_variable>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <sys/types.h>

// Kills one run of the program at its moment, and keeps what the run did up to then. Any thread.
class Killer
{
public:
    enum class Place { SavedJobs, Audio, Delivery };

    // Without a moment the run is left alone.
    Killer(std::optional<Moment> moment, const Road& road, DemoService::Service& service);

    void started(pid_t process);
    void atRequest(DemoService::Stage stage, const DemoService::Request& request);
    void atFile(Place place);
    // Waits for a short while, and kills when it is time to.
    void wait();
    // The process is gone; its number may become another's.
    void ended();

    [[nodiscard]] Road road() const;

private:
    using Clock = std::chrono::steady_clock;

    [[nodiscard]] bool isAimedAt(const std::string& endpoint, int number) const;
    void killAfter(std::chrono::microseconds delay);
    void kill();

    const std::optional<Moment> m_moment;
    DemoService::Service& m_service;
    Road::Request m_request; // aimed at
    std::optional<Clock::duration> m_time;
    std::optional<int> m_change; // of the place aimed at

    mutable std::mutex m_mutex; // guards the members below
    std::condition_variable m_wake;
    pid_t m_process = -1;
    Clock::time_point m_start;
    std::optional<Clock::time_point> m_deadline;
    std::map<std::string, int> m_counts; // requests received, by endpoint
    Road m_road;
};
