#pragma once

#include "ui/WindowController.h"

#include <QShortcut>
#include <QWidget>

namespace WindowBinding {

// The window shows itself, comes to the front (out of the dock too) and closes when its controller says so; it
// also closes by its key. Either may go first.
inline void bind(WindowController& controller, QWidget& window)
{
    QObject::connect(&controller, &WindowController::showRequested, &window, [&window] {
        window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
        window.show();
        window.raise();
        window.activateWindow();
    });
    QObject::connect(&controller, &WindowController::closeRequested, &window, &QWidget::close);
    QObject::connect(new QShortcut(QKeySequence::Close, &window), &QShortcut::activated, &window, &QWidget::close);
}

} // namespace WindowBinding
