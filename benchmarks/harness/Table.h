#pragma once

#include "harness/Row.h"

#include <QString>

#include <vector>

namespace Bench {

// The rows under each other as a table that also reads as Markdown.
[[nodiscard]] QString tableOf(const std::vector<Row>& rows);

// The rows and the machine as a JSON document. False when the file could not be written.
bool writeJson(const std::vector<Row>& rows, const QString& path);

// What the figures were taken on: processors, their name, memory, kernel.
[[nodiscard]] QString machineText();

} // namespace Bench
