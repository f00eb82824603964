#include "ui/transformers/HasUncompletedLocalJobsToStringTransformer.h"

#include "model/JobStatus.h"
#include "ui/transformers/TransformedValues.h"

#include <QVariantList>

QVariant HasUncompletedLocalJobsToStringTransformer::transformedValue(const QVariant& value) const
{
    // Anything but a list has no element to decide.
    const QVariantList statuses = value.typeId() == QMetaType::QVariantList ? value.toList() : QVariantList();
    for (const QVariant& element : statuses) {
        // A job without a readable status may be at work, so it counts as one that has just begun.
        const int status = TransformedValues::integerValue(element).value_or(JobStatusIdle);
        if (status < JobStatusUploaded || status == JobStatusDownloading)
            return tr("Please do not close Quillpost - local processing in progress");
        // A job that is processed again is at 13 and may be left alone, though the engine counts it as unfinished.
        if (status <= JobStatusReadyForDownload)
            return tr("You may close Quillpost - local processing complete");
    }
    return tr("No work pending - click to request refresh");
}
