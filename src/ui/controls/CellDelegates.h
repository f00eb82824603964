#pragma once

#include "ui/controls/ImageTextCell.h"
#include "ui/controls/ProgressCell.h"

#include <QStyledItemDelegate>

#include <functional>

// What a list shows in one column: the interior of the style (selection, hover, alternate rows), then a cell that the
// window's controller sets up for each row.
class CellDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    // Called before a cell is drawn or measured, so it must be quick. Its captures outlive the delegate.
    std::function<void(Cell& cell, const QModelIndex& index)> willDisplayCell;

protected:
    void setUp(Cell& cell, const QModelIndex& index) const;
};

// The cell's value is the index's display role.
class ProgressCellDelegate : public CellDelegate
{
    Q_OBJECT
public:
    using CellDelegate::CellDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

// The cell's title is the index's display role until willDisplayCell gives another. Long titles are elided and told
// whole in a tooltip.
class ImageTextCellDelegate : public CellDelegate
{
    Q_OBJECT
public:
    using CellDelegate::CellDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    // Beside the icon, so that the editor never covers it.
    void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const override;
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;

    // Where the parts go in a place that the style would give a plain cell.
    struct Layout
    {
        std::optional<QRectF> imageRect;
        QRectF titleRect;
    };
    [[nodiscard]] static Layout layoutOf(const ImageTextCell& cell, const QStyleOptionViewItem& option);

private:
    [[nodiscard]] ImageTextCell cellFor(const QModelIndex& index) const;
};
