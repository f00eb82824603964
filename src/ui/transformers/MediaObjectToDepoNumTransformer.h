#pragma once

#include "ui/transformers/ValueTransformer.h"

// A job's number with the service; null while it has none, and for anything but a job.
class MediaObjectToDepoNumTransformer : public ValueTransformer
{
public:
    [[nodiscard]] QVariant transformedValue(const QVariant& value) const override;
};
