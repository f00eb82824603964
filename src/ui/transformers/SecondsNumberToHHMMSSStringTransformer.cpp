#include "ui/transformers/SecondsNumberToHHMMSSStringTransformer.h"

#include "ui/transformers/TransformedValues.h"

#include <QString>

#include <algorithm>
#include <cmath>

namespace {

constexpr float longest = 2147483520.0F; // the largest float that an int holds

} // namespace

QVariant SecondsNumberToHHMMSSStringTransformer::transformedValue(const QVariant& value) const
{
    const auto seconds = TransformedValues::floatValue(value);
    if (!seconds || !std::isfinite(*seconds))
        return {};
    const float f = std::clamp(*seconds, -longest, longest);
    const int hours = static_cast<int>(f / 3600);
    const int minutes = static_cast<int>((f - static_cast<float>(hours * 3600)) / 60);
    return QString::asprintf("%i:%.2i:%.2i", hours, minutes, static_cast<int>(f) % 60);
}
