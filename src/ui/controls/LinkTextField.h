#pragma once

#include <QLabel>
#include <QUrl>

// A label that is a link. The pointer is a pointing hand over its whole bounds; a click, Return or Space activates it
// (linkActivated, with the URL's absolute string).
class LinkTextField : public QLabel
{
    Q_OBJECT
public:
    explicit LinkTextField(QWidget* parent = nullptr);

    // The text is taken as it stands, without markup.
    void setLink(const QString& text, const QUrl& url);
    [[nodiscard]] QUrl url() const { return m_url; }

protected:
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void compose();
    void activate();

    QString m_linkText;
    QUrl m_url;
    bool m_isPressed = false;
};
