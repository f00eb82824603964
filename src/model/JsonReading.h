#pragma once

#include <QDateTime>
#include <QJsonValue>
#include <QString>
#include <QVariant>

#include <optional>

// The values of an archive, read without trust: a value of another type than the one wanted counts as missing.
namespace JsonReading {

// Null where there is no text.
[[nodiscard]] QString text(const QJsonValue& value);
[[nodiscard]] QJsonValue fromText(const QString& text);

// Fractions are cut off; numbers beyond int stop at its ends; 0 where there is no number.
[[nodiscard]] int intOrZero(const QJsonValue& value);
[[nodiscard]] std::optional<int> optionalInt(const QJsonValue& value);
// None also for a number beyond float.
[[nodiscard]] std::optional<float> optionalFloat(const QJsonValue& value);

template <typename Number>
[[nodiscard]] QJsonValue fromOptional(const std::optional<Number>& number)
{
    return number ? QJsonValue(*number) : QJsonValue(QJsonValue::Null);
}

// A number, a text or a bool as it is, else an invalid value.
[[nodiscard]] QVariant scalar(const QJsonValue& value);
[[nodiscard]] QJsonValue fromScalar(const QVariant& value);

// An instant; invalid where there is none.
[[nodiscard]] QDateTime date(const QJsonValue& value);
[[nodiscard]] QJsonValue fromDate(const QDateTime& date);

} // namespace JsonReading
