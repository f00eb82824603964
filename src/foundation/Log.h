#pragma once

#include "foundation/Text.h"

#include <memory>
#include <string>
#include <string_view>

class FileLogger;

// The program's log: five levels, each line with its time, level and thread name. Callable from every thread.
// An error line is in the file before the call returns; other lines are queued, and composed and written by a thread of
// the log's own: they reach the file within a second, on the next error line, or on flush(). Before configure() and
// after shutDown() lines go nowhere but, for errors, standard error. Lines never hold a password: callers log replies
// and paths, not request bodies, and what a reply echoes is masked (Secrets).
namespace Log {

enum class Level { Verbose, Debug, Info, Warning, Error };

struct Options
{
    // Where lines are kept; null keeps none.
    std::shared_ptr<FileLogger> fileLogger;
    // Copies lines to standard error. Off for the command line, whose standard error is the user's.
    bool standardError = false;
    // Copies warnings and errors to syslog where there is one.
    bool systemLog = false;
    Level lowest = Level::Info;
};

// Once at the start of a program, on the main thread, before other threads log.
void configure(const Options& options);
// Writes out what is buffered and lets go of the file logger.
void shutDown();
void flush();

[[nodiscard]] bool isEnabled(Level level);
void write(Level level, std::string_view line);
// The platform's system log: a line at info level, so in the file and, where configured, on standard error; syslog is
// for warnings and errors.
void systemLogLine(std::string_view line);

// The name that this thread's lines bear.
void setThreadName(std::string_view name);

template <typename... Args>
void at(Level level, fmt::format_string<Args...> pattern, Args&&... args)
{
    if (isEnabled(level))
        write(level, fmt::format(pattern, std::forward<Args>(args)...));
}
template <typename... Args>
void error(fmt::format_string<Args...> pattern, Args&&... args)
{
    at(Level::Error, pattern, std::forward<Args>(args)...);
}
template <typename... Args>
void warning(fmt::format_string<Args...> pattern, Args&&... args)
{
    at(Level::Warning, pattern, std::forward<Args>(args)...);
}
template <typename... Args>
void info(fmt::format_string<Args...> pattern, Args&&... args)
{
    at(Level::Info, pattern, std::forward<Args>(args)...);
}
template <typename... Args>
void debug(fmt::format_string<Args...> pattern, Args&&... args)
{
    at(Level::Debug, pattern, std::forward<Args>(args)...);
}
template <typename... Args>
void verbose(fmt::format_string<Args...> pattern, Args&&... args)
{
    at(Level::Verbose, pattern, std::forward<Args>(args)...);
}
template <typename... Args>
void system(fmt::format_string<Args...> pattern, Args&&... args)
{
    systemLogLine(fmt::format(pattern, std::forward<Args>(args)...));
}

} // namespace Log
