#pragma once

#include "cli/CommandLine.h"
#include "model/Job.h"

#include <QString>
#include <QStringList>

#include <memory>
#include <variant>

// Making a job out of what the user gave, as the submit window does.
namespace Order {

struct Prepared
{
    std::shared_ptr<Job> job;
    QStringList remarks; // words for the user that stop nothing
};

// The job without prices: files checked and sorted by name, deponent and date as given, else as the transcript tells,
// else empty and today. Or words for a user whose files cannot be taken.
[[nodiscard]] std::variant<Prepared, QString> prepare(const SubmitOptions& options);

// Sets level, rush and interpreter. Some do not go together; the job then moves to the nearest level that does, which
// the remarks say. To be done once the prices are known.
[[nodiscard]] QStringList applyServiceOptions(const SubmitOptions& options, Job& job);

} // namespace Order
