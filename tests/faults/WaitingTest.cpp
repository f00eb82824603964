// A service that takes its time, and a clock that is set while a program waits.

#include "CliTest.h"
#include "EngineTest.h"

#include <QDate>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

using SilenceTest = ServiceEngineTest;

TEST_F(SilenceTest, AnAnswerAfterThirtySecondsIsWaitedForAndIsNoError)
{
    constexpr auto silence = 30s;
    service.addOverride("test_custupload2.php", {.where = ".mp3[", .delay = silence, .times = 1});
    model().setStatusCheckTimeInterval(1);
    model().setInstructionsCheckTimeInterval(1);
    const auto job = realJob({u"a.wav"_s});
    model().addJobsObject(job);
    QElapsedTimer since;
    since.start();
    model().startJobProcessing();
    EXPECT_TRUE(Waiting::until([&] { return job->status() == JobStatusCompleted; }, silence + 60s))
        << "the job is at " << job->status();
    EXPECT_GE(std::chrono::milliseconds(since.elapsed()), silence);
    EXPECT_EQ(errorTexts(), QStringList());
    EXPECT_TRUE(engine->stops.empty());
    EXPECT_FALSE(model().canRetryJob(job));
    expectNoRefusals();
}

// The command line, with a system clock that the test sets.
class ClockTest : public CliTest
{
protected:
    static constexpr std::int64_t day = 86400;

    ClockTest() : m_clock(path(u"clock"_s))
    {
        EXPECT_TRUE(m_clock.open(QIODevice::ReadWrite));
        setClock(0);
        environment[u"LD_PRELOAD"_s] = QStringLiteral(CLOCK_SHIM);
        environment[u"SHIFTED_CLOCK"_s] = m_clock.fileName();
        environment[u"ASAN_OPTIONS"_s] += u":verify_asan_link_order=0"_s;
    }

    void setClock(std::int64_t shift)
    {
        m_clock.seek(0);
        m_clock.write(reinterpret_cast<const char*>(&shift), sizeof shift);
        EXPECT_TRUE(m_clock.flush());
    }

    // The log has a line of that day.
    [[nodiscard]] bool hasLogged(const QDate& date) const
    {
        for (QDirIterator logs(path(QString()), {u"*.log"_s}, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
             logs.hasNext();)
            if (readFile(logs.next()).contains(date.toString(Qt::ISODate).toUtf8()))
                return true;
        return false;
    }

private:
    QFile m_clock;
};

TEST_F(ClockTest, AJobComesToItsEndThoughTheClockIsSetForwardAndBackByDays)
{
    const QDate today = QDate::currentDate();
    service.addOverride("jobdetails.php", {.delay = 300ms, .times = 1});
    service.addOverride("test_custupload2.php", {.delay = 300ms, .times = 1});
    ChildProgram& program = start(order({recording(u"a.wav"_s), recording(u"b.wav"_s)}));
    ASSERT_TRUE(Waiting::until([&] { return !service.requests().empty(); }, 30s)) << text(program.standardError());
    setClock(2 * day);
    ASSERT_TRUE(Waiting::until([&] { return !service.jobs().empty(); }, 30s));
    setClock(-3 * day);
    const auto hasUploads = [&] {
        const auto requests = service.requests();
        return std::any_of(requests.begin(), requests.end(),
                           [](const auto& request) { return request.endpoint == "test_custupload2.php"; });
    };
    ASSERT_TRUE(Waiting::until(hasUploads, 30s));
    setClock(4 * day);
    waitForEnd(program);
    EXPECT_EQ(program.exitCode(), 0) << text(program.standardError());
    EXPECT_EQ(text(program.standardError()), "");
    ASSERT_EQ(service.jobs().size(), 1U);
    EXPECT_TRUE(service.jobs().front().delivered);
    for (const int shift : {2, -3, 4})
        EXPECT_TRUE(hasLogged(today.addDays(shift))) << "the clock was not set by " << shift << " days";
}

} // namespace
