#include "transcript/DeponentName.h"
#include "transcript/DepositionFileParser.h"

#include <gtest/gtest.h>

#include <ostream>

namespace {

struct Found
{
    int line = 0;
    QString first;
    QString last;
    bool operator==(const Found&) const = default;
    friend std::ostream& operator<<(std::ostream& out, const Found& found)
    {
        return out << found.line << " [" << found.first.toStdString() << "] [" << found.last.toStdString() << "]";
    }
};

Found find(const QStringList& lines)
{
    DepositionFileParser parser;
    const int line = parser.findDeponent(lines);
    return {.line = line, .first = parser.deponentFirstName(), .last = parser.deponentLastName()};
}

// The result for a text whose lines end in '|'.
Found find(const char16_t* text)
{
    return find(QString::fromUtf16(text).split(u'|'));
}

Found named(const char16_t* first, const char16_t* last, int line = 0)
{
    return {.line = line, .first = QString::fromUtf16(first), .last = QString::fromUtf16(last)};
}

TEST(Deponent, NothingIsFoundWithoutThePhrase)
{
    DepositionFileParser parser;
    EXPECT_EQ(parser.findDeponent({QStringLiteral("In re: Doe"), QStringLiteral("taken on May 3, 2011")}), 0);
    EXPECT_TRUE(parser.deponentFirstName().isNull());
    EXPECT_TRUE(parser.deponentLastName().isNull());
    EXPECT_EQ(parser.findDeponent({}), 0);
}

TEST(Deponent, IsOnTheFirstLineThatHoldsThePhraseInAnyLetterCase)
{
    EXPECT_EQ(find(u"x|  Videotaped DePosition OF John Smith|taken|DEPOSITION OF: JANE DOE|taken"),
              named(u"John", u"Smith", 1));
}

TEST(Deponent, PhraseIsFollowedByAColonOrASpaceElseTheLineIsPassedOver)
{
    EXPECT_EQ(find(u"DEPOSITION OF: JANE DOE"), named(u"JANE", u"DOE"));
    EXPECT_EQ(find(u"DEPOSITION OF JANE DOE"), named(u"JANE", u"DOE"));
    EXPECT_EQ(find(u"DEPOSITION OF:JANE DOE"), named(u"JANE", u"DOE"));
    EXPECT_EQ(find(u"deposition ofthe witness|Deposition of Jane Doe|taken"), named(u"Jane", u"Doe", 1));
    EXPECT_EQ(find(u"deposition of\tthe witness|Deposition of Jane Doe|taken"), named(u"Jane", u"Doe", 1));
}

TEST(Deponent, LineWithFewerThanTwoCharactersAfterThePhraseIsPassedOver)
{
    EXPECT_EQ(find(u"DEPOSITION OF |JANE DOE, taken"), Found{});
    EXPECT_EQ(find(u"DEPOSITION OF:|JANE DOE, taken"), Found{});
    EXPECT_EQ(find(u"DEPOSITION OF:X|JANE DOE, taken"), Found{});
    EXPECT_EQ(find(u"DEPOSITION OF: |JANE DOE, taken"), Found{});
    EXPECT_NE(find(u"DEPOSITION OF  |JANE DOE, taken"), Found{});
}

TEST(Deponent, PluralDoesNotHoldThePhrase)
{
    EXPECT_EQ(find(u"Depositions of Acme Corp.|DEPOSITION OF JANE DOE|taken"), named(u"JANE", u"DOE", 1));
}

TEST(Deponent, OnlyTheFirstOccurrenceOnALineIsLookedAt)
{
    EXPECT_EQ(find(u"deposition ofa, Deposition of Jane Doe|taken"), Found{});
}

TEST(Deponent, NameIsCutAtTheCommaAndInitialsAreNotSignificant)
{
    EXPECT_EQ(find(u"DEPOSITION OF JOHN A. SMITH, JR.|taken on behalf of the plaintiff"), named(u"JOHN A.", u"SMITH"));
}

TEST(Deponent, CapitalisedContinuationIsTakenForTheLastName)
{
    EXPECT_EQ(find(u"Deposition of Jane Doe|Taken by counsel"), named(u"Jane Doe", u"Taken"));
}

TEST(Deponent, MiddleNameIsKeptAndTheMarginNumberOfTheNextLineDropped)
{
    EXPECT_EQ(find(u"Deposition of: Mary Ellen Jones|2 taken on"), named(u"Mary Ellen", u"Jones"));
}

TEST(Deponent, NoWordIsAddedAfterOneThatEndsInAFullStop)
{
    EXPECT_EQ(find(u"Deposition of Jane Smith.|Taken by counsel"), named(u"Jane", u"Smith"));
}

TEST(Deponent, AllCapitalWordIsNotAddedAsALastName)
{
    EXPECT_EQ(find(u"Deposition of Jane Doe|TAKEN by counsel"), named(u"Jane", u"Doe"));
}

TEST(Deponent, JuniorInCapitalsIsAddedAndCutOffAgain)
{
    EXPECT_EQ(find(u"DEPOSITION OF ROBERT SMITH JR|taken on"), named(u"ROBERT", u"SMITH"));
}

TEST(Deponent, JuniorIsKeptAsACapitalisedWordAndDroppedFromTheLastName)
{
    EXPECT_EQ(find(u"Deposition of Robert Smith Jr.|taken on"), named(u"Robert", u"Smith"));
    EXPECT_EQ(find(u"Deposition of Robert Smith sr|taken on"), named(u"Robert", u"Smith"));
}

TEST(Deponent, TheThirdIsNotAddedAsASuffix)
{
    EXPECT_EQ(find(u"DEPOSITION OF ROBERT SMITH III|taken on"), named(u"ROBERT", u"SMITH"));
    // With a first name that is not all capitals nothing is cut, and "III" is still not added.
    EXPECT_EQ(DeponentName::candidate(QStringLiteral("Robert Smith III taken")), QStringLiteral("Robert Smith"));
    EXPECT_EQ(DeponentName::candidate(QStringLiteral("Robert Smith JR taken")), QStringLiteral("Robert Smith JR"));
}

TEST(Deponent, PhraseAtTheEndOfItsLineTakesTheNameFromTheNextLineWhoseCommasAreRemoved)
{
    EXPECT_EQ(find(u"DEPOSITION OF|4 JOHN SMITH, taken on"), named(u"JOHN", u"SMITH"));
    EXPECT_EQ(find(u"DEPOSITION OF|4 JOHN, SMITH taken on"), named(u"JOHN", u"SMITH"));
}

TEST(Deponent, EmptyNextLineIsPassedOverForTheOneAfterItAsItStands)
{
    EXPECT_EQ(find(u"DEPOSITION OF|\t |  JOHN SMITH|taken"), named(u"JOHN", u"SMITH"));
    EXPECT_EQ(find(u"DEPOSITION OF||"), Found{});
    // Only one empty line is: the second is taken for the name.
    EXPECT_EQ(find(u"x|DEPOSITION OF|||JOHN SMITH|y"), named(u"", u"", 1));
    EXPECT_EQ(find(u"DEPOSITION OF|"), Found{});
}

TEST(Deponent, LastLineOfTheFileTakesNoContinuation)
{
    EXPECT_EQ(find(u"x|DEPOSITION OF JOHN SMITH"), named(u"JOHN", u"SMITH", 1));
    EXPECT_EQ(find(u"x|DEPOSITION OF"), named(u"", u"", 1));
    // One word counts twice when nothing follows it: past the end the last word is given again.
    EXPECT_EQ(find(u"x|DEPOSITION OF SMITH"), named(u"", u"SMITH", 1));
}

TEST(Deponent, CharactersThatFileNamesCannotHoldAreRemoved)
{
    EXPECT_EQ(find(u"DEPOSITION OF J/D SMITH|taken"), named(u"JD", u"SMITH"));
    EXPECT_EQ(find(QStringList{QStringLiteral("DEPOSITION OF J\\/:*?\"<>|D SM?TH")}), named(u"JD", u"SMTH"));
}

TEST(Deponent, FirstNameEndsAtTheFirstOccurrenceOfTheLast)
{
    EXPECT_EQ(find(u"DEPOSITION OF ANNA ANN|taken"), named(u"", u"ANN"));
    EXPECT_EQ(find(u"DEPOSITION OF JO ANN ANNIE|taken"), named(u"JO", u"ANN"));
}

TEST(Deponent, CorporateWitnessOnOrAboveTheLineFailsWithNothingSet)
{
    for (const char16_t* text :
         {u"DEPOSITION OF ACME CORP 30(b)(6)|taken", u"30(b)(6)|x|DEPOSITION OF JOHN SMITH|taken",
          u"the 30(b)(6) deposition ofacme|DEPOSITION OF JOHN SMITH|taken", u"x 30(b)(6) deposition of John Smith|t"}) {
        DepositionFileParser parser;
        EXPECT_THROW((void)parser.findDeponent(QString::fromUtf16(text).split(u'|')), DeponentNameOutOfRange);
        EXPECT_TRUE(parser.deponentFirstName().isNull());
        EXPECT_TRUE(parser.deponentLastName().isNull());
    }
}

TEST(Deponent, CorporateWitnessBelowTheLineOrInOtherLetterCaseIsNone)
{
    EXPECT_EQ(find(u"DEPOSITION OF JOHN SMITH|30(b)(6)"), named(u"JOHN", u"SMITH"));
    EXPECT_EQ(find(u"30(B)(6)|DEPOSITION OF JOHN SMITH|taken"), named(u"JOHN", u"SMITH", 1));
}

// The phrase is found in the lowercase form, which may be longer than the line; its place then counts in the line.
TEST(Deponent, LetterThatGrowsInLowercaseShiftsTheNameAndNeverReachesPastTheLine)
{
    EXPECT_EQ(find(u"\u0130 DEPOSITION OF JANE DOE|taken"), named(u"JANE", u"DOE"));
    EXPECT_EQ(find(u"\u0130\u0130 DEPOSITION OF JANE DOE|taken"), named(u"ANE", u"DOE"));
    const QString grown(40, QChar(0x0130));
    EXPECT_EQ(find({grown + QStringLiteral("DEPOSITION OF JANE DOE")}), Found{});
    EXPECT_EQ(find({QStringLiteral("x"), grown + QStringLiteral("DEPOSITION OF")}), named(u"", u"", 1));
}

struct NameCase
{
    const char16_t* text;
    const char16_t* candidate;
};

TEST(DeponentCandidate, EndsWhereTheRulesSay)
{
    const NameCase cases[] = {
        // Short words that end in a full stop are not significant, five characters and more are.
        {u"Dr. John Smith taken", u"Dr. John Smith"},
        {u"Hon. John Q. Smith taken", u"Hon. John Q. Smith"},
        {u"John Smit. taken on", u"John Smit"},
        {u"Jon Smi. taken on", u"Jon Smi. taken"},
        // Two significant words, then a capitalised one, then a suffix of any letter case.
        {u"Ann Lee Fox Jr. taken", u"Ann Lee Fox Jr"},
        {u"Ann Lee Fox srta", u"Ann Lee Fox srta"},
        {u"Ann Lee 7th Floor", u"Ann Lee 7th"},
        {u"Ann Lee j taken", u"Ann Lee"},
        {u"Ann Lee \u00dfeta taken", u"Ann Lee"},
        // All capitals: cut before the first short word, or one with three lowercase letters, from the third on.
        {u"JOHN SMITH Junior taken", u"JOHN SMITH"},
        {u"J. R. SMITH taken on", u"J. R. SMITH"},
        {u"A. JAMES MORGAN taken", u"A. JAMES MORGAN"},
        {u"A. JAMES McGAHAN taken", u"A. JAMES McGAHAN"},
        {u"A. JAMES MacGAHAN taken", u"A. JAMES MacGAHAN"},
        {u"A. JAMES MORgan taken", u"A. JAMES"},
        {u"A. JAMES KIDD taken", u"A. JAMES"},
        {u"DR. WILLIAM H. HARPER taken", u"DR. WILLIAM"},
        {u"John A. KIDD taken", u"John A. KIDD"},
        {u"JOHN KIDD taken", u"JOHN KIDD"},
        // Both ends lose spaces, tabs and full stops, and every comma goes.
        {u" \t Jane, Doey. . taken", u"Jane Doey"},
        {u"Jane Doe.. taken", u"Jane Doe"},
        {u"", u""},
        {u"...", u""},
    };
    for (const NameCase& c : cases) {
        EXPECT_EQ(DeponentName::candidate(QString::fromUtf16(c.text)).toStdString(),
                  QString::fromUtf16(c.candidate).toStdString())
            << QString::fromUtf16(c.text).toStdString();
    }
}

TEST(DeponentCandidate, MarginNumbersAreStrippedByTheLopsidedCount)
{
    const NameCase cases[] = {
        {u"5 John Smith", u"John Smith"},
        {u"5 John", u"John"},
        {u"5", u""},
        {u"12 13 Smith", u""},
        {u"12 13 John Smith", u"John Smith"},
        {u"1 2 3 a b c", u"a b c"},
        {u"1 2 3 a b", u""},
        {u"John 5 Smith", u"John 5 Smith"},
        {u"0 John", u"0 John"},
        {u"00 John", u"00 John"},
        {u"007 John", u"John"},
        {u"-3 John", u"John"},
        {u"+3rd John", u"John"},
        {u"+-3 John", u"+-3 John"},
        {u"  5  John", u"John"},
        {u"4294967296 John", u"John"},
        {u"\f5 John", u"John"},
        // Characters outside ASCII have no number, whatever digits come with them.
        {u"5\u00e9 John", u"5\u00e9 John"},
        {u"\u0665 John", u"\u0665 John"},
        // Positions do not know the carriage return.
        {u"5\rx John", u"John"},
        {u"", u""},
    };
    for (const NameCase& c : cases) {
        EXPECT_EQ(DeponentName::withoutMarginNumbers(QString::fromUtf16(c.text)).toStdString(),
                  QString::fromUtf16(c.candidate).toStdString())
            << QString::fromUtf16(c.text).toStdString();
    }
}

struct SplitCase
{
    const char16_t* candidate;
    const char16_t* first;
    const char16_t* last;
};

TEST(DeponentSplit, LastNameIsTheLastPieceThatIsNoSuffix)
{
    const SplitCase cases[] = {
        {u"Jane Doe", u"Jane", u"Doe"},
        {u"Doe", u"", u"Doe"},
        {u"", u"", u""},
        {u"Robert Smith JR", u"Robert", u"Smith"},
        {u"Robert Smith Sr", u"Robert", u"Smith"},
        {u"Robert Smith III", u"Robert", u"Smith"},
        {u"Robert Smith iiird", u"Robert", u"Smith"},
        {u"Robert Smith II", u"Robert Smith", u"II"},
        {u"Jr", u"", u"Jr"},
        {u"Robert Srinivasan", u"", u"Robert"},
        {u"Robert\u00a0Smith\tIII", u"Robert", u"Smith"},
        // Consecutive white space makes an empty piece, and an empty last name is found at once.
        {u"Robert  Jr", u"", u""},
        {u"Jane ", u"", u""},
        // Line breaks are not white space between pieces, but are trimmed from the ends.
        {u"Jane Doe\nby", u"Jane", u"Doe\nby"},
        {u"Jane\r\n \r\nDoe\r\n", u"Jane", u"Doe"},
    };
    for (const SplitCase& c : cases) {
        const auto names = DeponentName::split(QString::fromUtf16(c.candidate), false);
        ASSERT_TRUE(names.has_value());
        EXPECT_EQ(names->first.toStdString(), QString::fromUtf16(c.first).toStdString());
        EXPECT_EQ(names->last.toStdString(), QString::fromUtf16(c.last).toStdString());
    }
}

TEST(DeponentSplit, FindsTheFirstOccurrenceThroughPartialOnes)
{
    const auto names = DeponentName::split(QStringLiteral("aab aaab xaaab aaab"), false);
    ASSERT_TRUE(names.has_value());
    EXPECT_EQ(names->first, QStringLiteral("aab"));
    EXPECT_EQ(names->last, QStringLiteral("aaab"));
}

TEST(DeponentSplit, CorporateWitnessHasNoNames)
{
    EXPECT_FALSE(DeponentName::split(QStringLiteral("Jane Doe"), true).has_value());
    EXPECT_FALSE(DeponentName::split(QStringLiteral("Jane Doe 30(b)(6)"), true).has_value());
    EXPECT_FALSE(DeponentName::split(QString(), true).has_value());
}

} // namespace
