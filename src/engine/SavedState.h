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

// The jobs as they go on. A missing file holds none; one that cannot be read holds none either and is logged.
[[nodiscard]] std::vector<std::shared_ptr<Job>> read(const QString& path);

} // namespace SavedState
