#include "foundation/Log.h"

#include "foundation/FileLogger.h"
#include "support/RecordedLog.h"
#include "support/TemporaryHome.h"
#include "support/Waiting.h"

#include <QDateTime>
#include <QRegularExpression>

#include <array>
#include <thread>

using namespace Qt::StringLiterals;

namespace {

class LogTest : public TemporaryHome
{
protected:
    LogTest() : m_fileLogger(std::make_shared<FileLogger>(path(u"logs"_s))) {}
    ~LogTest() override { Log::shutDown(); }

    void configure(Log::Level lowest = Log::Level::Verbose, bool standardError = false)
    {
        Log::configure({.fileLogger = m_fileLogger, .standardError = standardError, .lowest = lowest});
    }
    // What is on disk now, nothing flushed.
    [[nodiscard]] QString onDisk() const
    {
        return QString::fromUtf8(readFile(m_fileLogger->sortedLogFilePaths().value(0)));
    }

private:
    std::shared_ptr<FileLogger> m_fileLogger;
};

} // namespace

TEST_F(LogTest, AnErrorLineIsInTheFileBeforeTheCallReturns)
{
    configure();
    Log::error("it broke");
    EXPECT_TRUE(onDisk().contains(u"it broke"_s));
}

TEST_F(LogTest, AnErrorLineBringsTheEarlierLinesWithIt)
{
    configure();
    Log::info("before");
    Log::error("it broke");
    EXPECT_GE(onDisk().indexOf(u"before"_s), 0);
    EXPECT_LT(onDisk().indexOf(u"before"_s), onDisk().indexOf(u"it broke"_s));
}

TEST_F(LogTest, OtherLinesAreBufferedUntilFlushed)
{
    // The periodic flush may fall between the two steps of a try, hardly of five.
    bool wasBuffered = false;
    for (int attempt = 0; attempt < 5 && !wasBuffered; ++attempt) {
        configure();
        const QString line = u"attempt %1"_s.arg(attempt);
        Log::warning("{}", line);
        wasBuffered = !onDisk().contains(line);
        Log::flush();
        EXPECT_TRUE(onDisk().contains(line));
    }
    EXPECT_TRUE(wasBuffered);
}

TEST_F(LogTest, ABufferedLineReachesTheFileByItself)
{
    configure();
    Log::info("quiet times");
    EXPECT_TRUE(Waiting::until([this] { return onDisk().contains(u"quiet times"_s); }, std::chrono::seconds(20)));
}

TEST_F(LogTest, ShuttingDownWritesOutWhatIsBuffered)
{
    configure();
    Log::info("last words");
    Log::shutDown();
    EXPECT_TRUE(onDisk().contains(u"last words"_s));
}

TEST_F(LogTest, LinesBelowTheLowestLevelAreNotKept)
{
    configure(Log::Level::Info);
    EXPECT_FALSE(Log::isEnabled(Log::Level::Debug));
    EXPECT_TRUE(Log::isEnabled(Log::Level::Info));
    Log::verbose("line one");
    Log::debug("line two");
    Log::info("line three");
    Log::warning("line four");
    Log::error("line five");
    EXPECT_FALSE(onDisk().contains(u"line one"_s));
    EXPECT_FALSE(onDisk().contains(u"line two"_s));
    EXPECT_TRUE(onDisk().contains(u"line three"_s));
    EXPECT_TRUE(onDisk().contains(u"line four"_s));
    EXPECT_TRUE(onDisk().contains(u"line five"_s));
}

TEST_F(LogTest, ALineHasItsTimeLevelAndThread)
{
    configure();
    Log::verbose("a");
    Log::debug("b");
    Log::info("c");
    Log::warning("d");
    Log::error("e");
    const QStringList levels{u"trace"_s, u"debug"_s, u"info"_s, u"warning"_s, u"error"_s};
    const QStringList lines = onDisk().split(u'\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), levels.size());
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const QRegularExpression form(
            u"^\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d{3} \\[%1\\] \\[main\\] %2$"_s.arg(
                levels.at(i), QString(QChar(u'a' + static_cast<char16_t>(i)))));
        EXPECT_TRUE(form.match(lines.at(i)).hasMatch()) << qPrintable(lines.at(i));
    }
}

TEST_F(LogTest, ALineBearsTheWholeNameOfTheThreadThatWroteIt)
{
    configure();
    std::thread([] {
        Log::setThreadName("convert 883 segment 2");
        Log::error("from a worker");
    }).join();
    Log::error("from here");
    EXPECT_TRUE(onDisk().contains(u"[convert 883 segment 2] from a worker"_s));
    EXPECT_TRUE(onDisk().contains(u"[main] from here"_s));
}

