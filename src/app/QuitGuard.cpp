#include "app/QuitGuard.h"

#include "app/QuillpostAppDelegate.h"

#include <QApplication>
#include <QEvent>
#include <QTimer>
#include <QWidget>

#include <algorithm>

namespace {

// Dialogs and menus come and go over a window; they are none of the program's own.
bool isProgramWindow(const QWidget& widget)
{
    return widget.isWindow() && widget.windowType() == Qt::Window;
}

bool isAnyWindowVisible(const QWidget* except = nullptr)
{
    const auto widgets = QApplication::topLevelWidgets();
    return std::any_of(widgets.begin(), widgets.end(), [except](const QWidget* widget) {
        return widget != except && isProgramWindow(*widget) && widget->isVisible();
    });
}

} // namespace

QuitGuard::QuitGuard(QuillpostAppDelegate& delegate, QWidget& mainWindow)
    : m_delegate(delegate), m_mainWindow(mainWindow)
{
    QApplication::setQuitOnLastWindowClosed(false);
    qApp->installEventFilter(this);
}

bool QuitGuard::isLastWindow(const QWidget& window) const
{
    return &window == &m_mainWindow || !isAnyWindowVisible(&window);
}

bool QuitGuard::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::Close || m_delegate.isTerminating())
        return false;
    auto* const window = qobject_cast<QWidget*>(watched);
    if (!window || !isProgramWindow(*window) || !window->isVisible())
        return false;
    if (isLastWindow(*window) && QuillpostAppDelegate::applicationShouldTerminateAfterLastWindowClosed() &&
        m_delegate.applicationShouldTerminate() == QuillpostAppDelegate::TerminateReply::TerminateCancel) {
        event->ignore();
        return true;
    }
    // In a turn of its own: at a log-in another window takes this one's place.
    QTimer::singleShot(0, this, [this, isMain = window == &m_mainWindow] {
        if (!m_delegate.isTerminating() && (isMain || !isAnyWindowVisible()))
            m_delegate.quitWithoutAsking();
    });
    return false;
}
