#include "engine/StatusReply.h"

#include <gtest/gtest.h>

#include <chrono>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

using StatusReply::Deposition;
using StatusReply::Segment;
constexpr int largest = std::numeric_limits<int>::max();
constexpr int smallest = std::numeric_limits<int>::min();

struct DepositionCase
{
    const char* name;
    QString reply;
    std::vector<Deposition> records;
};

class DepositionsTest : public testing::TestWithParam<DepositionCase>
{};

TEST_P(DepositionsTest, AreReadFromAReply)
{
    EXPECT_EQ(StatusReply::depositions(GetParam().reply), GetParam().records);
}

INSTANTIATE_TEST_SUITE_P(
    Replies, DepositionsTest,
    testing::Values(
        DepositionCase{"None", u""_s, {}}, DepositionCase{"Blanks", u" \r\n\t "_s, {}},
        DepositionCase{"OtherText", u"Server is down for maintenance"_s, {}},
        DepositionCase{"One", u"Depo: 883 Smith 2 Mar.txt Splitting"_s, {{883, u"Smith 2 Mar.txt"_s, u"Splitting"_s}}},
        DepositionCase{"TwoWithCarriageReturns",
                       u"Depo: 883 a.txt Joined\r\nDepo: 884 b c.txt Done\r\n"_s,
                       {{883, u"a.txt"_s, u"Joined"_s}, {884, u"b c.txt"_s, u"Done"_s}}},
        DepositionCase{"TextAroundThem",
                       u"<html>\nHello Depo: 1 a.txt Joined\nbla bla\nDepo: 2 b.txt VOID\n</html>"_s,
                       {{1, u"a.txt"_s, u"Joined"_s}, {2, u"b.txt"_s, u"VOID"_s}}},
        DepositionCase{"AWordWithoutABlankLeavesBothTextsEmpty", u"Depo: 883 Splitting\n"_s, {{883, u""_s, u""_s}}},
        DepositionCase{
            "TheLastBlankSplits", u"Depo: 7  two  blanks.txt  VOID"_s, {{7, u"two  blanks.txt "_s, u"VOID"_s}}},
        DepositionCase{"ABlankAtTheEndLeavesNoStatus", u"Depo: 7 a.txt Joined \nx"_s, {{7, u"a.txt Joined"_s, u""_s}}},
        DepositionCase{"TabsDoNotSplit", u"Depo: 7 a.txt\tJoined"_s, {{7, u""_s, u""_s}}},
        DepositionCase{"ALineThatEndsAfterItsNumberTakesTheNextOne",
                       u"Depo: 883\nDepo: 884 b.txt Joined\nDepo: 885 c.txt Done"_s,
                       {{883, u"Depo: 884 b.txt"_s, u"Joined"_s}, {885, u"c.txt"_s, u"Done"_s}}},
        DepositionCase{"ALastLineThatEndsAfterItsNumber", u"Depo: 883\n"_s, {{883, u""_s, u""_s}}},
        DepositionCase{"WithoutANumberItIsZero", u"Depo: Smith.txt Joined"_s, {{0, u"Smith.txt"_s, u"Joined"_s}}},
        DepositionCase{"NothingAfterTheWord", u"Depo:"_s, {{0, u""_s, u""_s}}},
        DepositionCase{"NoBlankBeforeTheNumber", u"Depo:12 a.txt Joined"_s, {{12, u"a.txt"_s, u"Joined"_s}}},
        DepositionCase{"ANegativeNumber", u"Depo: -3 a.txt Joined"_s, {{-3, u"a.txt"_s, u"Joined"_s}}},
        DepositionCase{"AHugeNumberStopsAtTheEnd",
                       u"Depo: 99999999999999999999999 a.txt Joined"_s,
                       {{largest, u"a.txt"_s, u"Joined"_s}}},
        DepositionCase{"AHugeNegativeNumberStopsAtTheEnd",
                       u"Depo: -99999999999999999999999 a.txt Joined"_s,
                       {{smallest, u"a.txt"_s, u"Joined"_s}}},
        DepositionCase{"ANumberThatRunsIntoText", u"Depo: 5a.txt Joined"_s, {{5, u"a.txt"_s, u"Joined"_s}}},
        DepositionCase{"TheWordInTheMiddleOfALine",
                       u"Depo: 5 my Depo: 6 x.txt Joined"_s,
                       {{5, u"my Depo: 6 x.txt"_s, u"Joined"_s}}},
        DepositionCase{
            "ZeroBytes",
            QString(u"Depo: 5 a"_s + QChar(0) + u".txt Joined"_s + QChar(0) + u"\nDepo: 6 b VOID"_s),
            {{5, QString(u"a"_s + QChar(0) + u".txt"_s), QString(u"Joined"_s + QChar(0))}, {6, u"b"_s, u"VOID"_s}}},
        DepositionCase{"SegmentsAreSkipped",
                       u"Segment: 5 1 Joined 1 1\nDepo: 5 a b\nSegment: 5 2 x 1 1"_s,
                       {{5, u"a"_s, u"b"_s}}}),
    [](const auto& tested) { return std::string(tested.param.name); });

