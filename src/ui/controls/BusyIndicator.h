#pragma once

#include <QBasicTimer>
#include <QWidget>

// A small turning ring: something is being waited for. It turns only while it is running and can be seen; when it is
// not running its place stays, empty.
class BusyIndicator : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(bool running READ isRunning WRITE setRunning NOTIFY runningChanged)
public:
    explicit BusyIndicator(QWidget* parent = nullptr);

    [[nodiscard]] bool isRunning() const { return m_isRunning; }
    void setRunning(bool running);
    // The timer is on.
    [[nodiscard]] bool isTurning() const { return m_timer.isActive(); }
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

Q_SIGNALS:
    void runningChanged(bool running);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void updateTimer();

    QBasicTimer m_timer;
    bool m_isRunning = false;
    int m_step = 0;
};
