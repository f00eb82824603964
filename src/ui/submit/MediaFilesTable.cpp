#include "ui/submit/MediaFilesTable.h"

#include <QDropEvent>
#include <QHeaderView>
#include <QKeyEvent>

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

void MediaFilesTable::answer(QDropEvent& event) const
{
    event.setDropAction(validateDrop ? validateDrop(event.mimeData(), event.possibleActions()) : Qt::IgnoreAction);
    event.setAccepted(event.dropAction() != Qt::IgnoreAction);
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
    if (event->isAccepted() && !acceptDrop(event->mimeData()))
        event->ignore();
}

void MediaFilesTable::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace)
        Q_EMIT deletePressed();
    else
        QTableView::keyPressEvent(event);
}
