#include "foundation/Assertion.h"

#include "support/RecordedLog.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(AssertionTest, AConditionThatHoldsIsSilent)
{
    const RecordedLog log;
    EXPECT_TRUE(Assertion::check(true, "never seen"));
    EXPECT_EQ(log.text(), QString());
}

TEST(AssertionTest, AFailureStopsTheProgramWithItsTextUnlessBuiltForUsers)
{
    if constexpr (Assertion::stopsTheProgram) {
        EXPECT_DEATH(Assertion::failed("invalid thing"), "Assertion failed: invalid thing .*AssertionTest\\.cpp:");
    } else {
        const RecordedLog log;
        EXPECT_FALSE(Assertion::check(false, "invalid thing"));
        EXPECT_TRUE(log.contains(u"[error] [main] Assertion failed: invalid thing ("_s));
        EXPECT_TRUE(log.contains(u"AssertionTest.cpp:"_s));
    }
}

TEST(AssertionTest, AFailedCheckIsAFailure)
{
    if constexpr (Assertion::stopsTheProgram)
        EXPECT_DEATH((void)Assertion::check(false, "checked thing"), "Assertion failed: checked thing");
    else
        EXPECT_FALSE(Assertion::check(false, "checked thing"));
}
