#pragma once

#include <QScrollArea>

// A part of a form that scrolls up and down where the window is too low for it, and is never too narrow for what it
// holds. Where there is room enough it looks like no scroll area at all.
class VerticalScrollArea : public QScrollArea
{
    Q_OBJECT
public:
    explicit VerticalScrollArea(QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    [[nodiscard]] int barWidth() const;
};
