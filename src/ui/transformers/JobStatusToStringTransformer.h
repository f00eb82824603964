#pragma once

#include "ui/transformers/ValueTransformer.h"

#include <QString>

class QObject;

// A media object's status in words; null for anything else.
class JobStatusToStringTransformer : public ValueTransformer
{
public:
    [[nodiscard]] QVariant transformedValue(const QVariant& value) const override;

    // The words for the object's server status. Anything but a media object fails the assertion
    // "Invalid media object type" and gives "Invalid".
    [[nodiscard]] static QString userStringForServerStatus(const QObject& mediaObject);
};
