#include "ui/transformers/TransformedValues.h"

#include "foundation/NumberReading.h"
#include "model/Job.h"

#include <QMetaType>

namespace {

// The number behind a property that may have none, as the model's properties come; a null value where there is none.
template <typename Number>
bool unwrap(QVariant& value)
{
    if (value.metaType() != QMetaType::fromType<std::optional<Number>>())
        return false;
    const auto number = value.value<std::optional<Number>>();
    value = number ? QVariant::fromValue(*number) : QVariant();
    return true;
}

std::optional<QVariant> readable(QVariant value)
{
    (void)(unwrap<int>(value) || unwrap<float>(value) || unwrap<double>(value) || unwrap<qint64>(value));
    switch (value.typeId()) {
    case QMetaType::QString:
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Float:
    case QMetaType::Double:
        return value;
    default:
        return std::nullopt;
    }
}

} // namespace

std::optional<int> TransformedValues::integerValue(const QVariant& value)
{
    const auto number = readable(value);
    return number ? std::optional(NumberReading::intValue(*number)) : std::nullopt;
}

std::optional<float> TransformedValues::floatValue(const QVariant& value)
{
    const auto number = readable(value);
    return number ? std::optional(NumberReading::floatValue(*number)) : std::nullopt;
}

std::shared_ptr<MediaObject> TransformedValues::mediaObject(const QVariant& value)
{
    if (value.metaType() == QMetaType::fromType<std::shared_ptr<Job>>())
        return value.value<std::shared_ptr<Job>>();
    if (value.metaType() == QMetaType::fromType<std::shared_ptr<MediaFile>>())
        return value.value<std::shared_ptr<MediaFile>>();
    if (value.metaType() == QMetaType::fromType<std::shared_ptr<MediaObject>>())
        return value.value<std::shared_ptr<MediaObject>>();
    return nullptr;
}
