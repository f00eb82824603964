#include "foundation/Interruption.h"

#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>

namespace {

void installAndRaise(int signal, bool twice)
{
    Interruption::install();
    int calls = 0;
    const Interruption interruption([&] { ++calls; });
    if (Interruption::isRequested())
        std::_Exit(1);
    ::raise(signal);
    if (!Interruption::isRequested() || calls != 0)
        std::_Exit(2); // The handler itself does nothing but leave word.
    if (twice)
        ::raise(signal);
    if (!Waiting::until([&] { return calls > 0; }))
        std::_Exit(3);
    Waiting::turnMainLoopFor(std::chrono::milliseconds(20));
    std::_Exit(calls == 1 ? 0 : 4);
}

} // namespace

// Each in a process of its own: a handler stays for the rest of the process.
TEST(InterruptionDeathTest, isCalledOnceOnTheMainLoop)
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        EXPECT_EXIT(installAndRaise(signal, /*twice=*/false), testing::ExitedWithCode(0), "");
}

TEST(InterruptionDeathTest, endsTheProgramAtOnceTheSecondTime)
{
    EXPECT_EXIT(installAndRaise(SIGINT, /*twice=*/true), testing::ExitedWithCode(130), "");
}

TEST(InterruptionDeathTest, keepsTheProgramWhenAReaderOfItsOutputGoesAway)
{
    const auto raisePipe = [] {
        Interruption::install();
        ::raise(SIGPIPE);
        std::_Exit(0);
    };
    EXPECT_EXIT(raisePipe(), testing::ExitedWithCode(0), "");
}
