#include "cli/Reporter.h"

#include "cli/JsonReporter.h"
#include "cli/LiveReporter.h"
#include "cli/PlainReporter.h"
#include "cli/Terminal.h"
#include "model/JobStatus.h"

#include <algorithm>

namespace {

void takeObject(const MediaObject& object, ProgressRow& row)
{
    // Of what only the service knows, all three are the service's own words.
    row.name = Secrets::masked(object.name());
    row.status = object.status();
    row.statusText = Secrets::masked(jobStatusText(object));
    row.serverStatus = Secrets::masked(object.serverStatus());
    row.processed = object.processedValue();
    row.total = object.totalValue();
    row.score = object.scoreValue();
}

// The segments of a job that only the service knows come in any order; their names tell their numbers.
std::optional<int> segmentOnServer(const MediaFile& mediaFile)
{
    bool isNumber = false;
    const int number = mediaFile.name().section(u' ', -1).toInt(&isNumber);
    return isNumber ? std::optional(number) : std::nullopt;
}

} // namespace

ProgressRow ProgressRow::ofJob(const Job& job)
{
    ProgressRow row;
    row.depoNum = job.depoNum();
    row.orderNum = job.orderNum();
    row.isServerJob = job.serverJob();
    takeObject(job, row);
    return row;
}

ProgressRow ProgressRow::ofMediaFile(const Job& job, const MediaFile& mediaFile, int segment)
{
    ProgressRow row;
    row.depoNum = job.depoNum();
    row.orderNum = job.orderNum();
    row.isServerJob = job.serverJob();
    row.segment = mediaFile.isServerMediaFile() ? segmentOnServer(mediaFile).value_or(segment) : segment;
    takeObject(mediaFile, row);
    return row;
}

std::optional<double> ProgressRow::fraction() const
{
    if (total.value_or(0) <= 0)
        return std::nullopt;
    return std::clamp(processed.value_or(0) / *total, 0.0, 1.0);
}

std::unique_ptr<Reporter> Reporter::make(bool json)
{
    if (json)
        return std::make_unique<JsonReporter>();
    if (Terminal::isStandardOutput())
        return std::make_unique<LiveReporter>();
    return std::make_unique<PlainReporter>();
}
