#include "demo-service/JobBook.h"

#include <gtest/gtest.h>

using namespace DemoService;
using namespace std::chrono_literals;

namespace {

const JobBook::TimePoint start{};

class JobBookTest : public testing::Test
{
protected:
    int addJob(const std::vector<Again>& again = {})
    {
        const int depoNumber = book.add(
            {{"transcriptDestinationFormat", "ASCII"}, {"originalTranscriptName", "Smith.txt"}, {"comp", "C02X"}}, 2,
            again);
        for (int number = 1; number <= 2; ++number)
            book.segment(depoNumber, number)->announced = true;
        return depoNumber;
    }

    void uploadAll(int depoNumber, JobBook::TimePoint now)
    {
        book.takeAudio(depoNumber, 1, "a", now);
        book.takeAudio(depoNumber, 2, "b", now);
        book.takeTranscript(depoNumber, "text\n", now);
    }

    std::string word(int depoNumber, JobBook::TimePoint now) { return book.job(depoNumber, now)->word; }
    std::string segmentWord(int depoNumber, std::size_t index, JobBook::TimePoint now)
    {
        return book.job(depoNumber, now)->segments.at(index).word;
    }

    JobBook book{5120, 883, 8s};
};

} // namespace

TEST_F(JobBookTest, numbersCountUp)
{
    EXPECT_EQ(addJob(), 883);
    EXPECT_EQ(addJob(), 884);
    EXPECT_EQ(book.job(884, start)->orderNumber, 5121);
    EXPECT_EQ(book.job(885, start), std::nullopt);
}

TEST_F(JobBookTest, isUploadingUntilEverythingIsThere)
{
    const int depo = addJob();
    book.takeAudio(depo, 1, "a", start);
    book.takeTranscript(depo, "text\n", start);
    EXPECT_EQ(word(depo, start + 1h), "Uploading");
    EXPECT_EQ(segmentWord(depo, 0, start + 1h), "Uploaded");
    EXPECT_EQ(segmentWord(depo, 1, start + 1h), "Uploading");
    book.takeAudio(depo, 2, "b", start + 1h);
    EXPECT_EQ(word(depo, start + 1h), "Splitting");
}

TEST_F(JobBookTest, goesThroughItsWords)
{
    const int depo = addJob();
    uploadAll(depo, start);
    EXPECT_EQ(word(depo, start + 3999ms), "Splitting");
    EXPECT_EQ(word(depo, start + 4s), "SplitDone");
    EXPECT_EQ(segmentWord(depo, 0, start + 4s), "SplitDone");
    EXPECT_EQ(word(depo, start + 6s), "Joining");
    EXPECT_EQ(book.files(depo, start + 7s), nullptr);
    EXPECT_EQ(book.job(depo, start + 7s)->segments.front().score, -1);
    EXPECT_EQ(word(depo, start + 8s), "Joined");
    ASSERT_NE(book.files(depo, start + 8s), nullptr);
    EXPECT_GE(book.job(depo, start + 8s)->segments.front().score, 90);
    book.markDelivered(depo);
    EXPECT_EQ(word(depo, start + 9s), "Done");
}

TEST_F(JobBookTest, wordsDoNotRunBackwardsWhenTheTurnaroundGrows)
{
    const int depo = addJob();
    uploadAll(depo, start);
    book.setTurnaround(1h, start + 6s);
    EXPECT_EQ(word(depo, start + 7s), "Joining");
    book.setTurnaround(0s, start + 7s);
    EXPECT_EQ(word(depo, start + 7s), "Joined");
}

TEST_F(JobBookTest, withoutTurnaroundAJobIsJoinedAtOnce)
{
    book.setTurnaround(0s, start);
    const int depo = addJob();
    uploadAll(depo, start);
    EXPECT_EQ(word(depo, start), "Joined");
}

TEST_F(JobBookTest, asksForASegmentAgainUntilItsNewAudioCame)
{
    const int depo = addJob({{2, Channels::Mono}, {7, Channels::Stereo}});
    uploadAll(depo, start);
    EXPECT_EQ(book.statusReply(std::nullopt, start + 1h), "Depo: 883 Smith.txt Splitting\n"
                                                          "Segment: 883 1 Splitting 0 -1\n"
                                                          "Segment: 883 2 Processing_Media_Mono 0 -1\n");
    book.takeAudio(depo, 1, "not that one", start + 1h);
    EXPECT_EQ(segmentWord(depo, 1, start + 1h), "Processing_Media_Mono");
    book.takeAudio(depo, 2, "again", start + 2h);
    EXPECT_EQ(segmentWord(depo, 1, start + 2h), "Splitting");
    // The turnaround starts over with the new audio.
    EXPECT_EQ(word(depo, start + 2h + 7s), "Joining");
    EXPECT_EQ(word(depo, start + 2h + 8s), "Joined");
    EXPECT_EQ(book.job(depo, start + 3h)->segments.at(1).uploads, 2);
    EXPECT_EQ(book.job(depo, start + 3h)->segments.at(1).audio, "again");
}

