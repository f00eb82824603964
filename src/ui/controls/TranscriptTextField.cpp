#include "ui/controls/TranscriptTextField.h"

#include "ui/controls/DroppedFiles.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFocusEvent>
#include <QTimer>

bool TranscriptTextView::performDrop(QLineEdit& field, const QStringList& paths)
{
    if (paths.isEmpty())
        return false;
    field.selectAll();
    field.insert(paths.constLast());
    return true;
}

TranscriptTextField::TranscriptTextField(QWidget* parent) : QLineEdit(parent)
{
    setAcceptDrops(true);
    connect(this, &QLineEdit::textEdited, this, [this] { m_isEdited = true; });
    connect(this, &QLineEdit::returnPressed, this, &TranscriptTextField::endEdit);
}

void TranscriptTextField::answerDrag(QDragMoveEvent& event) const
{
    event.setDropAction(isReadOnly() ? Qt::IgnoreAction
                                     : DroppedFiles::action(event.mimeData(), event.possibleActions()));
    event.setAccepted(event.dropAction() != Qt::IgnoreAction);
}

void TranscriptTextField::dragEnterEvent(QDragEnterEvent* event)
{
    answerDrag(*event);
}

void TranscriptTextField::dragMoveEvent(QDragMoveEvent* event)
{
    answerDrag(*event);
}

void TranscriptTextField::dragLeaveEvent(QDragLeaveEvent* event)
{
    event->accept();
}

void TranscriptTextField::dropEvent(QDropEvent* event)
{
    const QStringList paths = DroppedFiles::localPaths(event->mimeData());
    if (isReadOnly() || paths.isEmpty()) {
        event->ignore();
        return;
    }
    event->setDropAction(Qt::CopyAction);
    event->accept();
    // In a turn of its own: what comes of it may be a modal question, and the program that the files come from waits
    // for the end of this event.
    QTimer::singleShot(0, this, [this, paths] { takeDropped(paths); });
}

void TranscriptTextField::takeDropped(const QStringList& paths)
{
    // Being edited does not end with another window coming to the front, from which the files usually come.
    if (window()->focusWidget() == this && m_fieldEditor != nullptr) {
        TranscriptTextView::performDrop(*this, paths);
        return;
    }
    setText(paths.constLast());
    m_isEdited = false;
    Q_EMIT pathEntered();
}

void TranscriptTextField::focusOutEvent(QFocusEvent* event)
{
    QLineEdit::focusOutEvent(event);
    switch (event->reason()) {
    case Qt::ActiveWindowFocusReason:
    case Qt::PopupFocusReason:
    case Qt::MenuBarFocusReason:
        return;
    default:
        endEdit();
    }
}

void TranscriptTextField::endEdit()
{
    if (!m_isEdited)
        return;
    m_isEdited = false;
    Q_EMIT pathEntered();
}
