#pragma once

#include "ui/main/JobListColumn.h"

#include <QString>
#include <QVariant>

#include <memory>
#include <optional>

class MediaObject;

// What a row of the job list shows in each column, through the registered transformers. Main thread.
namespace JobListValues {

// The name, marked as rush where it is a rush job.
[[nodiscard]] QString title(const MediaObject& object);
// "TextIcon" for a job, "SoundIcon" for anything else.
[[nodiscard]] QString imageName(const MediaObject& object);

// The text or number of the column; invalid where the row has none.
[[nodiscard]] QVariant display(const std::shared_ptr<MediaObject>& object, JobListColumn column);
// The value below what is displayed.
[[nodiscard]] QVariant underlying(const std::shared_ptr<MediaObject>& object, JobListColumn column);
// In words, where the display is not words enough.
[[nodiscard]] QString accessibleText(const std::shared_ptr<MediaObject>& object, JobListColumn column);
// Safe to show as it stands.
[[nodiscard]] QString toolTip(const std::shared_ptr<MediaObject>& object, JobListColumn column);

// In seconds.
[[nodiscard]] std::optional<float> duration(const MediaObject& object);
[[nodiscard]] bool isProgressVisible(const MediaObject& object);
// 0 to 1; 0 where there is nothing to do.
[[nodiscard]] double fractionDone(const MediaObject& object);

[[nodiscard]] QString columnTitle(JobListColumn column);

} // namespace JobListValues
