#include "foundation/NumberReading.h"

#include <QByteArray>
#include <QList>
#include <gtest/gtest.h>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

constexpr int greatest = std::numeric_limits<int>::max();
constexpr int least = std::numeric_limits<int>::min();

} // namespace

TEST(NumberReadingTest, AnIntegerIsTheLeadingDigitsOfAText)
{
    const QList<std::pair<QString, int>> cases{
        {u"5120"_s, 5120},
        {u"5120 883"_s, 5120},
        {u"  \t\n42"_s, 42},
        {u"-7abc"_s, -7},
        {u"+7"_s, 7},
        {u"- 7"_s, 0},
        {u"--7"_s, 0},
        {u"12.9"_s, 12},
        {u"007"_s, 7},
        {u"0x10"_s, 0},
        {u"abc"_s, 0},
        {QString(), 0},
        {u" "_s, 0},
        {u"2147483647"_s, greatest},
        {u"2147483648"_s, greatest},
        {u"-2147483648"_s, least},
        {u"-2147483649"_s, least},
        {u"99999999999999999999999999"_s, greatest},
        {u"-99999999999999999999999999"_s, least},
        {u"\u0661"_s, 0},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(NumberReading::intValue(text), expected) << qPrintable(text);
}

TEST(NumberReadingTest, AFractionIsReadAsFarAsItIsOne)
{
    const QList<std::pair<QString, double>> cases{
        {u"12.5"_s, 12.5},  {u" 12.5 dollars"_s, 12.5},
        {u"-.5"_s, -0.5},   {u"+1."_s, 1},
        {u"1.5.7"_s, 1.5},  {u"1e3"_s, 1000},
        {u"1E-2x"_s, 0.01}, {u"1e"_s, 1},
        {u"1e+"_s, 1},      {u"2,5"_s, 2},
        {u"."_s, 0},        {u"-"_s, 0},
        {u"nan"_s, 0},      {u"inf"_s, 0},
        {QString(), 0},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_DOUBLE_EQ(NumberReading::doubleValue(text), expected) << qPrintable(text);
        EXPECT_FLOAT_EQ(NumberReading::floatValue(text), static_cast<float>(expected)) << qPrintable(text);
    }
}

TEST(NumberReadingTest, AValueOfUnknownTypeIsReadByItsType)
{
    const QList<std::pair<QVariant, int>> cases{
        {QVariant(12), 12},
        {QVariant(12U), 12},
        {QVariant(12.9), 12},
        {QVariant(-12.9), -12},
        {QVariant(12.5F), 12},
        {QVariant(qlonglong{5000000000}), greatest},
        {QVariant(-1e300), least},
        {QVariant(std::numeric_limits<double>::quiet_NaN()), 0},
        {QVariant(true), 1},
        {QVariant(u"34 pages"_s), 34},
        {QVariant(u"2147483648"_s), greatest},
        {QVariant(), 0},
        {QVariant::fromValue(nullptr), 0},
        {QVariant(QVariantList{1, 2}), 0},
        {QVariant(QByteArray("12")), 0},
    };
    for (const auto& [value, expected] : cases)
        EXPECT_EQ(NumberReading::intValue(value), expected) << value.typeName();
}

TEST(NumberReadingTest, AFractionOfUnknownTypeKeepsItsFraction)
{
    EXPECT_DOUBLE_EQ(NumberReading::doubleValue(QVariant(1.75)), 1.75);
    EXPECT_DOUBLE_EQ(NumberReading::doubleValue(QVariant(u"1.75"_s)), 1.75);
    EXPECT_DOUBLE_EQ(NumberReading::doubleValue(QVariant(QVariantMap())), 0);
    EXPECT_FLOAT_EQ(NumberReading::floatValue(QVariant(1.75)), 1.75F);
    EXPECT_FLOAT_EQ(NumberReading::floatValue(QVariant()), 0);
}

TEST(NumberReadingTest, AMissingNumberIsZero)
{
    EXPECT_EQ(NumberReading::valueOrZero(std::optional<int>()), 0);
    EXPECT_EQ(NumberReading::valueOrZero(std::optional<int>(883)), 883);
}
