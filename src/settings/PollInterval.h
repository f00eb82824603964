#pragma once

#include <QString>

#include <string>

// How often a program asks the service, as given on a command line.
namespace PollInterval {

// In seconds.
inline constexpr double standard = 60.0;

// What is wrong with a text; empty when it is a number of seconds that can be used.
[[nodiscard]] inline std::string problem(const std::string& text)
{
    constexpr double shortest = 0.05;
    constexpr double longest = 86400;
    bool isNumber = false;
    const double seconds = QString::fromStdString(text).toDouble(&isNumber);
    if (isNumber && seconds >= shortest && seconds <= longest) // not "nan"
        return {};
    return "\"" + text + "\" is not a number of seconds from 0.05 to 86400";
}

} // namespace PollInterval
