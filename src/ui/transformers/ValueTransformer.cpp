#include "ui/transformers/ValueTransformer.h"

QVariant ValueTransformer::reverseTransformedValue(const QVariant& /*value*/) const
{
    return {};
}
