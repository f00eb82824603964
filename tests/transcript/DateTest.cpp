#include "transcript/DepositionFileParser.h"

#include <gtest/gtest.h>

namespace {

// The date found on lines that end in '|', looked for on all but the last, or from `start` up to `end`.
std::string date(const char16_t* text, qsizetype start = 0, qsizetype end = -1)
{
    const QStringList lines = QString::fromUtf16(text).split(u'|');
    DepositionFileParser parser;
    parser.setDateString(QStringLiteral("stale"));
    parser.findDepoDate(lines, start, end < 0 ? lines.size() - 1 : end);
    return parser.dateString().isNull() ? "none" : parser.dateString().toStdString();
}

TEST(DepoDate, IsTheDayTheMonthsFullNameAndTheYear)
{
    EXPECT_EQ(date(u"taken on January 5, 2010|x"), "05 january 2010");
    EXPECT_EQ(date(u"May 3, 2011|x"), "03 may 2011");
    EXPECT_EQ(date(u"Dec. 1 2010|x"), "01 december 2010");
    EXPECT_EQ(date(u"Sept. 21, 2009|x"), "21 september 2009");
    EXPECT_EQ(date(u"OCTOBER 3rd 2012|x"), "03 october 2012");
}

TEST(DepoDate, KnowsEachMonthByNameAndByAbbreviationWithItsFullStop)
{
    const std::pair<const char16_t*, const char*> months[] = {{u"January Jan.", "january"},
                                                              {u"February Feb.", "february"},
                                                              {u"March Mar.", "march"},
                                                              {u"April Apr.", "april"},
                                                              {u"May may", "may"},
                                                              {u"June Jun.", "june"},
                                                              {u"July Jul.", "july"},
                                                              {u"August Aug.", "august"},
                                                              {u"September Sept.", "september"},
                                                              {u"October Oct.", "october"},
                                                              {u"November Nov.", "november"},
                                                              {u"December Dec.", "december"}};
    for (const auto& [words, month] : months) {
        for (const QString& word : QString::fromUtf16(words).split(u' ')) {
            const QString text = word + QStringLiteral(" 12, 1999|x");
            EXPECT_EQ(date(reinterpret_cast<const char16_t*>(text.utf16())), std::string("12 ") + month + " 1999");
        }
    }
}

TEST(DepoDate, OtherSpellingsAreNoMonths)
{
    for (const char16_t* text : {u"Jan 5 2010|x", u"sep. 5 2010|x", u"sept 5 2010|x", u"January, 5 2010|x",
                                 u"May. 5 2010|x", u"Januarys 5 2010|x", u"(January 5 2010)|x", u"ma 5 2010|x"})
        EXPECT_EQ(date(text), "none");
}

TEST(DepoDate, IsNotCheckedAgainstACalendar)
{
    EXPECT_EQ(date(u"may 45 12|x"), "45 may 12");
    EXPECT_EQ(date(u"May -5 -2010|x"), "-5 may -2010");
    EXPECT_EQ(date(u"May 99999999999 7|x"), "2147483647 may 7");
}

TEST(DepoDate, MonthWithoutADayTakesTheYearForBothWhereItEndsTheLine)
{
    EXPECT_EQ(date(u"December 2010|x"), "2010 december 2010");
    EXPECT_EQ(date(u"December 2010 |x"), "none");
}

TEST(DepoDate, AnyLineWithAMonthWordEndsTheSearch)
{
    EXPECT_EQ(date(u"MAY IT PLEASE THE COURT|May 3, 2011|x"), "none");
    EXPECT_EQ(date(u"may|May 3, 2011|x"), "none");
}

TEST(DepoDate, LaterMonthOnTheLineReplacesAnEarlierOne)
{
    EXPECT_EQ(date(u"May 3, 2011 and June 4, 2012 x|x"), "04 june 2012");
    EXPECT_EQ(date(u"May 3, 2011 or may|x"), "none");
}

TEST(DepoDate, MonthAtTheEndOfItsLineNeverHasADay)
{
    EXPECT_EQ(date(u"3 January|2010, x|x"), "none");
}

// A form feed is a word that is not counted, so the month here is the last word by the count and yet has a day after
// it.
TEST(DepoDate, MonthThatIsTheLastByTheCountTakesItsYearFromBelow)
{
    EXPECT_EQ(date(u"\f May 5|2010, x|x"), "05 may 2010");
    EXPECT_EQ(date(u"\f May 5|in 2010, x|x"), "05 may 2010");
    EXPECT_EQ(date(u"\f May 5||2010, x|x"), "05 may 2010");
    EXPECT_EQ(date(u"\f May 5| |2010, x|x"), "none");
    EXPECT_EQ(date(u"\f May 5|2010 x|x"), "none");
    EXPECT_EQ(date(u"\f May 5|0, 2010, x|x"), "05 may 2010");
    EXPECT_EQ(date(u"\f May 5|on the 2010, x|x"), "none");
    EXPECT_EQ(date(u"\f May 5|", 0, 5), "none");
    EXPECT_EQ(date(u"\f May 5||", 0, 5), "none");
}

TEST(DepoDate, EndLineIsNotLookedAt)
{
    EXPECT_EQ(date(u"x|May 3, 2011"), "none");
    EXPECT_EQ(date(u"x|May 3, 2011|June 4, 2012|x", 0, 1), "03 may 2011");
}

TEST(DepoDate, IsLookedForInTheRangeFirstAndThenEverywhere)
{
    EXPECT_EQ(date(u"May 3, 2011|x|June 4, 2012|x|x", 1, 3), "04 june 2012");
    EXPECT_EQ(date(u"May 3, 2011|x|x|x", 1, 2), "03 may 2011");
    EXPECT_EQ(date(u"May 3, 2011|x|in June|x|x", 1, 3), "03 may 2011");
    EXPECT_EQ(date(u"you may go|x|x|June 4, 2012|x", 1, 2), "none");
}

TEST(DepoDate, NothingIsFoundOnOneLineOrOnNone)
{
    EXPECT_EQ(date(u"May 3, 2011", 0, 0), "none");
    DepositionFileParser parser;
    parser.findDepoDate({}, 0, 0);
    EXPECT_TRUE(parser.dateString().isNull());
}

TEST(DepoDate, RangeBeyondTheLinesIsHarmless)
{
    EXPECT_EQ(date(u"x|May 3, 2011", 0, 99), "03 may 2011");
    EXPECT_EQ(date(u"x|May 3, 2011|x", -7, 99), "03 may 2011");
    EXPECT_EQ(date(u"May 3, 2011|x", 50, 60), "03 may 2011");
}

} // namespace
