#include "rows/RoadWaits.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>

namespace RoadWaits {

namespace {

// A timer comes so much early or late against the moments that were noted beside it.
constexpr double jitter = 0.004;

// The first of before, before + period, … that is not over at `time`.
double nextOf(double before, double period, double time)
{
    return std::max(time, before + std::max(0.0, std::ceil((time - jitter - before) / period)) * period);
}

class Calculation
{
public:
    Calculation(const Record& record, const Intervals& intervals)
        : m_record(record), m_intervals(intervals), m_lastTick(record.queueStarted)
    {}

    // When the work could have begun at the earliest that did begin at `work.begin`, nothing being under way since
    // `from`.
    [[nodiscard]] double earliest(double from, const Work& work, double queued) const
    {
        if (work.isNested)
            return from;
        if (work.kind == Work::Kind::Ffmpeg)
            return foundSince(from, work.begin).value_or(from);
        double ready = from;
        if (queued > from) {
            if (isPoll(work))
                ready = std::clamp(lastPoll(queued) + m_intervals.poll, from, queued);
            else
                ready = foundSince(from, queued + jitter).value_or(from);
        }
        return nextOf(m_lastTick + m_intervals.tick, m_intervals.tick, ready);
    }
    void begun(const Work& work)
    {
        if (work.kind == Work::Kind::Transfer && !work.isNested)
            m_lastTick = work.begin;
    }

private:
    static bool isPoll(const Work& work)
    {
        return work.endpoint == u"checkstatus.php" || work.endpoint == u"get_instructions.php";
    }
    // When the finder, which found something between the two, could have found it at the earliest.
    [[nodiscard]] std::optional<double> foundSince(double from, double until) const
    {
        for (std::size_t i = 1; i < m_record.finderLooks.size(); ++i) {
            const double look = m_record.finderLooks[i];
            if (look > from - jitter && look <= until)
                return nextOf(m_record.finderLooks[i - 1], m_intervals.finderSleep, from);
        }
        return std::nullopt;
    }
    [[nodiscard]] double lastPoll(double before) const
    {
        double last = m_record.submitted;
        for (const double poll : m_record.polls) {
            if (poll < before - jitter)
                last = poll;
        }
        return last;
    }

    const Record& m_record;
    const Intervals& m_intervals;
    double m_lastTick;
};

} // namespace

Result of(const Record& record, std::vector<Work> works, const Intervals& intervals)
{
    std::sort(works.begin(), works.end(), [](const Work& a, const Work& b) { return a.begin < b.begin; });
    std::map<QString, std::size_t> taken;
    const auto queuedAt = [&](const Work& work) {
        std::size_t number = taken[work.endpoint]++;
        for (const Record::Queued& queued : record.queued) {
            if (queued.endpoint == work.endpoint && number-- == 0)
                return queued.time;
        }
        return work.begin;
    };
    Calculation calculation(record, intervals);
    Result result;
    double busyUntil = record.submitted;
    for (const Work& work : works) {
        const double queued = work.kind == Work::Kind::Transfer && !work.isNested ? queuedAt(work) : work.begin;
        if (work.begin >= record.completed)
            break;
        if (work.begin > busyUntil) {
            const double earliest = std::min(calculation.earliest(busyUntil, work, queued), work.begin);
            result.idle += work.begin - busyUntil;
            result.demanded += earliest - busyUntil;
        }
        calculation.begun(work);
        busyUntil = std::max(busyUntil, work.end);
    }
    result.idle += std::max(0.0, record.completed - busyUntil);
    return result;
}

} // namespace RoadWaits