struct SegmentCase
{
    const char* name;
    QString reply;
    std::vector<Segment> records;
};

class SegmentsTest : public testing::TestWithParam<SegmentCase>
{};

TEST_P(SegmentsTest, AreReadFromAReply)
{
    EXPECT_EQ(StatusReply::segments(GetParam().reply), GetParam().records);
}

INSTANTIATE_TEST_SUITE_P(
    Replies, SegmentsTest,
    testing::Values(
        SegmentCase{"None", u""_s, {}}, SegmentCase{"OtherText", u"Segments are here"_s, {}},
        SegmentCase{"One", u"Segment: 883 2 Joined 247000 100"_s, {{883, 2, u"Joined"_s, 247000, 100}}},
        SegmentCase{"WithoutAScore", u"Segment: 883 2 Joined 247000\n"_s, {{883, 2, u"Joined"_s, 247000, -1}}},
        SegmentCase{"WithoutADuration", u"Segment: 883 2 Joined"_s, {{883, 2, u"Joined"_s, -1, -1}}},
        SegmentCase{"WithoutAStatus", u"Segment: 883 2"_s, {}},
        SegmentCase{"WithoutASegmentNumber", u"Segment: 883 Joined 1 1\nSegment: 1 1 x 2 3"_s, {{1, 1, u"x"_s, 2, 3}}},
        SegmentCase{"WithoutADeposition", u"Segment: Joined 1 1"_s, {}},
        SegmentCase{"ADurationThatIsNoNumberLeavesTheScoreToo", u"Segment: 1 2 x y 7"_s, {{1, 2, u"x"_s, -1, -1}}},
        SegmentCase{"TextAroundThem",
                    u"Depo: 1 a.txt Joined\nfoo Segment: 1 1 a 2 3 bar\nSegment: 1 2 b 4 5"_s,
                    {{1, 1, u"a"_s, 2, 3}, {1, 2, u"b"_s, 4, 5}}},
        SegmentCase{"LineEndsWithinARecord", u"Segment:\n1\r\n2\n\nx\n3\n4"_s, {{1, 2, u"x"_s, 3, 4}}},
        SegmentCase{
            "AShortRecordTakesTheNextOnesWord", u"Segment: 1 2\nSegment: 1 3 x 4 5"_s, {{1, 2, u"Segment:"_s, 1, 3}}},
        SegmentCase{"HugeNumbersStopAtTheEnds",
                    u"Segment: 99999999999 -99999999999 x 88888888888888888888 -88888888888888888888"_s,
                    {{largest, smallest, u"x"_s, largest, smallest}}},
        SegmentCase{"ZeroBytes",
                    QString(u"Segment: 1 2 x"_s + QChar(0) + u" 3 4"_s),
                    {{1, 2, QString(u"x"_s + QChar(0)), 3, 4}}}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST(StatusReplyTest, ARecordIsFoundBehindAnythingWhateverItsLetterCase)
{
    EXPECT_EQ(StatusReply::depositions(u"at 12:30: thedEPO: 5 a b Depo Depo:Depo: 6 c d\n: po: epo: DEPO:7 e f"_s),
              (std::vector<StatusReply::Deposition>{{5, u"a b Depo Depo:Depo: 6 c"_s, u"d"_s}, {7, u"e"_s, u"f"_s}}));
    EXPECT_EQ(StatusReply::segments(u":Segment:Segment: 1 2 Segment: 3\nsegment: xSEGMENT: 4 5 Joined 6 7:segment"_s),
              (std::vector<StatusReply::Segment>{{1, 2, u"Segment:"_s, 3, -1}, {4, 5, u"Joined"_s, 6, 7}}));
    EXPECT_TRUE(StatusReply::depositions(u"Dep: epo: o: :"_s).empty());
}

TEST(StatusReplyTest, FiftyThousandRecordsOfEachKindAreReadWithoutDelay)
{
    const auto begin = std::chrono::steady_clock::now();
    const QString reply = StatusReply::simulated(50'000, 1);
    EXPECT_EQ(StatusReply::depositions(reply).size(), 50'000U);
    EXPECT_EQ(StatusReply::segments(reply).size(), 50'000U);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(20));
}

TEST(StatusReplyTest, TheDiagnosticReplyListsAllDepositionsThenAllSegments)
{
    EXPECT_EQ(StatusReply::simulated(2, 2), u"Depo: 0 Demo 4min.txt Splitting\n"
                                            "Depo: 1 Demo 4min.txt Splitting\n"
                                            "Segment: 0 0 Joined 247000 100\n"
                                            "Segment: 0 1 Joined 247000 100\n"
                                            "Segment: 1 0 Joined 247000 100\n"
                                            "Segment: 1 1 Joined 247000 100\n"_s);
    EXPECT_EQ(StatusReply::simulated(0, 3), u""_s);
    EXPECT_EQ(StatusReply::simulated(-1, 3), u""_s);
    EXPECT_EQ(StatusReply::simulated(1, 0), u"Depo: 0 Demo 4min.txt Splitting\n"_s);
    EXPECT_EQ(StatusReply::simulated(1, -1), u"Depo: 0 Demo 4min.txt Splitting\n"_s);
}

} // namespace
