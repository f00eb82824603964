#include "ui/controls/ImageTextCell.h"

#include "ui/controls/QuillpostIcons.h"

namespace {

constexpr double imageIndent = 2;
constexpr double gapAfterImage = 3;

} // namespace

bool ImageTextCell::hasImage() const
{
    return !image.isEmpty() && !QuillpostIcons::named(image).isNull();
}

QRectF ImageTextCell::imageRectForBounds(const QRectF& plainImageRect, const QRectF& plainTitleRect)
{
    QRectF rect = plainImageRect;
    rect.moveLeft(plainTitleRect.x() + imageIndent);
    return rect;
}

QRectF ImageTextCell::titleRectForBounds(const QRectF& plainTitleRect, const std::optional<QRectF>& imageRect)
{
    if (!imageRect)
        return plainTitleRect;
    const auto shift = static_cast<double>(static_cast<float>(imageRect->width() + gapAfterImage));
    return {plainTitleRect.x() + shift, plainTitleRect.y(), plainTitleRect.width() - shift, plainTitleRect.height()};
}
