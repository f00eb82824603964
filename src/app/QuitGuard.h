#pragma once

#include <QObject>

class QuillpostAppDelegate;
class QWidget;

// Closing windows, seen from the whole program: closing the last one, or the main window, whose helpers then go with
// it, quits, after the user was asked where jobs are being worked on. Installed on the application. Main thread.
class QuitGuard : public QObject
{
    Q_OBJECT
public:
    QuitGuard(QuillpostAppDelegate& delegate, QWidget& mainWindow);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    [[nodiscard]] bool isLastWindow(const QWidget& window) const;

    QuillpostAppDelegate& m_delegate;
    QWidget& m_mainWindow;
};
