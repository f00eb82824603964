#include "model/JsonReading.h"

#include "foundation/NumberReading.h"

#include <cmath>
#include <limits>

QString JsonReading::text(const QJsonValue& value)
{
    return value.isString() ? value.toString() : QString();
}

QJsonValue JsonReading::fromText(const QString& text)
{
    return text.isNull() ? QJsonValue(QJsonValue::Null) : QJsonValue(text);
}

int JsonReading::intOrZero(const QJsonValue& value)
{
    return optionalInt(value).value_or(0);
}

std::optional<int> JsonReading::optionalInt(const QJsonValue& value)
{
    if (!value.isDouble())
        return std::nullopt;
    return NumberReading::intValue(QVariant(value.toDouble()));
}

std::optional<float> JsonReading::optionalFloat(const QJsonValue& value)
{
    if (!value.isDouble() || !(std::fabs(value.toDouble()) <= static_cast<double>(std::numeric_limits<float>::max())))
        return std::nullopt;
    return static_cast<float>(value.toDouble());
}

QVariant JsonReading::scalar(const QJsonValue& value)
{
    return value.isDouble() || value.isString() || value.isBool() ? value.toVariant() : QVariant();
}

QJsonValue JsonReading::fromScalar(const QVariant& value)
{
    return value.isValid() ? QJsonValue::fromVariant(value) : QJsonValue(QJsonValue::Null);
}

QDateTime JsonReading::date(const QJsonValue& value)
{
    return QDateTime::fromString(text(value), Qt::ISODateWithMs).toLocalTime();
}

QJsonValue JsonReading::fromDate(const QDateTime& date)
{
    return date.isValid() ? QJsonValue(date.toUTC().toString(Qt::ISODateWithMs)) : QJsonValue(QJsonValue::Null);
}
