#pragma once

#include "ui/transformers/ValueTransformer.h"

// Whether a progress bar runs in this status; null for a value without an integer.
class StatusToProgressVisibilityTransformer : public ValueTransformer
{
public:
    [[nodiscard]] QVariant transformedValue(const QVariant& value) const override;
    [[nodiscard]] static bool isProgressVisible(int status);
};
