#include "ui/controls/WheelGuard.h"

#include <QAbstractSpinBox>
#include <QComboBox>
#include <QEvent>

void WheelGuard::guard(QWidget& window)
{
    auto* const guard = new WheelGuard(&window);
    for (QWidget* const control : window.findChildren<QWidget*>()) {
        if (!qobject_cast<QComboBox*>(control) && !qobject_cast<QAbstractSpinBox*>(control))
            continue;
        control->installEventFilter(guard);
        if (control->focusPolicy() == Qt::WheelFocus)
            control->setFocusPolicy(Qt::StrongFocus);
    }
}

bool WheelGuard::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::Wheel)
        return QObject::eventFilter(watched, event);
    const auto* const list = qobject_cast<QComboBox*>(watched);
    const bool isTyped = list != nullptr && list->isEditable();
    if (!isTyped && qobject_cast<QWidget*>(watched)->hasFocus())
        return false;
    event->ignore(); // Whatever lies beneath may scroll.
    return true;
}
