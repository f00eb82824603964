#pragma once

#include <QString>

#include <vector>

// The time of one job in which nothing was under way, held against the waits that the engine's design asks for. All
// times are seconds of one clock.
namespace RoadWaits {

// Something under way: a run of ffmpeg, or a transfer.
struct Work
{
    enum class Kind { Ffmpeg, Transfer };

    Kind kind = Kind::Transfer;
    QString endpoint{};    // of a transfer
    bool isNested = false; // inside another command: it goes through no queue
    double begin = 0;
    double end = 0;
};

// What the engine reported of itself.
struct Record
{
    double queueStarted = 0;
    double submitted = 0;
    double completed = 0;
    // Looks of the finder that found something; the first is its start. After each it looks again at once, then
    // whenever it has slept.
    std::vector<double> finderLooks;
    // When a command of that endpoint was queued, in order.
    struct Queued
    {
        QString endpoint;
        double time = 0;
    };
    std::vector<Queued> queued{};
    std::vector<double> polls{}; // when the poll's period began anew
};

struct Intervals
{
    double tick = 0.1;        // the queue starts one command at each
    double finderSleep = 0.5; // of a finder that found nothing
    double poll = 1;
};

struct Result
{
    double idle = 0;     // nothing was under way
    double demanded = 0; // the least of it that the design allows
};

// Each stretch in which nothing is under way ends with a work, or with the job's completion. What that work had to wait
// for follows from its kind: the queue's next tick, the finder's next look, the poll's period.
[[nodiscard]] Result of(const Record& record, std::vector<Work> works, const Intervals& intervals);

} // namespace RoadWaits
