#pragma once

#include "foundation/Error.h"
#include "model/Job.h"

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
    // Why some or all of the file could not be read. Such a file must not be written over: see keepAside().
    std::optional<QString> problem = std::nullopt;
};

// A missing file holds no jobs.
[[nodiscard]] Contents read(const QString& path);
// Of the file and the one before it, the jobs of that which holds more of them; the file's own problem.
[[nodiscard]] Contents readLastGood(const QString& path);

// Renames a file that could not be read to a name that nothing writes to, logs it, and returns the words for the user.
[[nodiscard]] Error keepAside(const QString& path, const QString& problem);

} // namespace SavedState
