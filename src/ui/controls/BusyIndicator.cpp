#include "ui/controls/BusyIndicator.h"

#include <QPainter>
#include <QTimerEvent>

#include <algorithm>

namespace {

constexpr int stepMilliseconds = 80;
constexpr int steps = 12;
constexpr int degreesOfStep = 360 / steps;

} // namespace

BusyIndicator::BusyIndicator(QWidget* parent) : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void BusyIndicator::setRunning(bool running)
{
    if (running == m_isRunning)
        return;
    m_isRunning = running;
    setAccessibleDescription(running ? tr("Busy") : QString());
    updateTimer();
    update();
    Q_EMIT runningChanged(running);
}

QSize BusyIndicator::sizeHint() const
{
    const int side = fontMetrics().height();
    return {side, side};
}

void BusyIndicator::updateTimer()
{
    if (m_isRunning && isVisible())
        m_timer.start(stepMilliseconds, this);
    else
        m_timer.stop();
}

void BusyIndicator::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    updateTimer();
}

void BusyIndicator::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    m_timer.stop();
}

void BusyIndicator::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != m_timer.timerId())
        return QWidget::timerEvent(event);
    m_step = (m_step + 1) % steps;
    update();
}

void BusyIndicator::paintEvent(QPaintEvent*)
{
    if (!m_isRunning)
        return;
    const int side = std::min(width(), height());
    const double line = std::max(1.5, side / 8.0);
    QRectF ring(0, 0, side - 2 * line, side - 2 * line);
    ring.moveCenter(QRectF(rect()).center());

    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor color = palette().color(QPalette::WindowText);
    color.setAlphaF(0.2F);
    painter.setPen(QPen(color, line));
    painter.drawEllipse(ring);
    constexpr int unitsOfDegree = 16;
    constexpr int lengthOfArc = 100;
    painter.setPen(QPen(palette().color(QPalette::Highlight), line, Qt::SolidLine, Qt::RoundCap));
    painter.drawArc(ring, (90 - m_step * degreesOfStep) * unitsOfDegree, -lengthOfArc * unitsOfDegree);
}
