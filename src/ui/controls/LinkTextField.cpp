#include "ui/controls/LinkTextField.h"

#include "ui/controls/Hyperlink.h"
#include "ui/controls/PlainText.h"

#include <QKeyEvent>
#include <QStyleOptionFocusRect>
#include <QStylePainter>

LinkTextField::LinkTextField(QWidget* parent) : QLabel(parent)
{
    setTextFormat(Qt::RichText);
    setCursor(Qt::PointingHandCursor);
    // The label itself handles clicks and keys, so that its whole bounds are the link.
    setTextInteractionFlags(Qt::NoTextInteraction);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Preferred);
}

void LinkTextField::setLink(const QString& text, const QUrl& url)
{
    m_linkText = text;
    m_url = url;
    setAccessibleName(text);
    setToolTip(PlainText::toolTip(url.toDisplayString()));
    compose();
}

void LinkTextField::compose()
{
    const QString composed =
        m_linkText.isEmpty() ? QString() : Hyperlink::hyperlinkFromString(m_linkText, m_url, palette());
    if (composed != text())
        setText(composed);
}

void LinkTextField::activate()
{
    if (!m_linkText.isEmpty())
        Q_EMIT linkActivated(m_url.toString(QUrl::FullyEncoded));
}

void LinkTextField::changeEvent(QEvent* event)
{
    QLabel::changeEvent(event);
    // A link that is asked for in light colours is read in dark ones after the user changed the theme.
    if (event->type() == QEvent::PaletteChange)
        compose();
}

void LinkTextField::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        activate();
        event->accept();
        return;
    default:
        QLabel::keyPressEvent(event);
    }
}

void LinkTextField::mousePressEvent(QMouseEvent* event)
{
    m_isPressed = event->button() == Qt::LeftButton;
    event->setAccepted(m_isPressed);
}

void LinkTextField::mouseReleaseEvent(QMouseEvent* event)
{
    const bool isClick =
        m_isPressed && event->button() == Qt::LeftButton && rect().contains(event->position().toPoint());
    m_isPressed = false;
    if (isClick)
        activate();
}

void LinkTextField::paintEvent(QPaintEvent* event)
{
    QLabel::paintEvent(event);
    if (!hasFocus())
        return;
    QStylePainter painter(this);
    QStyleOptionFocusRect option;
    option.initFrom(this);
    option.backgroundColor = palette().color(QPalette::Window);
    painter.drawPrimitive(QStyle::PE_FrameFocusRect, option);
}
