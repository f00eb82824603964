#pragma once

#include <QTreeView>

// The outline of jobs and their files. Of thousands of rows that change at once most are below jobs that are collapsed:
// the plain view searches all its rows for each of them.
class JobsOutlineView : public QTreeView
{
    Q_OBJECT
public:
    using QTreeView::QTreeView;

    void dataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight, const QList<int>& roles) override;
};
