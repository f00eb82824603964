#pragma once

#include "foundation/Error.h"
#include "model/Job.h"

#include <QString>

#include <memory>
#include <optional>
#include <vector>

// The file that keeps a user's unfinished jobs between runs: one JSON document, written whole.
namespace SavedState {

[[nodiscard]] QString filePath(const QString& folder, const QString& username);

// Local jobs that are not yet downloaded; the others are left out. The folder is made when missing.
[[nodiscard]] std::optional<Error> write(const QString& path, const std::vector<std::shared_ptr<Job>>& jobs);

struct Contents
{
    std::vector<std::shared_ptr<Job>> jobs; // as they go on
    // Why some or all of the file could not be read. Such a file must not be written over: see keepAside().
    std::optional<QString> problem = std::nullopt;
};

// A missing file holds no jobs.
[[nodiscard]] Contents read(const QString& path);

// Renames a file that could not be read to a name that nothing writes to, logs it, and returns the words for the user.
[[nodiscard]] Error keepAside(const QString& path, const QString& problem);

} // namespace SavedState
