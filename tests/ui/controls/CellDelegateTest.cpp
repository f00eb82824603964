#include "ui/controls/CellDelegates.h"

#include <QApplication>
#include <QHelpEvent>
#include <QLineEdit>
#include <QPainter>
#include <QStandardItemModel>
#include <QToolTip>
#include <QTreeView>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

// One row of one column, and a picture of what a delegate draws of it.
class CellDelegateTest : public testing::Test
{
protected:
    CellDelegateTest()
    {
        view.setModel(&model);
        model.appendRow(new QStandardItem);
    }

    [[nodiscard]] QModelIndex index() const { return model.index(0, 0); }
    void setValue(const QVariant& value) { model.setData(index(), value, Qt::DisplayRole); }

    [[nodiscard]] QStyleOptionViewItem option(QStyle::State more = {}) const
    {
        QStyleOptionViewItem option;
        option.initFrom(&view);
        option.widget = &view;
        option.rect = QRect(0, 0, 160, 24);
        option.state = QStyle::State_Enabled | QStyle::State_Active | more;
        option.showDecorationSelected = true;
        option.decorationSize = QSize(16, 16);
        option.textElideMode = Qt::ElideRight;
        return option;
    }

    [[nodiscard]] QImage drawn(const QStyledItemDelegate& delegate, const QStyleOptionViewItem& option) const
    {
        constexpr int ratio = 2;
        QImage image(option.rect.size() * ratio, QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(ratio);
        image.fill(view.palette().color(QPalette::Base));
        QPainter painter(&image);
        delegate.paint(&painter, option, index());
        return image;
    }
    [[nodiscard]] QImage plainlyDrawn(const QStyleOptionViewItem& option) const
    {
        const QStyledItemDelegate plain;
        return drawn(plain, option);
    }

    QStandardItemModel model;
    QTreeView view;
};

class ProgressCellDelegateTest : public CellDelegateTest
{
protected:
    ProgressCellDelegateTest()
    {
        delegate.willDisplayCell = [this](Cell& cell, const QModelIndex&) {
            auto& progress = dynamic_cast<ProgressCell&>(cell);
            progress.minValue = 0;
            progress.maxValue = 10;
            progress.isHidden = isHidden;
            progress.isEnabled = isEnabled;
        };
    }

    ProgressCellDelegate delegate;
    bool isEnabled = true;
    bool isHidden = false;
};

class ImageTextCellDelegateTest : public CellDelegateTest
{
protected:
    ImageTextCellDelegateTest()
    {
        delegate.willDisplayCell = [this](Cell& cell, const QModelIndex&) {
            dynamic_cast<ImageTextCell&>(cell).image = image;
        };
    }

    ImageTextCellDelegate delegate;
    QString image;
};

} // namespace

TEST_F(ProgressCellDelegateTest, DrawsMoreAsMoreIsDone)
{
    setValue(0);
    const QImage nothing = drawn(delegate, option());
    setValue(5);
    const QImage half = drawn(delegate, option());
    setValue(10);
    const QImage all = drawn(delegate, option());
    EXPECT_NE(nothing, half);
    EXPECT_NE(half, all);
}

TEST_F(ProgressCellDelegateTest, AValueThatIsNotANumberIsDrawnAsAnEmptyIndicator)
{
    setValue(0);
    const QImage empty = drawn(delegate, option());
    setValue(u"5"_s);
    EXPECT_EQ(drawn(delegate, option()), empty);
    setValue(QVariant());
    EXPECT_EQ(drawn(delegate, option()), empty);
    EXPECT_NE(empty, plainlyDrawn(option())) << "the ring is there";
}

TEST_F(ProgressCellDelegateTest, ADisabledCellDrawsOnlyTheInterior)
{
    setValue(5);
    isEnabled = false;
    const QImage disabled = drawn(delegate, option(QStyle::State_Selected));
    setValue(QVariant());
    EXPECT_EQ(disabled, plainlyDrawn(option(QStyle::State_Selected)));
    EXPECT_NE(disabled, drawn(delegate, option())) << "the interior shows the selection";
}

TEST_F(ProgressCellDelegateTest, AHiddenCellThatIsEnabledIsDrawn)
{
    setValue(5);
    const QImage shown = drawn(delegate, option());
    isHidden = true;
    EXPECT_EQ(drawn(delegate, option()), shown);
}

