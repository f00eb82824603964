#include "ui/main/JobsOutlineView.h"

void JobsOutlineView::dataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight, const QList<int>& roles)
{
    const QModelIndex job = topLeft.parent();
    if (!job.isValid() || isExpanded(job))
        QTreeView::dataChanged(topLeft, bottomRight, roles);
}
