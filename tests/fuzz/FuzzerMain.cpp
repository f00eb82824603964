// The fuzzer's way in. Linked with one target.
#include "FuzzTarget.h"

#include "foundation/Log.h"
#include "foundation/MainThread.h"

#include <QCoreApplication>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

void FuzzTarget::require(bool holds, const char* text)
{
    if (holds)
        return;
    std::fprintf(stderr, "Does not hold: %s\n", text);
    std::abort();
}

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    Log::configure({}); // What is logged is composed, and kept nowhere.
    static QCoreApplication application(*argc, *argv);
    static const MainThread::Attachment mainThread;
    static const FuzzTarget::Surroundings surroundings;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const FuzzTarget::Run run = FuzzTarget::all().at(0).run;
    run(QByteArrayView(data, static_cast<qsizetype>(size)));
    MainThread::drain();
    return 0;
}
