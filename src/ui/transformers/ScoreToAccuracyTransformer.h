#pragma once

#include "ui/transformers/ValueTransformer.h"

// A quality score as one of the steps 1 to 6, a step for every 20; null for a value without an integer.
class ScoreToAccuracyTransformer : public ValueTransformer
{
public:
    [[nodiscard]] QVariant transformedValue(const QVariant& value) const override;
};
