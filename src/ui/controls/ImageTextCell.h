#pragma once

#include "ui/controls/Cell.h"

#include <QRectF>
#include <QString>

#include <optional>

// A title with an icon before it. Without an icon it is laid out as a plain text cell.
class ImageTextCell : public Cell
{
public:
    QString title;
    // A name that QuillpostIcons knows, or empty for none.
    QString image;

    [[nodiscard]] bool hasImage() const;

    // The image's place: the plain cell's own, but beginning 2 to the right of where its title begins.
    [[nodiscard]] static QRectF imageRectForBounds(const QRectF& plainImageRect, const QRectF& plainTitleRect);
    // The title's place: the plain cell's own, made room in for the image and 3 beside it. Also where an editor goes.
    [[nodiscard]] static QRectF titleRectForBounds(const QRectF& plainTitleRect,
                                                   const std::optional<QRectF>& imageRect);
};
