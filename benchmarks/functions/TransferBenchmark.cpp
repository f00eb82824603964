// What every piece of a transfer passes through, and what every line of the log does.
#include "commands/TransferBuffer.h"
#include "foundation/Secrets.h"

#include <QByteArray>

#include <benchmark/benchmark.h>
#include <string>
#include <vector>

namespace {

constexpr std::size_t piece = 16384; // as libcurl hands them over

// A file received into memory that was never used, as the first of a delivery is.
void receiveIntoNewBuffer(benchmark::State& state)
{
    const std::vector<char> bytes(piece, 'a');
    const auto size = static_cast<std::size_t>(state.range(0));
    for (auto _ : state) {
        TransferBuffer buffer;
        while (buffer.size() < size)
            benchmark::DoNotOptimize(buffer.append(bytes.data(), bytes.size()));
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
    state.SetComplexityN(state.range(0));
}
BENCHMARK(receiveIntoNewBuffer)->Range(1 << 20, 256 << 20)->Complexity(benchmark::oN)->Unit(benchmark::kMillisecond);

// And the ones after it.
void receiveIntoUsedBuffer(benchmark::State& state)
{
    const std::vector<char> bytes(piece, 'a');
    const auto size = static_cast<std::size_t>(state.range(0));
    TransferBuffer buffer;
    for (auto _ : state) {
        buffer.clear();
        while (buffer.size() < size)
            benchmark::DoNotOptimize(buffer.append(bytes.data(), bytes.size()));
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(receiveIntoUsedBuffer)->Range(1 << 20, 256 << 20)->Unit(benchmark::kMillisecond);

// The same into Qt's own array, for comparison.
void receiveIntoByteArray(benchmark::State& state)
{
    const std::vector<char> bytes(piece, 'a');
    const auto size = static_cast<qsizetype>(state.range(0));
    for (auto _ : state) {
        QByteArray buffer;
        while (buffer.size() < size)
            buffer.append(bytes.data(), static_cast<qsizetype>(bytes.size()));
        benchmark::DoNotOptimize(buffer.constData());
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(receiveIntoByteArray)->Range(1 << 20, 256 << 20)->Unit(benchmark::kMillisecond);

void maskLine(benchmark::State& state)
{
    Secrets::add(QStringLiteral("correct horse"));
    const std::string line = "Depo = 883, segment = 4, status = Processing_Media_Stereo, duration = 1200, score = 97";
    for (auto _ : state)
        benchmark::DoNotOptimize(Secrets::masked(line));
}
BENCHMARK(maskLine);

} // namespace

BENCHMARK_MAIN();
