#include "foundation/Log.h"

#include "foundation/FileLogger.h"
#include "foundation/Secrets.h"

#include <spdlog/details/null_mutex.h>
#include <spdlog/logger.h>
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/base_sink.h>
#include <spdlog/sinks/stdout_sinks.h>
#include <spdlog/sinks/syslog_sink.h>

#include <atomic>
#include <condition_variable>
#include <cstdio>
#include <functional>
#include <mutex>
#include <sys/prctl.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

spdlog::level::level_enum spdlogLevel(Log::Level level)
{
    switch (level) {
    case Log::Level::Verbose:
        return spdlog::level::trace;
    case Log::Level::Debug:
        return spdlog::level::debug;
    case Log::Level::Info:
        return spdlog::level::info;
    case Log::Level::Warning:
        return spdlog::level::warn;
    case Log::Level::Error:
        return spdlog::level::err;
    }
    return spdlog::level::info;
}

thread_local std::string threadName;

struct Line
{
    spdlog::log_clock::time_point time;
    Log::Level level;
    std::string_view threadName;
    std::string_view text;
};

// Lines that wait to be written. All their characters lie together: a thread that frees thousands of texts which
// another one is making holds that one up.
class Lines
{
public:
    [[nodiscard]] std::size_t count() const { return m_heads.size(); }
    void append(const Line& line)
    {
        m_heads.push_back({line.time, line.level, line.threadName.size(), line.text.size()});
        m_characters.append(line.threadName).append(line.text);
    }
    template <typename Function>
    void forEach(const Function& function) const
    {
        std::string_view rest = m_characters;
        for (const Head& head : m_heads) {
            function(Line{head.time, head.level, rest.substr(0, head.nameLength),
                          rest.substr(head.nameLength, head.textLength)});
            rest.remove_prefix(head.nameLength + head.textLength);
        }
    }

private:
    struct Head
    {
        spdlog::log_clock::time_point time;
        Log::Level level;
        std::size_t nameLength;
        std::size_t textLength;
    };
    std::vector<Head> m_heads;
    std::string m_characters;
};

// The line that this thread is writing.
thread_local const Line* currentLine = nullptr;

// %N: the name of the thread that the line is from.
class ThreadNameFlag : public spdlog::custom_flag_formatter
{
public:
    void format(const spdlog::details::log_msg&, const std::tm&, spdlog::memory_buf_t& out) override
    {
        const std::string_view name = currentLine == nullptr || currentLine->threadName.empty()
                                          ? "main"
                                          : std::string_view(currentLine->threadName);
        out.append(name.data(), name.data() + name.size());
    }
    std::unique_ptr<custom_flag_formatter> clone() const override { return std::make_unique<ThreadNameFlag>(); }
};

std::unique_ptr<spdlog::formatter> lineFormatter()
{
    auto formatter = std::make_unique<spdlog::pattern_formatter>();
    formatter->add_flag<ThreadNameFlag>('N').set_pattern("%Y-%m-%d %H:%M:%S.%e [%l] [%N] %v");
    return formatter;
}

// Hands finished lines to the file logger, which keeps the file to its size.
class FileLoggerSink : public spdlog::sinks::base_sink<std::mutex>
{
public:
    explicit FileLoggerSink(std::shared_ptr<FileLogger> fileLogger) : m_fileLogger(std::move(fileLogger)) {}

protected:
    void sink_it_(const spdlog::details::log_msg& message) override
    {
        spdlog::memory_buf_t line;
        base_sink::formatter_->format(message, line);
        m_fileLogger->append(std::string_view(line.data(), line.size()));
    }
    void flush_() override { m_fileLogger->flush(); }

private:
    std::shared_ptr<FileLogger> m_fileLogger;
};

// Calls back several times a second, on a thread of its own.
class Periodically
{
public:
    explicit Periodically(std::function<void()> work)
        : m_thread([this, done = std::move(work)] {
              prctl(PR_SET_NAME, "log flush");
              std::unique_lock lock(m_mutex);
              while (!m_wake.wait_for(lock, std::chrono::milliseconds(250), [this] { return m_isEnding; }))
                  done();
          })
    {}
    ~Periodically()
    {
        {
            const std::scoped_lock lock(m_mutex);
            m_isEnding = true;
        }
        m_wake.notify_one();
        m_thread.join();
    }
    Periodically(const Periodically&) = delete;
    Periodically& operator=(const Periodically&) = delete;

private:
    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_isEnding = false; // guarded by m_mutex
    std::thread m_thread;
};

