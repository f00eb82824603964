#include "foundation/Text.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(TextTest, ValuesAreInsertedAsTheyStand)
{
    EXPECT_EQ(Text::format("{}_{}", u"%1 {} %s {0}"_s, u"%2"_s), u"%1 {} %s {0}_%2"_s);
    EXPECT_EQ(Text::format("({})", u"a&b='\"\\"_s), u"(a&b='\"\\)"_s);
}

TEST(TextTest, LettersOutsideAsciiSurvive)
{
    EXPECT_EQ(Text::format("<{}>", u"Müller 東京 \U0001F399"_s), u"<Müller 東京 \U0001F399>"_s);
}

TEST(TextTest, EmptyTextsLeaveTheirPlaceEmpty)
{
    EXPECT_EQ(Text::format("a{}b{}c", QString(), u""_s), u"abc"_s);
}

TEST(TextTest, NumbersAreWrittenWithoutTheLocale)
{
    EXPECT_EQ(Text::format("{} {} {}", -1234567, 18446744073709551615ULL, 1.5), u"-1234567 18446744073709551615 1.5"_s);
}

TEST(TextTest, WidthsApplyToTexts)
{
    EXPECT_EQ(Text::format("[{:<5}][{:.2}]", u"ab"_s, u"abcdef"_s), u"[ab   ][ab]"_s);
}
