#include "ui/controls/VerticalScrollArea.h"

#include <QEvent>
#include <QScrollBar>

namespace {

constexpr int leastLines = 8;

} // namespace

VerticalScrollArea::VerticalScrollArea(QWidget* parent) : QScrollArea(parent)
{
    setWidgetResizable(true);
    setFrameShape(NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus); // its controls come into sight as they are reached
    viewport()->setAutoFillBackground(false);
    verticalScrollBar()->installEventFilter(this);
}

int VerticalScrollArea::barWidth() const
{
    return verticalScrollBar()->isVisible() ? verticalScrollBar()->sizeHint().width() : 0;
}

QSize VerticalScrollArea::sizeHint() const
{
    return widget() != nullptr ? widget()->sizeHint() + QSize(barWidth(), 0) : QScrollArea::sizeHint();
}

QSize VerticalScrollArea::minimumSizeHint() const
{
    const int width = widget() != nullptr ? widget()->minimumSizeHint().width() : 0;
    return {width + barWidth(), leastLines * fontMetrics().height()};
}

// The base class watches the widget in it by this filter as well.
bool VerticalScrollArea::eventFilter(QObject* watched, QEvent* event)
{
    const bool isBar = watched == verticalScrollBar();
    if ((isBar && (event->type() == QEvent::Show || event->type() == QEvent::Hide)) ||
        (watched == widget() && event->type() == QEvent::LayoutRequest))
        updateGeometry();
    return QScrollArea::eventFilter(watched, event);
}
