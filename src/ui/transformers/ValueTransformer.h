#pragma once

#include <QVariant>

// Turns a value of the model into one to show, and some back again. Null is an invalid QVariant. Media objects travel
// as a std::shared_ptr<MediaObject> in the QVariant (or one to Job or MediaFile), arrays as a QVariantList.
// Without state, so one object serves every window. Main thread.
class ValueTransformer
{
public:
    virtual ~ValueTransformer() = default;

    [[nodiscard]] virtual QVariant transformedValue(const QVariant& value) const = 0;
    [[nodiscard]] virtual bool allowsReverseTransformation() const { return false; }
    // Null where there is no way back.
    [[nodiscard]] virtual QVariant reverseTransformedValue(const QVariant& value) const;
};
