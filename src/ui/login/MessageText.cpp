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
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
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
    decideOnScrolling();
    updateGeometry();
    QAccessibleEvent event(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&event);
}

int MessageText::textHeightAt(int width, int lineLimit) const
{
    int lines = 0;
    double height = 0;
    for (QTextBlock block = document()->firstBlock(); block.isValid() && lines < lineLimit; block = block.next()) {
        QTextLayout layout(block.text(), font());
        QTextOption option;
        option.setWrapMode(wordWrapMode());
        layout.setTextOption(option);
        layout.beginLayout();
        for (QTextLine line = layout.createLine(); line.isValid() && lines < lineLimit; line = layout.createLine()) {
            line.setLeadingIncluded(true);
            line.setLineWidth(width);
            height += line.height();
            ++lines;
        }
        layout.endLayout();
    }
    return qCeil(qMax(height, QFontMetricsF(font()).lineSpacing()));
}

int MessageText::heightForWidth(int width) const
{
    const QMargins margins = contentsMargins();
    // A line that ends exactly at the edge counts as not quite seen, hence the one pixel more.
    return 1 + textHeightAt(width - margins.left() - margins.right(), mostLines) + margins.top() + margins.bottom();
}

// A scroll bar that came while the window still grows would take width from the text, and so keep itself needed.
void MessageText::decideOnScrolling()
{
    const int width = contentsRect().width();
    const bool isWholeSeen = textHeightAt(width, mostLines + 1) == textHeightAt(width, mostLines);
    setVerticalScrollBarPolicy(isWholeSeen ? Qt::ScrollBarAlwaysOff : Qt::ScrollBarAsNeeded);
}

void MessageText::resizeEvent(QResizeEvent* event)
{
    QPlainTextEdit::resizeEvent(event);
    decideOnScrolling();
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
