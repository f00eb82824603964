#include "ui/transformers/StatusToProgressVisibilityTransformer.h"

#include "model/JobStatus.h"
#include "ui/transformers/TransformedValues.h"

QVariant StatusToProgressVisibilityTransformer::transformedValue(const QVariant& value) const
{
    const auto status = TransformedValues::integerValue(value);
    if (!status)
        return {};
    return isProgressVisible(*status);
}

bool StatusToProgressVisibilityTransformer::isProgressVisible(int status)
{
    return status == JobStatusConverting || status == JobStatusUploading || status == JobStatusReprocessing ||
           status == JobStatusDownloading;
}
