#include "ui/transformers/ProcessingLevelToTagTransformer.h"

#include "foundation/Assertion.h"
#include "model/ProcessingLevel.h"
#include "ui/transformers/TransformedValues.h"

namespace {

QVariant sameNumber(const QVariant& value, const char* assertion)
{
    const auto number = TransformedValues::integerValue(value);
    if (!number)
        return {};
    // As an unsigned number, so that one below 0 is out of range too.
    const bool isLevel = static_cast<unsigned>(*number) <= static_cast<unsigned>(ProcessingLevelUnattended);
    return Assertion::check(isLevel, assertion) ? *number : 0;
}

} // namespace

QVariant ProcessingLevelToTagTransformer::transformedValue(const QVariant& value) const
{
    return sameNumber(value, "invalid ProcessingLevel value");
}

QVariant ProcessingLevelToTagTransformer::reverseTransformedValue(const QVariant& value) const
{
    return sameNumber(value, "invalid tag of processing level radio group");
}
