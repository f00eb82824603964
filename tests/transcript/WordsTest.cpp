#include "transcript/DepositionFileParser.h"

#include <gtest/gtest.h>

namespace {

constexpr auto getNumWords = &DepositionFileParser::getNumWords;
constexpr auto getWord = &DepositionFileParser::getWord;
constexpr auto getWordPos = &DepositionFileParser::getWordPos;

TEST(Words, AreCountedBetweenSpacesTabsAndLineEnds)
{
    EXPECT_EQ(getNumWords(QStringLiteral("")), 0);
    EXPECT_EQ(getNumWords(QStringLiteral(" \t\r\n")), 0);
    EXPECT_EQ(getNumWords(QStringLiteral("one")), 1);
    EXPECT_EQ(getNumWords(QStringLiteral(" one\ttwo\nthree\rfour ")), 4);
}

TEST(Words, FormFeedNeverStartsACountedWordButDoesNotEndOneEither)
{
    EXPECT_EQ(getNumWords(QStringLiteral("\f")), 0);
    EXPECT_EQ(getNumWords(QStringLiteral("\f one")), 1);
    EXPECT_EQ(getNumWords(QStringLiteral("\fone")), 1);
    EXPECT_EQ(getNumWords(QStringLiteral("one\ftwo")), 1);
    EXPECT_EQ(getNumWords(QStringLiteral("one \f two")), 2);
}

TEST(Words, OtherControlCharactersAreWordCharacters)
{
    EXPECT_EQ(getNumWords(QStringLiteral("\u0001 \u001f \v")), 3);
    EXPECT_EQ(getWord(QStringLiteral("a \u0001\v b"), 1), QStringLiteral("\u0001\v"));
    EXPECT_EQ(getWordPos(QStringLiteral("a \u0001 b"), 1), 2);
}

TEST(Words, AreGivenByNumberFromZero)
{
    const QString text = QStringLiteral("  one\ttwo \r\n three");
    EXPECT_EQ(getWord(text, 0), QStringLiteral("one"));
    EXPECT_EQ(getWord(text, 1), QStringLiteral("two"));
    EXPECT_EQ(getWord(text, 2), QStringLiteral("three"));
}

TEST(Words, PastTheEndTheLastWordIsGivenWhereNoSeparatorEndsTheText)
{
    EXPECT_EQ(getWord(QStringLiteral("one two"), 2), QStringLiteral("two"));
    EXPECT_EQ(getWord(QStringLiteral("one two"), 99), QStringLiteral("two"));
}

TEST(Words, PastTheEndNothingIsGivenWhereASeparatorEndsTheText)
{
    EXPECT_EQ(getWord(QStringLiteral("one two "), 2), QString());
    EXPECT_EQ(getWord(QStringLiteral("one two\r"), 2), QString());
    EXPECT_EQ(getWord(QStringLiteral("one two "), 1), QStringLiteral("two"));
    EXPECT_EQ(getWord(QStringLiteral(""), 0), QString());
    EXPECT_EQ(getWord(QStringLiteral("   "), 0), QString());
}

TEST(Words, FormFeedIsAWordWhenAskedForByNumberThoughItIsNotCounted)
{
    EXPECT_EQ(getWord(QStringLiteral("\f one"), 0), QStringLiteral("\f"));
    EXPECT_EQ(getWord(QStringLiteral("\f one"), 1), QStringLiteral("one"));
    EXPECT_EQ(getWordPos(QStringLiteral("\f one two"), 1), 2);
}

TEST(Words, NegativeNumberGivesTheFirstWordAndNoPosition)
{
    EXPECT_EQ(getWord(QStringLiteral("one two"), -1), QStringLiteral("one"));
    EXPECT_EQ(getWordPos(QStringLiteral("one two"), -1), 7);
}

TEST(Words, PositionIsTheIndexOfTheFirstCharacter)
{
    EXPECT_EQ(getWordPos(QStringLiteral("  one\t\ttwo three"), 0), 2);
    EXPECT_EQ(getWordPos(QStringLiteral("  one\t\ttwo three"), 1), 7);
    EXPECT_EQ(getWordPos(QStringLiteral("  one\t\ttwo\nthree"), 2), 11);
}

TEST(Words, PositionOfAWordThatIsNotThereIsTheLength)
{
    EXPECT_EQ(getWordPos(QStringLiteral("one two "), 2), 8);
    EXPECT_EQ(getWordPos(QStringLiteral(""), 0), 0);
    EXPECT_EQ(getWordPos(QStringLiteral("   "), 0), 3);
}

// The carriage return separates words when they are counted, and is an ordinary character when they are looked up.
TEST(Words, PositionDisagreesWithTheCountAtALoneCarriageReturn)
{
    const QString text = QStringLiteral("one\rtwo three four");
    EXPECT_EQ(getNumWords(text), 4);
    EXPECT_EQ(getWord(text, 1), QStringLiteral("two"));
    EXPECT_EQ(getWordPos(text, 1), 8);
    EXPECT_EQ(getWordPos(text, 2), 14);
    EXPECT_EQ(getWordPos(text, 3), text.size());
    EXPECT_EQ(getWordPos(QStringLiteral("\r one"), 0), 0);
}

TEST(Words, HalvesOfSurrogatePairsAreWordCharacters)
{
    const QString text = QString(QChar(0xd83d)) + QStringLiteral(" \U0001F600 b");
    EXPECT_EQ(getNumWords(text), 3);
    EXPECT_EQ(getWord(text, 1), QStringLiteral("\U0001F600"));
    EXPECT_EQ(getWordPos(text, 2), 5);
}

TEST(Words, ArrayHoldsThePiecesBetweenHorizontalWhiteSpace)
{
    EXPECT_EQ(DepositionFileParser::wordArray(QStringLiteral(" one\t two\u00a0three\u2003four  five\r\nsix ")),
              (QStringList{QStringLiteral("one"), QStringLiteral("two"), QStringLiteral("three"),
                           QStringLiteral("four"), QStringLiteral("five\r\nsix")}));
    EXPECT_TRUE(DepositionFileParser::wordArray(QStringLiteral(" \t ")).isEmpty());
    EXPECT_TRUE(DepositionFileParser::wordArray(QString()).isEmpty());
}

} // namespace
