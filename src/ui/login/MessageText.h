#pragma once

#include <QPlainTextEdit>

// A message of any length, for reading and copying: it takes the height of its lines at the width it has, from one line
// up to a few, and scrolls beyond. Plain text, whatever markup it seems to hold; words without an end are broken.
class MessageText : public QPlainTextEdit
{
    Q_OBJECT
public:
    explicit MessageText(QWidget* parent = nullptr);

    // Spoken by screen readers as it changes.
    void setMessage(const QString& message);

    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void decideOnScrolling();
    // Of the first lines, at most so many.
    [[nodiscard]] int textHeightAt(int width, int lineLimit) const;
};
