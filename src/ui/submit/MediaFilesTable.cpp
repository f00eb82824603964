#include "ui/submit/MediaFilesTable.h"

#include "ui/controls/TranscriptTextField.h"

#include <QDropEvent>
#include <QHeaderView>
#include <QKeyEvent>

namespace {

// Always a copy: the files stay where they are, whatever the other program would rather do.
void answer(QDropEvent& event)
{
    if (TranscriptTextField::fileNames(event.mimeData()).isEmpty() ||
        !event.possibleActions().testFlag(Qt::CopyAction)) {
        event.setDropAction(Qt::IgnoreAction);
        event.ignore();
        return;
    }
    event.setDropAction(Qt::CopyAction);
    event.accept();
}

} // namespace

MediaFilesTable::MediaFilesTable(QWidget* parent) : QTableView(parent)
{
    setAcceptDrops(true);
    setSelectionBehavior(SelectRows);
    setSelectionMode(ExtendedSelection);
    setEditTriggers(NoEditTriggers);
    setTextElideMode(Qt::ElideMiddle);
    setTabKeyNavigation(false);
    setShowGrid(false);
    setWordWrap(false);
    setAlternatingRowColors(true);
    setCornerButtonEnabled(false);
    verticalHeader()->hide();
    verticalHeader()->setDefaultSectionSize(verticalHeader()->minimumSectionSize());
    horizontalHeader()->setHighlightSections(false);
}

void MediaFilesTable::dragEnterEvent(QDragEnterEvent* event)
{
    answer(*event);
}

void MediaFilesTable::dragMoveEvent(QDragMoveEvent* event)
{
    answer(*event);
}

void MediaFilesTable::dragLeaveEvent(QDragLeaveEvent* event)
{
    event->accept();
}

void MediaFilesTable::dropEvent(QDropEvent* event)
{
    answer(*event);
    if (event->isAccepted())
        Q_EMIT filesDropped(TranscriptTextField::fileNames(event->mimeData()));
}

void MediaFilesTable::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace)
        Q_EMIT deletePressed();
    else
        QTableView::keyPressEvent(event);
}
