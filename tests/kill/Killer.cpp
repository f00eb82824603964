#include "Killer.h"

#include <algorithm>
#include <csignal>

namespace {

template <typename Number>
Number shareOf(Number whole, double share)
{
    return static_cast<Number>(static_cast<double>(whole) * share);
}

} // namespace

Killer::Killer(std::optional<Moment> moment, const Road& road, DemoService::Service& service)
    : m_moment(moment), m_service(service)
{
    if (!m_moment)
        return;
    switch (m_moment->aim) {
    case Moment::Aim::Time:
        m_time = std::chrono::microseconds(shareOf(road.duration.count(), m_moment->share));
        break;
    case Moment::Aim::SavedJobs:
        m_change = shareOf(road.savedJobs, m_moment->share);
        break;
    case Moment::Aim::Audio:
        m_change = shareOf(road.audio, m_moment->share);
        break;
    case Moment::Aim::Delivery:
        m_change = shareOf(road.delivery, m_moment->share);
        break;
    case Moment::Aim::RequestBody:
    case Moment::Aim::RequestReceived:
    case Moment::Aim::BeforeReply:
    case Moment::Aim::MiddleOfReply:
    case Moment::Aim::AfterReply:
        m_request = road.requests.at(shareOf(road.requests.size(), m_moment->share));
        break;
    }
}

void Killer::started(pid_t process)
{
    const std::scoped_lock lock(m_mutex);
    m_process = process;
    m_start = Clock::now();
    if (m_time)
        m_deadline = m_start + *m_time;
}

bool Killer::isAimedAt(const std::string& endpoint, int number) const
{
    return m_moment && m_moment->isAtRequest() && endpoint == m_request.endpoint && number == m_request.number;
}

void Killer::atRequest(DemoService::Stage stage, const DemoService::Request& request)
{
    using Stage = DemoService::Stage;
    const std::scoped_lock lock(m_mutex);
    int& count = m_counts[request.endpoint];
    // Which of two that are answered at once is the aim does not matter.
    const int number = stage == Stage::Answered ? count - 1 : count;
    const bool isAim = isAimedAt(request.endpoint, number);
    if (stage == Stage::Received)
        m_road.addRequest(request.endpoint, count++);
    if (!isAim)
        return;
    const Moment::Aim aim = m_moment->aim;
    const bool isReceived = stage == Stage::Received;
    if ((stage == Stage::Body || isReceived) && aim == Moment::Aim::RequestBody)
        kill();
    else if (isReceived && aim == Moment::Aim::RequestReceived)
        kill();
    else if (isReceived && aim == Moment::Aim::MiddleOfReply)
        m_service.addOverride(request.endpoint, {.pieceSize = 7, .pause = std::chrono::milliseconds(50), .times = 1});
    else if (stage == Stage::Answered && aim == Moment::Aim::BeforeReply)
        kill();
    else if (stage == Stage::Answered)
        killAfter(m_moment->delay);
}

void Killer::atFile(Place place)
{
    constexpr int shorter = 6;
    const std::scoped_lock lock(m_mutex);
    int& count = place == Place::SavedJobs ? m_road.savedJobs : place == Place::Audio ? m_road.audio : m_road.delivery;
    const Moment::Aim aim = place == Place::SavedJobs ? Moment::Aim::SavedJobs
                            : place == Place::Audio   ? Moment::Aim::Audio
                                                      : Moment::Aim::Delivery;
    if (m_change && m_moment->aim == aim && count == *m_change) {
        if (m_moment->delay.count() == 0)
            kill();
        else
            killAfter(m_moment->delay / shorter);
    }
    ++count;
}

void Killer::killAfter(std::chrono::microseconds delay)
{
    if (!m_deadline)
        m_deadline = Clock::now() + delay;
    m_wake.notify_one();
}

void Killer::kill()
{
    // The program alone: its children must see to their own end.
    if (m_process > 0)
        ::kill(m_process, SIGKILL);
    m_process = -1;
}

void Killer::wait()
{
    constexpr std::chrono::milliseconds shortWhile(2);
    std::unique_lock lock(m_mutex);
    const auto latest = Clock::now() + shortWhile;
    m_wake.wait_until(lock, m_deadline && m_process > 0 ? std::min(*m_deadline, latest) : latest);
    if (m_deadline && Clock::now() >= *m_deadline)
        kill();
}

void Killer::ended()
{
    const std::scoped_lock lock(m_mutex);
    m_process = -1;
    m_road.duration = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - m_start);
}

Road Killer::road() const
{
    const std::scoped_lock lock(m_mutex);
    return m_road;
}
