#pragma once

#include <QObject>

class QWidget;

// Keeps a wheel that turns on its way over a form from changing what was entered there. A list or number takes it while
// it has the keyboard; text that was typed into an editable list is never replaced by it.
class WheelGuard : public QObject
{
    Q_OBJECT
public:
    // Every list, number and date that the window has now. The guard is the window's.
    static void guard(QWidget& window);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    using QObject::QObject;
};
