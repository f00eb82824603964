#include "ui/login/MessageText.h"

#include <QAccessible>
#include <QTextBlock>
#include <QTextLayout>
#include <QtMath>

namespace {

constexpr int mostLines = 6;
constexpr int preferredCharacters = 30;

} // namespace

MessageText::MessageText(QWidget* parent) : QPlainTextEdit(parent)
{
    setReadOnly(true);
    setTabChangesFocus(true);
    setUndoRedoEnabled(false);
    setFrameShape(QFrame::NoFrame);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    document()->setDocumentMargin(0);
    // It looks like a label, on the window's own ground.
    viewport()->setAutoFillBackground(false);
    setBackgroundRole(QPalette::NoRole);
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void MessageText::setMessage(const QString& message)
{
    if (message == toPlainText())
        return;
    setPlainText(message);
    // Without a message there is nothing to stop at on the way through the window.
    setFocusPolicy(message.isEmpty() ? Qt::NoFocus : Qt::StrongFocus);
    updateGeometry();
    QAccessibleEvent event(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&event);
}

int MessageText::lineCountAt(int width) const
{
    int lines = 0;
    for (QTextBlock block = document()->firstBlock(); block.isValid() && lines < mostLines; block = block.next()) {
        QTextLayout layout(block.text(), font());
        QTextOption option;
        option.setWrapMode(wordWrapMode());
        layout.setTextOption(option);
        layout.beginLayout();
        for (QTextLine line = layout.createLine(); line.isValid() && lines < mostLines; line = layout.createLine()) {
            line.setLineWidth(width);
            ++lines;
        }
        layout.endLayout();
    }
    return qBound(1, lines, mostLines);
}

int MessageText::heightForWidth(int width) const
{
    const QMargins margins = contentsMargins();
    const int lines = lineCountAt(width - margins.left() - margins.right());
    return lines * qCeil(QFontMetricsF(font()).lineSpacing()) + margins.top() + margins.bottom();
}

QSize MessageText::sizeHint() const
{
    const int width = fontMetrics().averageCharWidth() * preferredCharacters;
    return {width, heightForWidth(width)};
}

QSize MessageText::minimumSizeHint() const
{
    return {fontMetrics().averageCharWidth() * preferredCharacters / 2, heightForWidth(width())};
}
