#include "foundation/TextScanner.h"

#include <QList>
#include <gtest/gtest.h>

#include <limits>

using namespace Qt::StringLiterals;

TEST(TextScannerTest, AWordIsMatchedAfterWhiteSpaceWithoutRegardToLetterCase)
{
    TextScanner scanner(u" \r\n\toK: 12345\r\n"_s);
    EXPECT_TRUE(scanner.scanString(u"OK: "));
    EXPECT_EQ(scanner.rest(), u"12345\r\n"_s);
}

TEST(TextScannerTest, AWordIsMatchedByItsLettersWhenToldSo)
{
    TextScanner scanner(u"depo: 1"_s, Qt::CaseSensitive);
    EXPECT_FALSE(scanner.scanString(u"Depo:"));
    EXPECT_TRUE(scanner.scanString(u"depo:"));
}

TEST(TextScannerTest, AFailureLeavesThePlaceWhereItWas)
{
    TextScanner scanner(u"  word"_s);
    EXPECT_FALSE(scanner.scanString(u"other"));
    EXPECT_EQ(scanner.scanInt(), std::nullopt);
    EXPECT_EQ(scanner.location(), 0);
    EXPECT_EQ(scanner.rest(), u"  word"_s);
}

TEST(TextScannerTest, Integers)
{
    constexpr int greatest = std::numeric_limits<int>::max();
    constexpr int least = std::numeric_limits<int>::min();
    const QList<std::pair<QString, std::optional<int>>> cases{
        {u" 883 x"_s, 883},
        {u"-1"_s, -1},
        {u"+5"_s, 5},
        {u"247000,"_s, 247000},
        {u"-"_s, std::nullopt},
        {u"- 1"_s, std::nullopt},
        {u"x1"_s, std::nullopt},
        {QString(), std::nullopt},
        {u"2147483647"_s, greatest},
        {u"2147483648"_s, greatest},
        {u"-2147483648"_s, least},
        {u"-99999999999999999999"_s, least},
        {u"99999999999999999999"_s, greatest},
    };
    for (const auto& [text, expected] : cases) {
        TextScanner scanner(text);
        EXPECT_EQ(scanner.scanInt(), expected) << qPrintable(text);
    }
}

TEST(TextScannerTest, AnIntegerEndsAtTheFirstOtherCharacter)
{
    TextScanner scanner(u"12ab"_s);
    EXPECT_EQ(scanner.scanInt(), 12);
    EXPECT_EQ(scanner.rest(), u"ab"_s);
}

TEST(TextScannerTest, TheTextUpToAWord)
{
    TextScanner scanner(u" noise SEGMENT: 1"_s);
    EXPECT_EQ(scanner.scanUpToString(u"Segment:"), u"noise "_s);
    EXPECT_EQ(scanner.scanUpToString(u"Segment:"), std::nullopt);
    EXPECT_TRUE(scanner.scanString(u"Segment:"));
    EXPECT_EQ(scanner.scanUpToString(u"Segment:"), u"1"_s);
    EXPECT_EQ(scanner.scanUpToString(u"Segment:"), std::nullopt);
    EXPECT_TRUE(scanner.isAtEnd());
}

TEST(TextScannerTest, WordsEndAtWhiteSpaceAndLineEnds)
{
    TextScanner scanner(u"one\ttwo\r\nthree\u2028four"_s);
    EXPECT_EQ(scanner.scanWord(), u"one"_s);
    EXPECT_EQ(scanner.scanWord(), u"two"_s);
    EXPECT_EQ(scanner.scanWord(), u"three"_s);
    EXPECT_EQ(scanner.scanWord(), u"four"_s);
    EXPECT_EQ(scanner.scanWord(), std::nullopt);
}

TEST(TextScannerTest, TheRestOfALineIsWithoutItsEnd)
{
    TextScanner scanner(u"883 Smith 2 Mar.txt Splitting\r\nnext line\n\n"_s);
    EXPECT_EQ(scanner.scanInt(), 883);
    EXPECT_EQ(scanner.scanLine(), u"Smith 2 Mar.txt Splitting"_s);
    EXPECT_EQ(scanner.scanLine(), u"next line"_s);
    EXPECT_EQ(scanner.scanLine(), std::nullopt);
}

TEST(TextScannerTest, ALineThatEndsHereTakesTheFollowingOne)
{
    TextScanner scanner(u"883\r\nSegment: 1"_s);
    EXPECT_EQ(scanner.scanInt(), 883);
    EXPECT_EQ(scanner.scanLine(), u"Segment: 1"_s);
}

TEST(TextScannerTest, OnlyWhiteSpaceLeftIsTheEnd)
{
    TextScanner scanner(u"a \r\n"_s);
    EXPECT_FALSE(scanner.isAtEnd());
    EXPECT_TRUE(scanner.scanWord());
    EXPECT_TRUE(scanner.isAtEnd());
    EXPECT_EQ(scanner.rest(), u" \r\n"_s);
}

TEST(TextScannerTest, APlaceOutsideTheTextIsItsNearestEnd)
{
    TextScanner scanner(u"abc"_s);
    scanner.setLocation(99);
    EXPECT_EQ(scanner.location(), 3);
    scanner.setLocation(-1);
    EXPECT_EQ(scanner.location(), 0);
    scanner.setLocation(1);
    EXPECT_EQ(scanner.rest(), u"bc"_s);
}