TEST_F(JobBookTest, canBeAskedAgainWhileItRuns)
{
    const int depo = addJob();
    EXPECT_FALSE(book.askAgain(depo, {3, Channels::Stereo}));
    EXPECT_FALSE(book.askAgain(99, {1, Channels::Stereo}));
    uploadAll(depo, start);
    EXPECT_EQ(word(depo, start + 6s), "Joining");
    EXPECT_TRUE(book.askAgain(depo, {1, Channels::Stereo}));
    EXPECT_EQ(segmentWord(depo, 0, start + 6s), "Processing_Media_Stereo");
    EXPECT_EQ(word(depo, start + 6s), "Splitting");
}

TEST_F(JobBookTest, statusLinesComeForOneMachineWhenItIsNamed)
{
    addJob();
    const int other = book.addServerJob("Far Away.txt", 1, "elsewhere", start);
    EXPECT_EQ(book.statusReply("C02X", start), "Depo: 883 Smith.txt Uploading\n"
                                               "Segment: 883 1 Uploading 0 -1\n"
                                               "Segment: 883 2 Uploading 0 -1\n");
    EXPECT_EQ(book.statusReply("elsewhere", start), "Depo: 884 Far Away.txt Splitting\n"
                                                    "Segment: 884 1 Splitting 247000 -1\n");
    EXPECT_EQ(book.statusReply("nowhere", start), "");
    EXPECT_TRUE(book.job(other, start)->serverOnly);
}

TEST_F(JobBookTest, depositionLinesComeBeforeSegmentLines)
{
    book.addServerJob("a.txt", 1, "m", start);
    book.addServerJob("b.txt", 1, "m", start);
    EXPECT_EQ(book.statusReply(std::nullopt, start), "Depo: 883 a.txt Splitting\nDepo: 884 b.txt Splitting\n"
                                                     "Segment: 883 1 Splitting 247000 -1\n"
                                                     "Segment: 884 1 Splitting 247000 -1\n");
}

TEST_F(JobBookTest, segmentsThatWereNotAnnouncedAreNotListed)
{
    const int depo = addJob();
    book.segment(depo, 2)->announced = false;
    EXPECT_EQ(book.statusReply(std::nullopt, start), "Depo: 883 Smith.txt Uploading\nSegment: 883 1 Uploading 0 -1\n");
}

TEST_F(JobBookTest, aJobCanBeForgotten)
{
    const int depo = addJob();
    EXPECT_TRUE(book.forget(depo));
    EXPECT_FALSE(book.has(depo));
    EXPECT_FALSE(book.forget(depo));
}

TEST_F(JobBookTest, aJobCanBeVoidedOrHeld)
{
    const int depo = addJob();
    EXPECT_TRUE(book.holdWord(depo, "Pondering"));
    EXPECT_EQ(word(depo, start), "Pondering");
    EXPECT_TRUE(book.holdWord(depo, ""));
    EXPECT_EQ(word(depo, start), "Uploading");
    EXPECT_TRUE(book.voidJob(depo));
    EXPECT_EQ(word(depo, start), "VOID");
    EXPECT_FALSE(book.voidJob(99));
    EXPECT_FALSE(book.holdWord(99, "x"));
}

TEST_F(JobBookTest, aDeliveredJobIsLeftAlone)
{
    const int depo = addJob();
    uploadAll(depo, start);
    book.markDelivered(depo);
    EXPECT_FALSE(book.voidJob(depo));
    EXPECT_FALSE(book.holdWord(depo, "x"));
    EXPECT_FALSE(book.askAgain(depo, {1, Channels::Mono}));
    EXPECT_FALSE(book.setDeliverables(depo, {}));
    EXPECT_EQ(word(depo, start), "Done");
}

TEST_F(JobBookTest, resultFilesCanBeGiven)
{
    const int depo = addJob();
    EXPECT_TRUE(book.setDeliverables(depo, {{"x.txt", "X"}, {"y.cms", "Y"}}));
    EXPECT_EQ(book.files(depo, start), nullptr);
    uploadAll(depo, start);
    ASSERT_NE(book.files(depo, start + 8s), nullptr);
    EXPECT_EQ(book.files(depo, start + 8s)->at(1).first, "y.cms");
    EXPECT_EQ(book.job(depo, start + 8s)->deliverables.at("x.txt"), "X");
}
