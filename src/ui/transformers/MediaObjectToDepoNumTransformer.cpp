#include "ui/transformers/MediaObjectToDepoNumTransformer.h"

#include "model/Job.h"
#include "ui/transformers/TransformedValues.h"

QVariant MediaObjectToDepoNumTransformer::transformedValue(const QVariant& value) const
{
    const auto job = std::dynamic_pointer_cast<Job>(TransformedValues::mediaObject(value));
    const auto depoNum = job ? job->depoNum() : std::nullopt;
    return depoNum ? QVariant(*depoNum) : QVariant();
}
