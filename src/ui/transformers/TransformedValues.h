#pragma once

#include <QVariant>

#include <memory>
#include <optional>

class MediaObject;

// What the transformers find in a value of unknown type.
namespace TransformedValues {

// Numbers and texts have one (see NumberReading); an optional number has one when it is there. Nothing else has.
[[nodiscard]] std::optional<int> integerValue(const QVariant& value);
[[nodiscard]] std::optional<float> floatValue(const QVariant& value);

// Null for anything but a media object.
[[nodiscard]] std::shared_ptr<MediaObject> mediaObject(const QVariant& value);

} // namespace TransformedValues
