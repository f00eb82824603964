#pragma once

#include "ui/transformers/ValueTransformer.h"

// A duration in seconds as "1:02:05", hours not wrapped at a day. Null for a value without a number and for one that is
// no finite number; a duration longer than an int of seconds is shown as the longest.
class SecondsNumberToHHMMSSStringTransformer : public ValueTransformer
{
public:
    [[nodiscard]] QVariant transformedValue(const QVariant& value) const override;
};
