#pragma once

#include <QString>
#include <QVariant>

#include <cstdint>
#include <optional>

// The one place that reads a number out of a text or of a value of unknown type, the way the platform reads a text's
// leading number: white space is skipped, then a sign, then as many digits as there are; what follows is ignored, and
// nothing readable is 0. Integers out of range stop at the ends of their type.
namespace NumberReading {

[[nodiscard]] int intValue(const QString& text);
[[nodiscard]] double doubleValue(const QString& text);
[[nodiscard]] float floatValue(const QString& text);

// A number is converted (fractions are cut off), a text read as above, a missing or other value is 0.
[[nodiscard]] int intValue(const QVariant& value);
[[nodiscard]] double doubleValue(const QVariant& value);
[[nodiscard]] float floatValue(const QVariant& value);

template <typename Number>
[[nodiscard]] Number valueOrZero(const std::optional<Number>& value)
{
    return value.value_or(Number{});
}

} // namespace NumberReading
