#include "ui/controls/ElidedLabel.h"

#include "ui/controls/PlainText.h"

#include <QAction>
#include <QClipboard>
#include <QEvent>
#include <QGuiApplication>
#include <QPainter>

using namespace Qt::StringLiterals;

ElidedLabel::ElidedLabel(QWidget* parent) : QFrame(parent)
{
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setContextMenuPolicy(Qt::ActionsContextMenu);
    auto* copy = new QAction(tr("&Copy"), this);
    copy->setObjectName(u"copyAction"_s);
    connect(copy, &QAction::triggered, this, [this] { QGuiApplication::clipboard()->setText(m_text); });
    addAction(copy);
}

void ElidedLabel::setText(const QString& text)
{
    if (text == m_text)
        return;
    // As the name where it has none: a label's text is what it is.
    if (accessibleName().isEmpty() || accessibleName() == m_text)
        setAccessibleName(text);
    else
        setAccessibleDescription(text);
    m_text = text;
    updateGeometry();
    refresh();
    Q_EMIT textChanged(text);
}

void ElidedLabel::setElideMode(Qt::TextElideMode mode)
{
    m_elideMode = mode;
    refresh();
}

void ElidedLabel::setAlignment(Qt::Alignment alignment)
{
    m_alignment = alignment;
    refresh();
}

QString ElidedLabel::singleLine() const
{
    QString line = m_text;
    for (QChar& character : line) {
        if (character == u'\n' || character == u'\r' || character == u'\t' || character == QChar::LineSeparator)
            character = u' ';
    }
    return line;
}

QString ElidedLabel::elidedText() const
{
    return fontMetrics().elidedText(singleLine(), m_elideMode, contentsRect().width());
}

QSize ElidedLabel::sizeHint() const
{
    const QMargins margins = contentsMargins();
    return QSize(fontMetrics().horizontalAdvance(singleLine()) + 1, fontMetrics().height()).grownBy(margins);
}

QSize ElidedLabel::minimumSizeHint() const
{
    constexpr int fewLetters = 8;
    const QSize whole = sizeHint();
    return {qMin(whole.width(), fontMetrics().averageCharWidth() * fewLetters), whole.height()};
}

void ElidedLabel::refresh()
{
    setToolTip(elidedText() == m_text ? QString() : PlainText::toolTip(m_text));
    update();
}

void ElidedLabel::paintEvent(QPaintEvent* event)
{
    QFrame::paintEvent(event);
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    painter.drawText(contentsRect(), static_cast<int>(m_alignment) | Qt::TextSingleLine, elidedText());
}

void ElidedLabel::resizeEvent(QResizeEvent* event)
{
    QFrame::resizeEvent(event);
    refresh();
}

void ElidedLabel::changeEvent(QEvent* event)
{
    QFrame::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        updateGeometry();
        refresh();
    }
}
