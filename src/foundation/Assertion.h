#pragma once

// Programming errors: impossible values and calls out of order. Each is logged at error level with its fixed text and
// place; builds without NDEBUG then stop the program, others go on, and the caller does what is least harmful.
namespace Assertion {

#ifdef NDEBUG
inline constexpr bool stopsTheProgram = false;
#else
inline constexpr bool stopsTheProgram = true;
#endif

// The place is the caller's. Not std::source_location, which the clang that the fuzz targets are built with lacks.
void failed(const char* text, const char* file = __builtin_FILE(), unsigned line = __builtin_LINE());

// Returns `holds`, so that a caller can say what happens when the program is not stopped.
inline bool check(bool holds, const char* text, const char* file = __builtin_FILE(), unsigned line = __builtin_LINE())
{
    if (!holds)
        failed(text, file, line);
    return holds;
}

} // namespace Assertion
