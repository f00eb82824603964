#include "cli/JobTable.h"

#include "engine/StatusReply.h"
#include "foundation/NumberReading.h"
#include "foundation/Text.h"
#include "model/JobStatus.h"

#include <QList>

#include <algorithm>
#include <cstdint>
#include <map>

namespace {

using JobTable::Row;

struct Entry
{
    Row job;
    std::map<int, Row> segments;
};

std::optional<double> seconds(const std::optional<float>& duration)
{
    return duration ? std::optional<double>(*duration) : std::nullopt;
}

Entry entryOf(const Job& job)
{
    Entry entry;
    entry.job = {.depoNum = NumberReading::valueOrZero(job.depoNum()),
                 .orderNum = job.orderNum(),
                 .name = job.name(),
                 .status = jobStatusText(job),
                 .duration = seconds(job.totalMediaDuration()),
                 .isSaved = true};
    int segment = 0;
    for (const auto& file : job.mediaFiles()) {
        ++segment;
        entry.segments[segment] = {.depoNum = entry.job.depoNum,
                                   .segment = segment,
                                   .name = file->name(),
                                   .status = jobStatusText(*file),
                                   .duration = seconds(file->sourceDuration()),
                                   .isSaved = true};
    }
    return entry;
}

void take(const StatusReply::Deposition& record, Entry& entry)
{
    entry.job.depoNum = record.number;
    entry.job.status = record.status;
    entry.job.isOnService = true;
    if (entry.job.name.isEmpty())
        entry.job.name = record.transcriptName;
}

void take(const StatusReply::Segment& record, Entry& entry)
{
    Row& row = entry.segments[record.number];
    row.depoNum = record.deposition;
    row.segment = record.number;
    row.status = record.status;
    row.isOnService = true;
    if (row.name.isEmpty())
        row.name = Text::format("Segment {}", record.number);
    if (record.score != -1)
        row.score = record.score;
    if (!row.duration && record.duration >= 0)
        row.duration = record.duration / 1000.0;
}

// A job's score is that of its worst segment, and its duration their sum.
void sumUp(Entry& entry)
{
    double sum = 0;
    for (const auto& [number, segment] : entry.segments) {
        sum += segment.duration.value_or(0);
        if (segment.score)
            entry.job.score = std::min(entry.job.score.value_or(*segment.score), *segment.score);
    }
    if (!entry.job.duration && sum > 0)
        entry.job.duration = sum;
}

QString numberText(const std::optional<int>& number)
{
    return number ? QString::number(*number) : QStringLiteral("-");
}

} // namespace

std::vector<JobTable::Row> JobTable::rows(const QString& statusReply,
                                          const std::vector<std::shared_ptr<Job>>& savedJobs)
{
    std::vector<Entry> unnumbered; // saved before the service gave them a number
    std::map<int, Entry> entries;
    for (const auto& job : savedJobs) {
        Entry entry = entryOf(*job);
        if (entry.job.depoNum == 0)
            unnumbered.push_back(std::move(entry));
        else
            entries[entry.job.depoNum] = std::move(entry);
    }
    for (const auto& record : StatusReply::depositions(statusReply))
        take(record, entries[record.number]);
    for (const auto& record : StatusReply::segments(statusReply)) {
        if (const auto entry = entries.find(record.deposition); entry != entries.end())
            take(record, entry->second);
    }
    for (auto& [number, entry] : entries)
        unnumbered.push_back(std::move(entry));

    std::vector<Row> all;
    for (Entry& entry : unnumbered) {
        sumUp(entry);
        all.push_back(entry.job);
        for (const auto& [number, segment] : entry.segments)
            all.push_back(segment);
    }
    return all;
}

QString JobTable::header()
{
    return QStringLiteral("JOB      ORDER    STATUS                    SCORE  DURATION   WHERE           NAME");
}

QString JobTable::line(const Row& row)
{
    const QString where = row.isOnService ? (row.isSaved ? QStringLiteral("service, saved") : QStringLiteral("service"))
                                          : QStringLiteral("saved");
    const QString number = row.segment == 0 ? numberText(row.depoNum == 0 ? std::nullopt : std::optional(row.depoNum))
                                            : Text::format("  {}", row.segment);
    return Text::format("{:<8} {:<8} {:<25} {:>5}  {:>8}   {:<15} {}", number,
                        row.segment == 0 ? numberText(row.orderNum) : QString(), row.status, numberText(row.score),
                        row.duration ? hoursMinutesSeconds(*row.duration) : QStringLiteral("-"), where, row.name);
}

QJsonObject JobTable::object(const Row& row)
{
    const auto orNull = [](const auto& value) { return value ? QJsonValue(*value) : QJsonValue(QJsonValue::Null); };
    QJsonObject object{{QStringLiteral("event"), row.segment == 0 ? QStringLiteral("job") : QStringLiteral("file")},
                       {QStringLiteral("depo"), row.depoNum},
                       {QStringLiteral("name"), row.name},
                       {QStringLiteral("status"), row.status},
                       {QStringLiteral("score"), orNull(row.score)},
                       {QStringLiteral("duration"), orNull(row.duration)},
                       {QStringLiteral("saved"), row.isSaved},
                       {QStringLiteral("onService"), row.isOnService}};
    if (row.segment == 0)
        object.insert(QStringLiteral("order"), orNull(row.orderNum));
    else
        object.insert(QStringLiteral("segment"), row.segment);
    return object;
}

QString JobTable::hoursMinutesSeconds(double seconds)
{
    const auto whole = static_cast<std::int64_t>(seconds);
    return Text::format("{}:{:02}:{:02}", whole / 3600, whole / 60 % 60, whole % 60);
}
