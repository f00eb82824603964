#include "ui/log/LogSearch.h"

#include <QTextBlock>
#include <QTextDocument>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using Match = LogSearch::Match;

namespace {

// Matches of "ab": 0, 4, 10 (in "ab cAb\nxx aB\n").
class LogSearchTest : public testing::Test
{
protected:
    LogSearchTest() { document.setPlainText(u"ab cAb\nxx aB\n"_s); }

    QTextDocument document;
    LogSearch search{document};
};

} // namespace

TEST_F(LogSearchTest, MatchesAreCountedWhateverTheirCase)
{
    EXPECT_EQ(search.count(u"AB"_s), 3);
    EXPECT_EQ(search.count(u"zz"_s), 0);
    EXPECT_EQ(search.count(QString()), 0);
}

TEST_F(LogSearchTest, MatchesDoNotOverlap)
{
    document.setPlainText(u"aaaaa"_s);
    EXPECT_EQ(search.count(u"aa"_s), 2);
    EXPECT_EQ(LogSearch::matchesOf(document.begin(), u"aa"_s, 10), (QList<Match>{{0, 2}, {2, 2}}));
    EXPECT_EQ(LogSearch::matchesOf(document.begin(), u"aa"_s, 1), (QList<Match>{{0, 2}}));
    EXPECT_EQ(search.next(u"aa"_s, 2), (Match{2, 2}));
    EXPECT_EQ(search.next(u"aa"_s, 3), (Match{0, 2})) << "the same matches that are counted";
}

TEST_F(LogSearchTest, TheNextMatchIsAtOrBehindThePlaceAndGoesRound)
{
    EXPECT_EQ(search.next(u"ab"_s, 0), (Match{0, 2}));
    EXPECT_EQ(search.next(u"ab"_s, 1), (Match{4, 2}));
    EXPECT_EQ(search.next(u"ab"_s, 6), (Match{10, 2}));
    EXPECT_EQ(search.next(u"ab"_s, 12), (Match{0, 2}));
    EXPECT_EQ(search.next(u"ab"_s, 5000), (Match{0, 2}));
    EXPECT_EQ(search.next(u"zz"_s, 0), std::nullopt);
    EXPECT_EQ(search.next(QString(), 0), std::nullopt);
}

TEST_F(LogSearchTest, ThePreviousMatchIsAheadOfThePlaceAndGoesRound)
{
    EXPECT_EQ(search.previous(u"ab"_s, 13), (Match{10, 2}));
    EXPECT_EQ(search.previous(u"ab"_s, 11), (Match{4, 2}));
    EXPECT_EQ(search.previous(u"ab"_s, 4), (Match{0, 2}));
    EXPECT_EQ(search.previous(u"ab"_s, 0), (Match{10, 2}));
    EXPECT_EQ(search.previous(u"zz"_s, 5), std::nullopt);
}

TEST_F(LogSearchTest, AMatchHasItsNumber)
{
    EXPECT_EQ(search.numberOf(u"ab"_s, {0, 2}), 1);
    EXPECT_EQ(search.numberOf(u"ab"_s, {4, 2}), 2);
    EXPECT_EQ(search.numberOf(u"ab"_s, {10, 2}), 3);
    EXPECT_EQ(search.numberOf(u"ab"_s, {5, 2}), 0);
    EXPECT_EQ(search.numberOf(QString(), {0, 0}), 0);
}
