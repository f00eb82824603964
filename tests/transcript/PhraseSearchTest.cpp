#include "transcript/PhraseSearch.h"

#include "transcript/DepositionFileParser.h"

#include <gtest/gtest.h>

#include <random>

using namespace Qt::StringLiterals;

namespace {

const PhraseSearch mark(u"30(b)(6)", PhraseSearch::Letters::AsWritten);
const PhraseSearch phrase(u"deposition of", PhraseSearch::Letters::Lowercase);

TEST(PhraseSearch, PhraseIsFoundAtBothEndsAndInTheMiddle)
{
    for (const QString& text :
         {u"30(b)(6)"_s, u"30(b)(6) witness"_s, u"the 30(b)(6)"_s, u"330(b)(6))"_s, u"30(b)30(b)(6)(6)"_s})
        EXPECT_TRUE(mark.isIn(text)) << qPrintable(text);
    for (const QString& text : {u""_s, u"3"_s, u"30(b)(6"_s, u"0(b)(6)"_s, u"30(B)(6)"_s, u"30(b) (6)"_s})
        EXPECT_FALSE(mark.isIn(text)) << qPrintable(text);
}

TEST(PhraseSearch, LetterCaseCountsOnlyWhereTold)
{
    EXPECT_TRUE(phrase.isIn(u"Videotaped DePoSiTiOn OF"));
    EXPECT_FALSE(phrase.isIn(u"deposition@of"));
    EXPECT_FALSE(phrase.isIn(u"deposition\u00a0of"));
}

TEST(PhraseSearch, FindsWhatASearchAtEveryCharacterFinds)
{
    std::mt19937 random(3);
    int found = 0;
    for (int round = 0; round < 20'000; ++round) {
        QString text;
        while (text.size() < 40) {
            const QString whole = u"deposition ofDEPOSITION OF\u0130\u212a"_s;
            const auto begin = static_cast<qsizetype>(random() % 14);
            text += whole.mid(begin + (random() % 2 != 0 ? 13 : 0), static_cast<qsizetype>(random() % 15));
        }
        EXPECT_EQ(phrase.isIn(text), text.toLower().contains(u"deposition of")) << qPrintable(text);
        found += phrase.isIn(text) ? 1 : 0;
    }
    EXPECT_GT(found, 100);
    EXPECT_LT(found, 19'900);
}

// What the search, and the comparison with the months' names, rely on.
TEST(PhraseSearch, NoOtherLetterLowercasesToThoseOfThePhraseOrOfAMonth)
{
    for (char32_t c = 0x80; c <= 0x10ffff; ++c) {
        const QString lower = QString::fromUcs4(&c, 1).toLower();
        if (c == 0x130) {
            EXPECT_EQ(lower, u"i\u0307"_s); // of which the dot is no part of any
            continue;
        }
        for (const QChar letter : lower)
            EXPECT_FALSE(u" abcdefghijlmnopqrstuvwxyz."_s.contains(letter)) << static_cast<std::uint32_t>(c);
    }
}

TEST(PhraseSearch, AMonthOfOtherLettersIsNone)
{
    for (const QString& month : {u"apr\u0130l"_s, u"augu\u017ft"_s, u"\uff2day"_s, u"\u0405ept."_s}) {
        DepositionFileParser parser;
        parser.findDepoDate({month + u" 5, 2010"_s, QString()}, 0, 1);
        EXPECT_TRUE(parser.dateString().isNull()) << qPrintable(month);
    }
}

TEST(PhraseSearch, EveryMonthIsReadWhateverItsCase)
{
    for (const char16_t* month :
         {u"january", u"JAN.",    u"February", u"fEb.",     u"march", u"Mar.",     u"april", u"APR.",
          u"May",     u"june",    u"Jun.",     u"July",     u"jul.",  u"AUGUST",   u"aug.",  u"September",
          u"sept.",   u"October", u"oct.",     u"november", u"NOV.",  u"December", u"dec."}) {
        DepositionFileParser parser;
        parser.findDepoDate({QString::fromUtf16(month) + u" 5, 2010"_s, QString()}, 0, 1);
        EXPECT_TRUE(parser.dateString().startsWith(u"05 "_s + QString::fromUtf16(month).toLower().first(3)))
            << qPrintable(parser.dateString());
    }
}

} // namespace
