#include "ui/controls/CellDelegates.h"

#include "ui/controls/PlainText.h"
#include "ui/controls/QuillpostIcons.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

namespace {

const QStyle& styleOf(const QStyleOptionViewItem& option)
{
    return option.widget != nullptr ? *option.widget->style() : *QApplication::style();
}

QPalette::ColorGroup colorGroup(const QStyleOptionViewItem& option)
{
    if (!option.state.testFlag(QStyle::State_Enabled))
        return QPalette::Disabled;
    return option.state.testFlag(QStyle::State_Active) ? QPalette::Active : QPalette::Inactive;
}

bool isSelected(const QStyleOptionViewItem& option)
{
    return option.state.testFlag(QStyle::State_Selected);
}

// What the style draws of a place whose contents are somebody else's.
void drawInterior(QPainter* painter, QStyleOptionViewItem option)
{
    option.text.clear();
    option.icon = QIcon();
    option.features &= ~(QStyleOptionViewItem::HasDisplay | QStyleOptionViewItem::HasDecoration);
    styleOf(option).drawControl(QStyle::CE_ItemViewItem, &option, painter, option.widget);
}

// On a selected row the highlight is the ground, so what is done takes the colour of the row's text.
QPalette cellPalette(const QStyleOptionViewItem& option)
{
    QPalette palette = option.palette;
    palette.setCurrentColorGroup(colorGroup(option));
    if (isSelected(option)) {
        const QColor text = palette.color(QPalette::HighlightedText);
        palette.setColor(QPalette::Highlight, text);
        palette.setColor(QPalette::WindowText, text);
    } else {
        palette.setColor(QPalette::WindowText, palette.color(QPalette::Text));
    }
    return palette;
}

} // namespace

void CellDelegate::setUp(Cell& cell, const QModelIndex& index) const
{
    if (willDisplayCell)
        willDisplayCell(cell, index);
}

void ProgressCellDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    QStyleOptionViewItem item = option;
    initStyleOption(&item, index);
    drawInterior(painter, item);

    ProgressCell cell;
    cell.isEnabled = item.state.testFlag(QStyle::State_Enabled);
    cell.setObjectValue(index.data(Qt::DisplayRole));
    setUp(cell, index);
    painter->save();
    painter->setFont(item.font);
    cell.draw(*painter, item.rect, cell.isEnabled, cellPalette(item));
    painter->restore();
}

QSize ProgressCellDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const QSize plain = CellDelegate::sizeHint(option, index);
    const int side = option.fontMetrics.height();
    return {side * 2, qMax(plain.height(), side)};
}

ImageTextCell ImageTextCellDelegate::cellFor(const QModelIndex& index) const
{
    ImageTextCell cell;
    cell.title = index.data(Qt::DisplayRole).toString();
    setUp(cell, index);
    return cell;
}

ImageTextCellDelegate::Layout ImageTextCellDelegate::layoutOf(const ImageTextCell& cell,
                                                              const QStyleOptionViewItem& option)
{
    QStyleOptionViewItem plain = option;
    plain.text = cell.title;
    plain.icon = QIcon();
    plain.features = (plain.features | QStyleOptionViewItem::HasDisplay) & ~QStyleOptionViewItem::HasDecoration;
    const QRectF title = styleOf(option).subElementRect(QStyle::SE_ItemViewItemText, &plain, option.widget);
    // The style gives a short text just its own width; the rest of the place is the title's too.
    const QRectF wholeTitle(title.left(), title.top(), option.rect.right() + 1 - title.left(), title.height());
    if (!cell.hasImage())
        return {std::nullopt, wholeTitle};
    const int side = qMin(option.fontMetrics.height(), option.rect.height());
    const QRectF plainImage(option.rect.left(), option.rect.top() + (option.rect.height() - side) / 2, side, side);
    const QRectF image = ImageTextCell::imageRectForBounds(plainImage, wholeTitle);
    return {image, ImageTextCell::titleRectForBounds(wholeTitle, image)};
}

void ImageTextCellDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const ImageTextCell cell = cellFor(index);
    QStyleOptionViewItem item = option;
    initStyleOption(&item, index);
    if (!cell.hasImage()) {
        item.text = cell.title;
        item.icon = QIcon();
        item.features = (item.features | QStyleOptionViewItem::HasDisplay) & ~QStyleOptionViewItem::HasDecoration;
        styleOf(item).drawControl(QStyle::CE_ItemViewItem, &item, painter, item.widget);
        return;
    }
    drawInterior(painter, item);

    const Layout layout = layoutOf(cell, item);
    const bool isItemEnabled = cell.isEnabled && item.state.testFlag(QStyle::State_Enabled);
    const QIcon::Mode selectable = isSelected(item) ? QIcon::Selected : QIcon::Normal;
    painter->save();
    painter->setClipRect(item.rect, Qt::IntersectClip);
    QuillpostIcons::named(cell.image)
        .paint(painter, layout.imageRect->toRect(), Qt::AlignCenter, isItemEnabled ? selectable : QIcon::Disabled);
    // The same margin that the style leaves around the text of a plain cell.
    const int margin = styleOf(item).pixelMetric(QStyle::PM_FocusFrameHMargin, &item, item.widget) + 1;
    const QRect titleRect = layout.titleRect.toRect().adjusted(margin, 0, -margin, 0);
    painter->setFont(item.font);
    painter->setPen(
        item.palette.color(colorGroup(item), isSelected(item) ? QPalette::HighlightedText : QPalette::Text));
    painter->drawText(titleRect, static_cast<int>(Qt::AlignVCenter | Qt::AlignLeft) | Qt::TextSingleLine,
                      item.fontMetrics.elidedText(cell.title, item.textElideMode, titleRect.width()));
    painter->restore();
}

QSize ImageTextCellDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const ImageTextCell cell = cellFor(index);
    QStyleOptionViewItem item = option;
    initStyleOption(&item, index);
    item.text = cell.title;
    item.icon = QIcon();
    item.features = (item.features | QStyleOptionViewItem::HasDisplay) & ~QStyleOptionViewItem::HasDecoration;
    QSize size = styleOf(item).sizeFromContents(QStyle::CT_ItemViewItem, &item, QSize(), item.widget);
    if (const Layout layout = layoutOf(cell, item); layout.imageRect)
        size.rwidth() += qCeil(layout.imageRect->width()) + 3;
    return size;
}

void ImageTextCellDelegate::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                                                 const QModelIndex& index) const
{
    QStyleOptionViewItem item = option;
    initStyleOption(&item, index);
    editor->setGeometry(layoutOf(cellFor(index), item).titleRect.toRect());
}

bool ImageTextCellDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                                      const QModelIndex& index)
{
    if (event == nullptr || view == nullptr || event->type() != QEvent::ToolTip || !index.isValid() ||
        index.data(Qt::ToolTipRole).isValid())
        return CellDelegate::helpEvent(event, view, option, index);
    const ImageTextCell cell = cellFor(index);
    if (sizeHint(option, index).width() <= option.rect.width())
        QToolTip::hideText();
    else
        QToolTip::showText(event->globalPos(), PlainText::toolTip(cell.title), view);
    return true;
}