// So many may wait; who adds another one then helps to write them.
constexpr std::size_t longestQueue = 250'000;

struct State
{
    std::mutex mutex;                       // guards the two below; held for moments
    std::shared_ptr<spdlog::logger> logger; // null before configure() and after shutDown()
    Lines queue;

    std::mutex writing; // held while lines are written, so that they stay in order; taken before `mutex`

    std::unique_ptr<Periodically> periodicFlush; // of configure() and shutDown() alone
};

State& state()
{
    static State* const theState = new State; // Outlives every thread, whatever the order of the end.
    return *theState;
}

std::atomic<int> lowestLevel{spdlog::level::err};

// With `writing` held.
void writeTo(spdlog::logger& logger, const Line& line)
{
    // A service that answers with what it was sent must not bring the password into the log.
    const std::string safe = Secrets::masked(line.text);
    currentLine = &line;
    logger.log(line.time, spdlog::source_loc(), spdlogLevel(line.level),
               spdlog::string_view_t(safe.data(), safe.size()));
    currentLine = nullptr;
}

// What is queued, then `last`, which is an error. False without a logger.
bool writeOut(const Line* last = nullptr, bool isEnd = false)
{
    const std::scoped_lock writing(state().writing);
    Lines lines;
    std::shared_ptr<spdlog::logger> logger;
    {
        const std::scoped_lock lock(state().mutex);
        std::swap(lines, state().queue);
        logger = state().logger;
        if (isEnd)
            state().logger.reset();
    }
    if (!logger)
        return false;
    lines.forEach([&](const Line& line) { writeTo(*logger, line); });
    if (last != nullptr)
        writeTo(*logger, *last); // The logger flushes it.
    else
        logger->flush();
    return true;
}

} // namespace

void Log::configure(const Options& options)
{
    shutDown();
    std::vector<spdlog::sink_ptr> sinks;
    if (options.fileLogger)
        sinks.push_back(std::make_shared<FileLoggerSink>(options.fileLogger));
    std::vector<spdlog::sink_ptr> systemSinks;
    if (options.standardError)
        systemSinks.push_back(std::make_shared<spdlog::sinks::stderr_sink_mt>());
    if (options.systemLog && access("/dev/log", W_OK) == 0) {
        auto sink = std::make_shared<spdlog::sinks::syslog_sink_mt>("Quillpost", LOG_PID, LOG_USER, false);
        sink->set_level(spdlog::level::warn);
        systemSinks.push_back(std::move(sink));
    }
    sinks.insert(sinks.end(), systemSinks.begin(), systemSinks.end());

    auto logger = std::make_shared<spdlog::logger>("Quillpost", sinks.begin(), sinks.end());
    logger->set_formatter(lineFormatter());
    logger->set_level(spdlogLevel(options.lowest));
    logger->flush_on(spdlog::level::err);

    {
        const std::scoped_lock lock(state().mutex);
        state().logger = std::move(logger);
    }
    state().periodicFlush = std::make_unique<Periodically>([] { writeOut(); });
    lowestLevel = spdlogLevel(options.lowest);
}

void Log::shutDown()
{
    lowestLevel = spdlog::level::err;
    state().periodicFlush.reset();
    writeOut(nullptr, /*isEnd=*/true);
}

void Log::flush()
{
    writeOut();
}

bool Log::isEnabled(Level level)
{
    return spdlogLevel(level) >= lowestLevel.load(std::memory_order_relaxed);
}

void Log::write(Level level, std::string_view line)
{
    const Line made{spdlog::log_clock::now(), level, threadName, line};
    if (level == Level::Error) {
        if (!writeOut(&made))
            std::fprintf(stderr, "%s\n", Secrets::masked(line).c_str());
        return;
    }
    bool isFull = false;
    {
        const std::scoped_lock lock(state().mutex);
        if (!state().logger)
            return;
        state().queue.append(made);
        isFull = state().queue.count() >= longestQueue;
    }
    if (isFull)
        writeOut();
}

void Log::systemLogLine(std::string_view line)
{
    if (isEnabled(Level::Info))
        write(Level::Info, line);
}

void Log::setThreadName(std::string_view name)
{
    threadName = name;
    prctl(PR_SET_NAME, std::string(name.substr(0, 15)).c_str());
}
