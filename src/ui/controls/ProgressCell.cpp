#include "ui/controls/ProgressCell.h"

#include <QFontMetrics>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QVariant>

#include <algorithm>
#include <cmath>

namespace {

bool isNumber(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Float:
    case QMetaType::Double:
        return true;
    default:
        return false;
    }
}

constexpr double degreesAtTop = 90;
constexpr double wholeTurn = 360;

} // namespace

void ProgressCell::setObjectValue(const QVariant& value)
{
    currentValue = isNumber(value) ? std::optional(value.toDouble()) : std::nullopt;
}

double ProgressCell::fractionDone() const
{
    const double least = minValue.value_or(0);
    const double range = maxValue.value_or(0) - least;
    const double done = currentValue.value_or(0) - least;
    if (!std::isfinite(range) || !std::isfinite(done) || range <= 0)
        return 0;
    return std::clamp(done / range, 0.0, 1.0);
}

QRect ProgressCell::indicatorRect(const QRect& frame, int fontHeight)
{
    const int side = std::max(0, std::min({fontHeight, frame.width(), frame.height()}));
    // Integer division truncates, so that the ring's edges stay on whole points.
    return {frame.x() + (frame.width() - side) / 2, frame.y() + (frame.height() - side) / 2, side, side};
}

void ProgressCell::draw(QPainter& painter, const QRect& frame, bool isCellEnabled, const QPalette& palette) const
{
    if (!isCellEnabled)
        return;
    const QRectF square = indicatorRect(frame, QFontMetrics(painter.font()).height());
    if (square.isEmpty())
        return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const double line = std::max(1.0, square.width() / 14);
    const QRectF ring = square.adjusted(line, line, -line, -line);

    QColor edge = palette.color(QPalette::WindowText);
    edge.setAlphaF(0.6F);
    painter.setPen(QPen(edge, line));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(ring);

    if (const double done = fractionDone(); done > 0) {
        const double gap = 1.5 * line;
        const QRectF inner = ring.adjusted(gap, gap, -gap, -gap);
        QPainterPath pie(inner.center());
        pie.arcTo(inner, degreesAtTop, -wholeTurn * done);
        pie.closeSubpath();
        painter.fillPath(pie, palette.color(QPalette::Highlight));
    }
    painter.restore();
}
