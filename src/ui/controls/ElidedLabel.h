#pragma once

#include <QFrame>

// One line of text whose middle is left out where room is short; then a tooltip tells it whole. The whole text can be
// copied from the context menu and is the accessible name. Never read as markup.
class ElidedLabel : public QFrame
{
    Q_OBJECT
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    Q_PROPERTY(Qt::TextElideMode elideMode READ elideMode WRITE setElideMode)
    Q_PROPERTY(Qt::Alignment alignment READ alignment WRITE setAlignment)
public:
    explicit ElidedLabel(QWidget* parent = nullptr);

    [[nodiscard]] QString text() const { return m_text; }
    void setText(const QString& text);
    [[nodiscard]] Qt::TextElideMode elideMode() const { return m_elideMode; }
    void setElideMode(Qt::TextElideMode mode);
    [[nodiscard]] Qt::Alignment alignment() const { return m_alignment; }
    void setAlignment(Qt::Alignment alignment);

    // What is seen.
    [[nodiscard]] QString elidedText() const;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

Q_SIGNALS:
    void textChanged(const QString& text);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    [[nodiscard]] QString singleLine() const;
    void refresh();

    QString m_text;
    Qt::TextElideMode m_elideMode = Qt::ElideMiddle;
    Qt::Alignment m_alignment = Qt::AlignLeft | Qt::AlignVCenter;
};
