#pragma once

#include <source_location>

// Programming errors: impossible values and calls out of order. Each is logged at error level with its fixed text and
// place; builds without NDEBUG then stop the program, others go on, and the caller does what is least harmful.
namespace Assertion {

#ifdef NDEBUG
inline constexpr bool stopsTheProgram = false;
#else
inline constexpr bool stopsTheProgram = true;
#endif

void failed(const char* text, std::source_location place = std::source_location::current());

// Returns `holds`, so that a caller can say what happens when the program is not stopped.
inline bool check(bool holds, const char* text, std::source_location place = std::source_location::current())
{
    if (!holds)
        failed(text, place);
    return holds;
}

} // namespace Assertion
