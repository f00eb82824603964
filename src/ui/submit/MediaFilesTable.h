#pragma once

#include <QTableView>

// The list of recordings: takes drops of files, as copies, and the keys that delete. What becomes of either is the
// controller's.
class MediaFilesTable : public QTableView
{
    Q_OBJECT
public:
    explicit MediaFilesTable(QWidget* parent = nullptr);

Q_SIGNALS:
    void filesDropped(const QStringList& paths);
    void deletePressed();

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};
