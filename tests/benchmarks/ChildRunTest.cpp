#include "harness/ChildRun.h"

#include "support/TemporaryHome.h"

using namespace Qt::StringLiterals;

class BenchmarkChildRunTest : public TemporaryHome
{};

TEST_F(BenchmarkChildRunTest, GivesWhatAProgramWroteAndWhatItTook)
{
    const auto run = Bench::runChild({u"sh"_s, u"-c"_s, u"cat; pwd; sleep 0.05; echo '{\"seconds\": 2}'"_s},
                                     {.folder = path(QString()), .input = "given\n"});
    EXPECT_TRUE(run.output.startsWith("given\n"));
    EXPECT_TRUE(run.output.contains(path(QString()).toUtf8().chopped(path(QString()).endsWith(u'/') ? 1 : 0)));
    EXPECT_GE(run.seconds, 0.05);
    EXPECT_GT(run.peakMegabytes, 0);
    EXPECT_EQ(run.report().value(u"seconds"_s).toDouble(), 2);
}

TEST_F(BenchmarkChildRunTest, CountsTheTimeOfTheProgramsThatItRuns)
{
    const auto run = Bench::runChild({u"sh"_s, u"-c"_s, u"sh -c 'i=0; while [ $i -lt 20000 ]; do i=$((i+1)); done'"_s});
    EXPECT_GT(run.cpuSeconds, 0.001);
}

// A figure of work that failed is none.
TEST_F(BenchmarkChildRunTest, AProgramThatFailsEndsEverythingWithItsWords)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT((void)Bench::runChild({u"sh"_s, u"-c"_s, u"echo no disk >&2; exit 3"_s}),
                testing::ExitedWithCode(EXIT_FAILURE), "no disk");
    EXPECT_EXIT((void)Bench::runChild({u"quillpost-no-such-program"_s}), testing::ExitedWithCode(EXIT_FAILURE),
                "ended");
}
