// One saved job.
#include "FuzzTarget.h"

#include "model/Job.h"

#include <QJsonDocument>

#include <algorithm>

using FuzzTarget::require;

FUZZ_TARGET(JobArchive)
{
    const auto job = Job::decode(QJsonDocument::fromJson(input.toByteArray()).object());
    if (!job)
        return;
    const auto archive = job->encode();
    require(archive.has_value(), "a job that was read can be saved");
    // A file's number that is no status is kept, and the job follows its files.
    const auto files = job->mediaFiles();
    const bool areStatuses = std::all_of(files.begin(), files.end(), [](const auto& file) {
        return file->status() >= JobStatusIdle && file->status() <= JobStatusCompleted;
    });
    if (!areStatuses)
        return;
    require(job->status() >= JobStatusIdle && job->status() <= JobStatusCompleted, "a job goes on from a status");
    require(job->deliveryFormat() >= DeliveryFormatAll && job->deliveryFormat() <= DeliveryFormatCustom,
            "a job has a format");
    const auto again = Job::decode(*archive);
    require(again && again->encode() == archive, "what is saved is read as it was");
    // As a file holds it.
    const QByteArray text = QJsonDocument(*archive).toJson();
    const auto written = Job::decode(QJsonDocument::fromJson(text).object());
    require(written && QJsonDocument(*written->encode()).toJson() == text, "what is written is read as it was");
}
