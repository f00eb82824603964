#pragma once

#include <QTableView>

#include <functional>

class QMimeData;

// The list of recordings: takes drops of files, as copies, and the keys that delete. What becomes of either is the
// controller's.
class MediaFilesTable : public QTableView
{
    Q_OBJECT
public:
    explicit MediaFilesTable(QWidget* parent = nullptr);

    // The controller's answers: how a drag would be taken, and whether a drop was.
    std::function<Qt::DropAction(const QMimeData*, Qt::DropActions)> validateDrop;
    std::function<bool(const QMimeData*)> acceptDrop;

Q_SIGNALS:
    void deletePressed();

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void answer(QDropEvent& event) const;
};
