// How the sanitizers are set up for every test program; nothing to test in a build without them.

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

extern "C" const char* __lsan_default_suppressions();

namespace {

std::string variable(const char* name)
{
    const char* const value = std::getenv(name);
    return value ? value : "";
}

} // namespace

TEST(Sanitizers, EachHasItsOptions)
{
    if (variable("TSAN_OPTIONS").empty())
        GTEST_SKIP() << "not run by ctest";
    EXPECT_EQ(variable("TSAN_OPTIONS"), "ignore_noninstrumented_modules=1 halt_on_error=1");
    EXPECT_EQ(variable("ASAN_OPTIONS"), "detect_stack_use_after_return=1");
}

TEST(Sanitizers, DoNotReportWhatTheSystemsLibrariesKeepForAThread)
{
    EXPECT_EQ(std::string(__lsan_default_suppressions()), "leak:libcrypto\n");
}
