#include "foundation/Assertion.h"

#include "foundation/Log.h"

#include <cstdio>
#include <cstdlib>

void Assertion::failed(const char* text, const char* file, unsigned line)
{
    Log::error("Assertion failed: {} ({}:{})", text, file, line);
    if constexpr (stopsTheProgram) {
        std::fprintf(stderr, "Assertion failed: %s (%s:%u)\n", text, file, line);
        std::abort();
    }
}