TEST_F(ProgressCellDelegateTest, TheIndicatorCanBeSeenOnTheSelectionToo)
{
    setValue(10);
    isEnabled = false;
    const QImage ground = drawn(delegate, option(QStyle::State_Selected));
    isEnabled = true;
    const QImage full = drawn(delegate, option(QStyle::State_Selected));
    const QPoint middle(full.width() / 2 + 3, full.height() / 2 + 3);
    EXPECT_NE(full.pixelColor(middle), ground.pixelColor(middle));
}

TEST_F(ImageTextCellDelegateTest, WithoutAnImageThePlaceIsDrawnExactlyAsAPlainCell)
{
    setValue(u"Smith, John"_s);
    const QImage plain = plainlyDrawn(option());
    EXPECT_EQ(drawn(delegate, option()), plain);
    image = u"TextIcon"_s;
    EXPECT_NE(drawn(delegate, option()), plain);
}

TEST_F(ImageTextCellDelegateTest, ThePlaceOfTheTitleIsThePlainOneWithoutAnImageAndNarrowerWithOne)
{
    ImageTextCell cell;
    cell.title = u"Smith"_s;
    const auto plain = ImageTextCellDelegate::layoutOf(cell, option());
    EXPECT_FALSE(plain.imageRect);
    cell.image = u"SoundIcon"_s;
    const auto withImage = ImageTextCellDelegate::layoutOf(cell, option());
    ASSERT_TRUE(withImage.imageRect);
    EXPECT_DOUBLE_EQ(withImage.imageRect->x(), plain.titleRect.x() + 2);
    EXPECT_DOUBLE_EQ(withImage.titleRect.x(), plain.titleRect.x() + withImage.imageRect->width() + 3);
    EXPECT_DOUBLE_EQ(withImage.titleRect.right(), plain.titleRect.right());
    EXPECT_GE(withImage.titleRect.x(), withImage.imageRect->right());
}

TEST_F(ImageTextCellDelegateTest, TheControllersTitleIsShownInsteadOfTheValue)
{
    setValue(u"Smith"_s);
    delegate.willDisplayCell = [](Cell& cell, const QModelIndex& at) {
        auto& text = dynamic_cast<ImageTextCell&>(cell);
        EXPECT_EQ(text.title, at.data().toString());
        text.title = u"(Rush) "_s + text.title;
    };
    const QImage rush = drawn(delegate, option());
    EXPECT_NE(rush, plainlyDrawn(option()));
    setValue(u"(Rush) Smith"_s);
    EXPECT_EQ(rush, plainlyDrawn(option()));
}

TEST_F(ImageTextCellDelegateTest, AnEditorNeverCoversTheIcon)
{
    setValue(u"Smith"_s);
    image = u"TextIcon"_s;
    QLineEdit editor;
    delegate.updateEditorGeometry(&editor, option(), index());
    ImageTextCell cell;
    cell.title = u"Smith"_s;
    cell.image = image;
    const auto layout = ImageTextCellDelegate::layoutOf(cell, option());
    EXPECT_EQ(editor.geometry(), layout.titleRect.toRect());
    EXPECT_GE(editor.geometry().left(), layout.imageRect->toRect().right());
}

TEST_F(ImageTextCellDelegateTest, AColumnMakesRoomForTheIcon)
{
    setValue(u"Smith"_s);
    const int plain = delegate.sizeHint(option(), index()).width();
    image = u"TextIcon"_s;
    EXPECT_GT(delegate.sizeHint(option(), index()).width(), plain + 3);
}

TEST_F(ImageTextCellDelegateTest, ALongTitleIsElidedAndToldWholeInATooltip)
{
    image = u"TextIcon"_s;
    const QString name = u"A very long name of a deponent that no column of that width could ever hold"_s;
    QHelpEvent event(QEvent::ToolTip, QPoint(5, 5), QPoint(5, 5));
    setValue(name);
    const QImage whole = drawn(delegate, option());
    EXPECT_TRUE(delegate.helpEvent(&event, &view, option(), index()));
    EXPECT_EQ(QToolTip::text(), name);
    setValue(name + u" and more"_s);
    EXPECT_EQ(drawn(delegate, option()), whole) << "what does not fit is left out";
    QToolTip::hideText();
}

TEST_F(ImageTextCellDelegateTest, AShortTitleNeedsNoTooltip)
{
    setValue(u"Smith"_s);
    QToolTip::showText(QPoint(), u"of another row"_s, &view);
    QHelpEvent event(QEvent::ToolTip, QPoint(5, 5), QPoint(5, 5));
    EXPECT_TRUE(delegate.helpEvent(&event, &view, option(), index()));
    EXPECT_NE(QToolTip::text(), u"Smith"_s);
}
