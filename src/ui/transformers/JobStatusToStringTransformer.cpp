#include "ui/transformers/JobStatusToStringTransformer.h"

#include "model/JobStatus.h"
#include "model/MediaObject.h"
#include "ui/transformers/TransformedValues.h"

QVariant JobStatusToStringTransformer::transformedValue(const QVariant& value) const
{
    const auto mediaObject = TransformedValues::mediaObject(value);
    if (!mediaObject)
        return {};
    // A file of which the service said nothing has no words, which is not the same as empty ones.
    const QString text = jobStatusText(*mediaObject);
    return text.isNull() ? QVariant() : QVariant(text);
}

QString JobStatusToStringTransformer::userStringForServerStatus(const QObject& mediaObject)
{
    return ::userStringForServerStatus(mediaObject);
}
