#pragma once

#include "cli/Reporter.h"

#include <QString>

// A row of progress in words.
namespace RowText {

// A bar belongs to the states in which something runs.
[[nodiscard]] bool isMoving(const ProgressRow& row);
// "883 Smith.txt: Uploading files 40 %"; a file's row is indented below its job.
[[nodiscard]] QString plain(const ProgressRow& row);
// One line of so many columns: name, state, bar and percent.
[[nodiscard]] QString live(const ProgressRow& row, int columns);

} // namespace RowText
