#pragma once

#include <QString>
#include <QStringList>

#include <optional>

// The service level of a job: automatic, or manual with its turnaround in hours. The numbers are not archived; they are
// the tags of the choice that the user makes.
enum ProcessingLevel : int {
    ProcessingLevelAutoSync = 0,
    ProcessingLevelMan24 = 1,
    ProcessingLevelMan48 = 2,
    ProcessingLevelMan72 = 3,
    ProcessingLevelUnattended = 4,
};

// "AutoSync", "Man24", …; empty for a number that is no level.
[[nodiscard]] QString processingLevelName(int processingLevel);
// Letter case does not matter.
[[nodiscard]] std::optional<ProcessingLevel> processingLevelNamed(const QString& name);
// In the order of their numbers.
[[nodiscard]] QStringList processingLevelNames();
