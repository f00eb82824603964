#include "ui/controls/WindowBinding.h"

#include "ui/WindowController.h"

#include <QApplication>
#include <QEvent>
#include <QPointer>
#include <QScreen>
#include <QShortcut>
#include <QWidget>

#include <algorithm>

namespace {

// Tells the controller when its window is shown and hidden. The window's child.
class ShownTeller : public QObject
{
public:
    ShownTeller(WindowController& controller, QWidget& window) : QObject(&window), m_controller(&controller)
    {
        window.installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        WindowController* const controller = m_controller;
        if (controller != nullptr && (event->type() == QEvent::Show || event->type() == QEvent::Hide))
            controller->setIsShown(event->type() == QEvent::Show);
        return QObject::eventFilter(watched, event);
    }

private:
    QPointer<WindowController> m_controller;
};

void placeOverActiveWindow(QWidget& window)
{
    const QWidget* const active = QApplication::activeWindow();
    if (active == nullptr || active == &window || window.testAttribute(Qt::WA_Moved))
        return;
    const QRect free = active->screen()->availableGeometry();
    QRect place(QPoint(), window.size());
    place.moveCenter(active->geometry().center());
    place.moveLeft(std::clamp(place.left(), free.left(), std::max(free.left(), free.right() - place.width())));
    place.moveTop(std::clamp(place.top(), free.top(), std::max(free.top(), free.bottom() - place.height())));
    window.move(place.topLeft());
}

} // namespace

void WindowBinding::bind(WindowController& controller, QWidget& window)
{
    QObject::connect(&controller, &WindowController::showRequested, &window, [&window] {
        if (!window.isVisible())
            placeOverActiveWindow(window);
        window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
        window.show();
        window.raise();
        window.activateWindow();
    });
    QObject::connect(&controller, &WindowController::closeRequested, &window, &QWidget::close);
    QObject::connect(new QShortcut(QKeySequence::Close, &window), &QShortcut::activated, &window, &QWidget::close);
    new ShownTeller(controller, window);
}

void WindowBinding::unbind(WindowController& controller, QWidget& window)
{
    controller.setIsShown(false);
    controller.disconnect(&window);
    for (const QObject* const child : window.findChildren<QObject*>()) {
        child->disconnect(&window);
        child->disconnect(&controller);
    }
}
