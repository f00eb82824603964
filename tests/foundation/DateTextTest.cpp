#include "foundation/DateText.h"

#include <QList>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QDateTime at(int year, int month, int day, int hour = 12, int minute = 0)
{
    return {QDate(year, month, day), QTime(hour, minute)};
}

struct Reading
{
    QString text;
    QDateTime expected;
};

} // namespace

TEST(DateTextTest, FormatsWithTheLettersOfTheUnicodePatterns)
{
    EXPECT_EQ(DateText::format(at(2011, 3, 4, 9, 5), u"yyyy-MM-dd HH:mm:ss"_s), u"2011-03-04 09:05:00"_s);
    EXPECT_EQ(DateText::format(at(2011, 3, 4), u"MMddyy"_s), u"030411"_s);
}

TEST(DateTextTest, UpperCaseYearIsTheYearOfTheWeek)
{
    EXPECT_EQ(DateText::format(at(2024, 12, 30), u"YYYY-MM-dd"_s), u"2025-12-30"_s);
    EXPECT_EQ(DateText::format(at(2024, 12, 30), u"yyyy-MM-dd"_s), u"2024-12-30"_s);
    EXPECT_EQ(DateText::format(at(2024, 6, 3), u"YYYY"_s), u"2024"_s);
}

TEST(DateTextTest, ReadsDatesAsPeopleWriteThem)
{
    const QList<Reading> readings{
        {u"2011-03-04"_s, at(2011, 3, 4)},
        {u"2011/3/4"_s, at(2011, 3, 4)},
        {u"20110304"_s, at(2011, 3, 4)},
        {u"03/04/2011"_s, at(2011, 3, 4)},
        {u"3-4-11"_s, at(2011, 3, 4)},
        {u"3/4/70"_s, at(1970, 3, 4)},
        {u"3/4/69"_s, at(2069, 3, 4)},
        {u"4 march 2011"_s, at(2011, 3, 4)},
        {u"4th of March, 2011"_s, at(2011, 3, 4)},
        {u"March 4, 2011"_s, at(2011, 3, 4)},
        {u"March 4th, 2011"_s, at(2011, 3, 4)},
        {u"Mar. 4 2011"_s, at(2011, 3, 4)},
        {u"Sept 4 2011"_s, at(2011, 9, 4)},
        {u"Friday, March 4, 2011"_s, at(2011, 3, 4)},
        {u"  2011-03-04\n"_s, at(2011, 3, 4)},
    };
    for (const Reading& reading : readings) {
        const auto date = DateText::readLeniently(reading.text);
        ASSERT_TRUE(date.has_value()) << qPrintable(reading.text);
        EXPECT_EQ(*date, reading.expected) << qPrintable(reading.text);
    }
}

TEST(DateTextTest, ReadsTheTimeAfterTheDate)
{
    const QList<Reading> readings{
        {u"2011-03-04 09:30"_s, at(2011, 3, 4, 9, 30)},          {u"2011-03-04T21:30:00"_s, at(2011, 3, 4, 21, 30)},
        {u"March 4, 2011 at 9:30 PM"_s, at(2011, 3, 4, 21, 30)}, {u"March 4, 2011 12:15 am"_s, at(2011, 3, 4, 0, 15)},
        {u"March 4, 2011 12:15 pm"_s, at(2011, 3, 4, 12, 15)},
    };
    for (const Reading& reading : readings)
        EXPECT_EQ(DateText::readLeniently(reading.text), reading.expected) << qPrintable(reading.text);
}

TEST(DateTextTest, NoonIsTheTimeWhereNoneOrAnImpossibleOneIsGiven)
{
    EXPECT_EQ(DateText::readLeniently(u"2011-03-04"_s), at(2011, 3, 4, 12, 0));
    EXPECT_EQ(DateText::readLeniently(u"2011-03-04 27:99"_s), at(2011, 3, 4, 12, 0));
}

TEST(DateTextTest, TextsWithoutARealDateAreUnreadable)
{
    for (const QString& text : {QString(), u"soon"_s, u"2011-02-30"_s, u"13/45/2011"_s, u"4 marble 2011"_s,
                                u"4 ma 2011"_s, u"March 2011"_s, u"883"_s})
        EXPECT_EQ(DateText::readLeniently(text), std::nullopt) << qPrintable(text);
}
