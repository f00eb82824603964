#pragma once

#include "ui/controls/Cell.h"

#include <QRect>

#include <optional>

class QPainter;
class QPalette;
class QVariant;

// A small round indicator of how much of something is done. Numbers that are not set read as 0.
class ProgressCell : public Cell
{
public:
    std::optional<double> minValue;
    std::optional<double> maxValue;
    std::optional<double> currentValue;
    // Carried, not consulted while drawing: what is enabled is drawn.
    bool isHidden = false;

    // The value of the row. What is not a number, a text with digits in it too, leaves none.
    void setObjectValue(const QVariant& value);

    // How much is done, 0 to 1; 0 where there is nothing to do.
    [[nodiscard]] double fractionDone() const;

    // A square of the font's height, or the frame's where that is less, centred at a whole point.
    [[nodiscard]] static QRect indicatorRect(const QRect& frame, int fontHeight);
    // Nothing when not enabled. Highlight is what is done, WindowText the ring around it.
    void draw(QPainter& painter, const QRect& frame, bool isCellEnabled, const QPalette& palette) const;
};
