#pragma once

#include "ui/transformers/ValueTransformer.h"

#include <QString>

#include <memory>

// The one table of the program's transformers, by name; any window may use any of them. Each is registered once and
// lives as long as the process. Main thread.
namespace ValueTransformers {

// The first registration of a name stays; a later one is let go.
void registerTransformer(const QString& name, std::unique_ptr<const ValueTransformer> transformer);
// Null for a name that nobody registered.
[[nodiscard]] const ValueTransformer* named(const QString& name);

// For the constructor of MainWindowController: "JobStatusToStringTransformer",
// "StatusToProgressVisibilityTransformer", "ScoreToAccuracyTransformer",
// "HasUncompletedLocalJobsToStringTransformer", "MediaObjectToDepoNumTransformer". Calling it again changes nothing.
void registerMainWindowTransformers();
// For the constructor of SubmitJobWindowController: "ProcessingLevelToTagTransformer",
// "SecondsNumberToHHMMSSStringTransformer". Calling it again changes nothing.
void registerSubmitJobWindowTransformers();

} // namespace ValueTransformers
