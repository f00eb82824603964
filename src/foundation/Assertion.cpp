#include "foundation/Assertion.h"

#include "foundation/Log.h"

#include <cstdio>
#include <cstdlib>

void Assertion::failed(const char* text, std::source_location place)
{
    Log::error("Assertion failed: {} ({}:{})", text, place.file_name(), place.line());
    if constexpr (stopsTheProgram) {
        std::fprintf(stderr, "Assertion failed: %s (%s:%u)\n", text, place.file_name(), place.line());
        std::abort();
    }
}