TEST_F(LogTest, AQueuedLineBearsItsOwnThreadAndMomentNotThoseOfItsWriting)
{
    configure();
    const QDateTime before = QDateTime::currentDateTime();
    std::thread([] {
        Log::setThreadName("convert 883 segment 2");
        Log::info("queued");
    }).join();
    const QDateTime after = QDateTime::currentDateTime();
    EXPECT_TRUE(Waiting::until([&] { return QDateTime::currentDateTime() > after.addMSecs(20); }));
    Log::flush();
    const QString line = onDisk();
    EXPECT_TRUE(line.contains(u"[convert 883 segment 2] queued"_s));
    const QDateTime time = QDateTime::fromString(line.left(23), u"yyyy-MM-dd HH:mm:ss.zzz"_s);
    EXPECT_LE(before, time.addMSecs(1)); // written to the millisecond
    EXPECT_LE(time, after);
}

TEST_F(LogTest, LinesOfAThreadStayInOrderWhoeverWritesThemOut)
{
    configure();
    constexpr int count = 1000; // short enough for one file
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i) {
        threads.emplace_back([i] {
            for (int line = 0; line < count; ++line) {
                if (line % 50 == i)
                    Log::error("thread {} line {}", i, line);
                else
                    Log::info("thread {} line {}", i, line);
                if (line % 70 == i)
                    Log::flush();
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    Log::flush();
    std::array<int, 3> next{};
    for (const QString& line : onDisk().split(u'\n', Qt::SkipEmptyParts)) {
        const QStringList words = line.split(u' ');
        EXPECT_EQ(words.last().toInt(), next[words.at(words.size() - 3).toUInt()]++) << qPrintable(line);
    }
    EXPECT_EQ(next, (std::array{count, count, count}));
}

TEST_F(LogTest, MoreLinesThanMayWaitAreWrittenByWhoAddsThem)
{
    // The periodic flush may have just begun a new file, hardly five times.
    bool wasWritten = false;
    for (int attempt = 0; attempt < 5 && !wasWritten; ++attempt) {
        configure();
        for (int line = 0; line < 300'000; ++line)
            Log::verbose("{}", line);
        wasWritten = !onDisk().isEmpty();
        Log::flush();
        EXPECT_TRUE(onDisk().endsWith(u"] 299999\n"_s));
    }
    EXPECT_TRUE(wasWritten);
}

TEST_F(LogTest, ValuesAreKeptAsTheyStand)
{
    configure();
    Log::error("reply = {}", u"{} %s %1 \u00e9"_s);
    EXPECT_TRUE(onDisk().contains(u"reply = {} %s %1 \u00e9"_s));
}

TEST_F(LogTest, ASystemLogLineIsInTheFileAtInfoLevel)
{
    configure();
    Log::system("listing {}", 3);
    Log::flush();
    EXPECT_TRUE(onDisk().contains(u"[info] [main] listing 3"_s));
}

TEST_F(LogTest, StandardErrorIsTheUsersUnlessAskedFor)
{
    testing::internal::CaptureStderr();
    configure(Log::Level::Verbose, /*standardError=*/false);
    Log::error("kept quiet");
    configure(Log::Level::Verbose, /*standardError=*/true);
    Log::error("said aloud");
    const std::string printed = testing::internal::GetCapturedStderr();
    EXPECT_EQ(printed.find("kept quiet"), std::string::npos);
    EXPECT_NE(printed.find("said aloud"), std::string::npos);
}

TEST_F(LogTest, AfterTheEndErrorsGoToStandardErrorAndOtherLinesNowhere)
{
    configure();
    Log::shutDown();
    EXPECT_FALSE(Log::isEnabled(Log::Level::Warning));
    testing::internal::CaptureStderr();
    Log::warning("not said");
    Log::write(Log::Level::Warning, "not said either");
    Log::error("said at last");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "said at last\n");
    EXPECT_EQ(onDisk(), QString());
}

TEST_F(LogTest, ThreadsMayLogWhileTheLogIsShutDown)
{
    configure(Log::Level::Info);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([i] {
            for (int line = 0; line < 500; ++line)
                Log::info("thread {} line {}", i, line);
        });
    }
    Log::shutDown();
    for (std::thread& thread : threads)
        thread.join();
    for (const QString& line : onDisk().split(u'\n', Qt::SkipEmptyParts))
        EXPECT_TRUE(line.contains(u"[info] [main] thread "_s)) << qPrintable(line);
}
