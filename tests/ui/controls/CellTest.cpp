#include "ui/controls/ImageTextCell.h"
#include "ui/controls/PlainText.h"
#include "ui/controls/ProgressCell.h"

#include <QVariant>
#include <gtest/gtest.h>

#include <limits>
#include <type_traits>

using namespace Qt::StringLiterals;

static_assert(std::is_abstract_v<Cell> || !std::is_constructible_v<Cell>);
static_assert(std::has_virtual_destructor_v<Cell>);

namespace {

ProgressCell progress(double least, double most)
{
    ProgressCell cell;
    cell.minValue = least;
    cell.maxValue = most;
    return cell;
}

} // namespace

TEST(ProgressCellTest, ANumberIsTheCurrentValueOfWhateverKindItIs)
{
    const QList<QVariant> sevens = {QVariant(7),
                                    QVariant(7U),
                                    QVariant(7LL),
                                    QVariant(7ULL),
                                    QVariant(7.0),
                                    QVariant(7.0F),
                                    QVariant::fromValue<short>(7)};
    for (const QVariant& seven : sevens) {
        ProgressCell cell;
        cell.setObjectValue(seven);
        EXPECT_EQ(cell.currentValue, 7.0) << seven.typeName();
    }
}

TEST(ProgressCellTest, AValueThatIsNotANumberLeavesNoneAndSoAnEmptyIndicator)
{
    const QList<QVariant> values = {QVariant(), QVariant(u"7"_s), QVariant(QByteArray("7")), QVariant(QVariantList{7})};
    for (const QVariant& value : values) {
        ProgressCell cell = progress(0, 10);
        cell.currentValue = 5;
        cell.setObjectValue(value);
        EXPECT_EQ(cell.currentValue, std::nullopt) << value.typeName();
        EXPECT_EQ(cell.fractionDone(), 0);
    }
}

TEST(ProgressCellTest, TheFractionDoneLiesBetweenMinimumAndMaximum)
{
    ProgressCell cell = progress(10, 30);
    cell.currentValue = 15;
    EXPECT_DOUBLE_EQ(cell.fractionDone(), 0.25);
    cell.currentValue = 30;
    EXPECT_DOUBLE_EQ(cell.fractionDone(), 1);
    cell.currentValue = 31;
    EXPECT_DOUBLE_EQ(cell.fractionDone(), 1);
    cell.currentValue = 9;
    EXPECT_DOUBLE_EQ(cell.fractionDone(), 0);
}

TEST(ProgressCellTest, NumbersThatAreNotSetReadAsZero)
{
    ProgressCell cell;
    EXPECT_EQ(cell.fractionDone(), 0);
    cell.maxValue = 4;
    cell.currentValue = 1;
    EXPECT_DOUBLE_EQ(cell.fractionDone(), 0.25);
    cell.minValue = 2;
    cell.currentValue = std::nullopt;
    EXPECT_EQ(cell.fractionDone(), 0);
}

TEST(ProgressCellTest, AMaximumOfZeroOrAValueThatIsNoNumberAtAllIsNothingDone)
{
    ProgressCell cell = progress(0, 0);
    cell.currentValue = 0;
    EXPECT_EQ(cell.fractionDone(), 0);
    cell.currentValue = 5;
    EXPECT_EQ(cell.fractionDone(), 0);
    cell = progress(0, 10);
    cell.currentValue = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(cell.fractionDone(), 0);
    cell = progress(0, std::numeric_limits<double>::infinity());
    cell.currentValue = 5;
    EXPECT_EQ(cell.fractionDone(), 0);
}

TEST(ProgressCellTest, TheIndicatorIsCentredWithItsPlaceTruncatedToWholePoints)
{
    // (31 - 16) / 2 = 7.5 and (21 - 16) / 2 = 2.5
    EXPECT_EQ(ProgressCell::indicatorRect(QRect(100, 50, 31, 21), 16), QRect(107, 52, 16, 16));
    EXPECT_EQ(ProgressCell::indicatorRect(QRect(0, 0, 40, 10), 16), QRect(15, 0, 10, 10));
    EXPECT_TRUE(ProgressCell::indicatorRect(QRect(0, 0, 0, 10), 16).isEmpty());
}

TEST(ProgressCellTest, ACopyHasAllFields)
{
    ProgressCell cell = progress(1, 9);
    cell.currentValue = 4;
    cell.isHidden = true;
    cell.isEnabled = false;
    const ProgressCell copy = cell;
    EXPECT_EQ(copy.minValue, 1.0);
    EXPECT_EQ(copy.maxValue, 9.0);
    EXPECT_EQ(copy.currentValue, 4.0);
    EXPECT_TRUE(copy.isHidden);
    EXPECT_FALSE(copy.isEnabled);
}

TEST(ImageTextCellTest, TheImageBeginsTwoRightOfWhereThePlainTitleBegins)
{
    EXPECT_EQ(ImageTextCell::imageRectForBounds(QRectF(40, 5, 16, 16), QRectF(10, 3, 200, 20)), QRectF(12, 5, 16, 16));
}

TEST(ImageTextCellTest, TheTitleMakesRoomForTheImageAndThreeMore)
{
    EXPECT_EQ(ImageTextCell::titleRectForBounds(QRectF(10, 3, 200, 20), QRectF(12, 5, 16, 16)), QRectF(29, 3, 181, 20));
}

TEST(ImageTextCellTest, TheRoomForTheImageIsOfSinglePrecision)
{
    const double width = 16.1;
    const QRectF title = ImageTextCell::titleRectForBounds(QRectF(0, 0, 100, 20), QRectF(0, 0, width, 16));
    EXPECT_EQ(title.x(), static_cast<double>(static_cast<float>(width + 3)));
    EXPECT_NE(title.x(), width + 3);
}

TEST(ImageTextCellTest, WithoutAnImageTheTitleKeepsThePlainPlace)
{
    const QRectF plain(10.5, 3, 200, 20);
    EXPECT_EQ(ImageTextCell::titleRectForBounds(plain, std::nullopt), plain);
}

TEST(ImageTextCellTest, ACopyHasItsImage)
{
    ImageTextCell cell;
    cell.title = u"Smith"_s;
    cell.image = u"TextIcon"_s;
    const ImageTextCell copy = cell;
    EXPECT_EQ(copy.image, u"TextIcon"_s);
    EXPECT_EQ(copy.title, u"Smith"_s);
    EXPECT_TRUE(copy.hasImage());
}

TEST(ImageTextCellTest, AnImageThatNobodyDrewIsNone)
{
    ImageTextCell cell;
    EXPECT_FALSE(cell.hasImage());
    cell.image = u"NoSuchIcon"_s;
    EXPECT_FALSE(cell.hasImage());
}

TEST(PlainTextTest, ATooltipShowsMarkupAsItStands)
{
    EXPECT_EQ(PlainText::toolTip(u"a plain name.wav"_s), u"a plain name.wav"_s);
    EXPECT_EQ(PlainText::toolTip(u"<b>bold</b> & more"_s),
              u"<p style=\"white-space: pre-wrap\">&lt;b&gt;bold&lt;/b&gt; &amp; more</p>"_s);
}
