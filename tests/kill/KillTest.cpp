#include "Figures.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cstdlib>

namespace {

// A sanitized program takes several times as long. More of them, and other seeds, are for scripts/kill-test.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int momentsOfAll = 16;
#else
constexpr int momentsOfAll = 200;
#endif
constexpr int parts = 4;
constexpr int atOnce = 3;

std::uint64_t numberOf(const char* variable, std::uint64_t otherwise)
{
    const char* const text = std::getenv(variable);
    return text != nullptr ? std::strtoull(text, nullptr, 10) : otherwise;
}

class KilledAtAnyMoment : public testing::TestWithParam<int>
{};

} // namespace

// In parts, so that ctest can run them side by side.
TEST_P(KilledAtAnyMoment, everyOrderIsResumedToItsEnd)
{
    const std::uint64_t seed = numberOf("QUILLPOST_KILL_SEED", 1);
    const auto moments = static_cast<int>(numberOf("QUILLPOST_KILL_MOMENTS", momentsOfAll));
    std::vector<int> numbers;
    for (int number = GetParam(); number < moments; number += parts)
        numbers.push_back(number);
    std::string failure;
    const auto common = leaveOrdersAlone(failure);
    ASSERT_TRUE(common) << failure;
    const Figures figures = runScenarios(seed, numbers, atOnce, *common);
    fmt::print("QUILLPOST_KILL_SEED={} QUILLPOST_KILL_MOMENTS={}, part {} of {}\n{}", seed, moments, GetParam() + 1,
               parts, figures.table());
    for (const std::string& words : figures.failures())
        ADD_FAILURE() << words;
}

INSTANTIATE_TEST_SUITE_P(Part, KilledAtAnyMoment, testing::Range(0, parts));
