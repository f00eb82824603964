#pragma once

#include "ui/transformers/ValueTransformer.h"

// A ProcessingLevel as the tag of its choice in the submit window, and back: the same numbers. Null for null and for a
// value without an integer; a number that is no level fails the assertion "invalid ProcessingLevel value" (back:
// "invalid tag of processing level radio group") and gives 0.
class ProcessingLevelToTagTransformer : public ValueTransformer
{
public:
    [[nodiscard]] QVariant transformedValue(const QVariant& value) const override;
    [[nodiscard]] bool allowsReverseTransformation() const override { return true; }
    [[nodiscard]] QVariant reverseTransformedValue(const QVariant& value) const override;
};
