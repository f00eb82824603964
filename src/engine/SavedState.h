#pragma once

#include "foundation/Error.h"
#include "model/Job.h"

#include <QDateTime>
#include <QJsonArray>
#include <QString>

#include <memory>
#include <optional>
#include <vector>

// The file that keeps a user's unfinished jobs between runs: one JSON document, written whole.
namespace SavedState {

[[nodiscard]] QString filePath(const QString& folder, const QString& username);

// The file as it was before it was written last, for when the newer one cannot be read.
[[nodiscard]] QString previousPath(const QString& path);

// A local job that is not yet downloaded.
[[nodiscard]] bool isKept(const Job& job);

// Writes those jobs that are kept. The folder is made when missing.
[[nodiscard]] std::optional<Error> write(const QString& path, const std::vector<std::shared_ptr<Job>>& jobs);

// The same of jobs that are encoded already. Any thread.
[[nodiscard]] std::optional<Error> writeArchives(const QString& path, const QJsonArray& archives);

struct Contents
{
    std::vector<std::shared_ptr<Job>> jobs = {}; // as they go on
    // Those whose submission got no reply that was saved: the service may hold them already.
    std::vector<std::shared_ptr<Job>> submittedPerhaps = {};
    // Those that the newest file does not tell of.
    std::vector<std::shared_ptr<Job>> fromPrevious = {};
    // Why some or all of the file could not be read. Such a file must not be written over: see keepAside().
    std::optional<QString> problem = std::nullopt;
    std::optional<QString> problemOfPrevious = std::nullopt; // the same of the file before
};

// A missing file holds no jobs.
[[nodiscard]] Contents read(const QString& path);
// Where some or all of the file cannot be read, or it is missing, with those jobs of the file before it that it lacks.
[[nodiscard]] Contents readLastGood(const QString& path);

// Renames a file that could not be read to a name that nothing writes to, not even a later call at the same time of the
// clock; logs it, and returns the words for the user.
[[nodiscard]] Error keepAside(const QString& path, const QString& problem,
                              const QDateTime& now = QDateTime::currentDateTime());

} // namespace SavedState
