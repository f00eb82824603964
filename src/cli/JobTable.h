#pragma once

#include "model/Job.h"

#include <QJsonObject>
#include <QString>

#include <memory>
#include <optional>
#include <vector>

// The list of jobs as the command line prints it: each job, then its segments.
namespace JobTable {

struct Row
{
    int depoNum = 0;
    std::optional<int> orderNum{};
    int segment = 0; // 0 is the job itself
    QString name{};
    QString status{};
    std::optional<int> score{};
    std::optional<double> duration{}; // seconds
    bool isSaved = false;
    bool isOnService = false;
};

// What the service says of a job goes before what was saved of it.
[[nodiscard]] std::vector<Row> rows(const QString& statusReply, const std::vector<std::shared_ptr<Job>>& savedJobs);

[[nodiscard]] QString header();
[[nodiscard]] QString line(const Row& row);
[[nodiscard]] QJsonObject object(const Row& row);
// "1:02:05"
[[nodiscard]] QString hoursMinutesSeconds(double seconds);

} // namespace JobTable
