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
#include <mutex>
#include <sys/prctl.h>
#include <thread>
#include <unistd.h>

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

// %N: the name of the thread that wrote the line.
class ThreadNameFlag : public spdlog::custom_flag_formatter
{
public:
    void format(const spdlog::details::log_msg&, const std::tm&, spdlog::memory_buf_t& out) override
    {
        const std::string_view name = threadName.empty() ? std::string_view("main") : std::string_view(threadName);
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

// Writes out what is buffered several times a second, so that whoever follows the file sees quiet times too.
class PeriodicFlush
{
public:
    explicit PeriodicFlush(std::shared_ptr<spdlog::logger> logger)
        : m_thread([this, flushed = std::move(logger)] {
              prctl(PR_SET_NAME, "log flush");
              std::unique_lock lock(m_mutex);
              while (!m_wake.wait_for(lock, std::chrono::milliseconds(250), [this] { return m_isEnding; }))
                  flushed->flush();
          })
    {}
    ~PeriodicFlush()
    {
        {
            const std::scoped_lock lock(m_mutex);
            m_isEnding = true;
        }
        m_wake.notify_one();
        m_thread.join();
    }
    PeriodicFlush(const PeriodicFlush&) = delete;
    PeriodicFlush& operator=(const PeriodicFlush&) = delete;

private:
    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_isEnding = false; // guarded by m_mutex
    std::thread m_thread;
};

// Written by configure() and shutDown() alone; the pointers are swapped under the mutex that every reader takes.
struct State
{
    std::mutex mutex;
    std::shared_ptr<spdlog::logger> logger;
    std::unique_ptr<PeriodicFlush> periodicFlush;
};

State& state()
{
    static State* const theState = new State; // Outlives every thread, whatever the order of the end.
    return *theState;
}

std::atomic<int> lowestLevel{spdlog::level::err};

std::shared_ptr<spdlog::logger> currentLogger()
{
    const std::scoped_lock lock(state().mutex);
    return state().logger;
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

    const std::scoped_lock lock(state().mutex);
    state().logger = logger;
    state().periodicFlush = std::make_unique<PeriodicFlush>(logger);
    lowestLevel = spdlogLevel(options.lowest);
}

void Log::shutDown()
{
    std::unique_ptr<PeriodicFlush> periodicFlush;
    std::shared_ptr<spdlog::logger> logger;
    {
        const std::scoped_lock lock(state().mutex);
        lowestLevel = spdlog::level::err;
        periodicFlush = std::move(state().periodicFlush);
        logger = std::move(state().logger);
        state().logger.reset();
    }
    periodicFlush.reset();
    if (logger)
        logger->flush();
}

void Log::flush()
{
    if (const auto logger = currentLogger())
        logger->flush();
}

bool Log::isEnabled(Level level)
{
    return spdlogLevel(level) >= lowestLevel.load(std::memory_order_relaxed);
}

void Log::write(Level level, std::string_view line)
{
    // A service that answers with what it was sent must not bring the password into the log.
    const std::string safe = Secrets::masked(line);
    if (const auto logger = currentLogger())
        logger->log(spdlogLevel(level), spdlog::string_view_t(safe.data(), safe.size()));
    else if (level == Level::Error)
        std::fprintf(stderr, "%s\n", safe.c_str());
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
