#include "transcript/TranscriptPrefill.h"

#include "support/TemporaryHome.h"

using namespace Qt::StringLiterals;

namespace {

const QByteArray cover =
    "   1   Deposition of Jane Q. Doe\r\n   2\r\n   3   Wednesday, March 4, 2026\r\n   4   9:32 a.m.\r\n";

class TranscriptPrefillTest : public TemporaryHome
{};

TEST_F(TranscriptPrefillTest, OffersNamesAndNoonOfTheDate)
{
    const auto reading = TranscriptPrefill::read(writeFile(u"a.TXT"_s, cover));
    ASSERT_TRUE(reading);
    EXPECT_EQ(reading->firstName, u"Jane Q."_s);
    EXPECT_EQ(reading->lastName, u"Doe"_s);
    EXPECT_EQ(reading->dateString, u"04 march 2026"_s);
    EXPECT_EQ(reading->date, QDateTime(QDate(2026, 3, 4), QTime(12, 0)));
    EXPECT_FALSE(reading->isOutOfRange);
}

TEST_F(TranscriptPrefillTest, ReadsNoTypeThatIsNotParsed)
{
    for (const QString& name : {u"a.ptx"_s, u"a.doc"_s, u"a"_s})
        EXPECT_FALSE(TranscriptPrefill::read(writeFile(name, cover))) << name.toStdString();
}

TEST_F(TranscriptPrefillTest, OffersNothingOfAFileThatIsNotThereOrNoText)
{
    EXPECT_FALSE(TranscriptPrefill::read(path(u"gone.txt"_s)));
    EXPECT_FALSE(TranscriptPrefill::read(writeFile(u"a.txt"_s, QByteArray("\xff\xfe\x00\xd8\x41\x00", 6))));
}

TEST_F(TranscriptPrefillTest, ADateThatIsNoDayOfTheCalendarIsATextOnly)
{
    const auto reading =
        TranscriptPrefill::read(writeFile(u"a.txt"_s, "Deposition of J Doe\r\n\r\nFebruary 31, 2026\r\nx"));
    ASSERT_TRUE(reading);
    EXPECT_EQ(reading->dateString, u"31 february 2026"_s);
    EXPECT_FALSE(reading->date);
}

TEST_F(TranscriptPrefillTest, OffersNothingOfACorporateWitness)
{
    const auto reading = TranscriptPrefill::read(
        writeFile(u"a.txt"_s, "  30(b)(6)\r\n  DEPOSITION OF JOHN SMITH\r\n  March 4, 2026\r\n"));
    ASSERT_TRUE(reading);
    EXPECT_TRUE(reading->isOutOfRange);
    EXPECT_EQ(reading->firstName + reading->lastName + reading->dateString, QString());
    EXPECT_FALSE(reading->date);
}

} // namespace
