// Reading the service's reply to a status request.
#include "engine/StatusReply.h"

#include <benchmark/benchmark.h>

namespace {

constexpr int segmentsOfADeposition = 4;

void depositions(benchmark::State& state)
{
    const QString reply = StatusReply::simulated(static_cast<int>(state.range(0)), segmentsOfADeposition);
    for ([[maybe_unused]] auto run : state)
        benchmark::DoNotOptimize(StatusReply::depositions(reply));
    state.SetComplexityN(state.range(0));
}

void segments(benchmark::State& state)
{
    const QString reply = StatusReply::simulated(static_cast<int>(state.range(0)), segmentsOfADeposition);
    for ([[maybe_unused]] auto run : state)
        benchmark::DoNotOptimize(StatusReply::segments(reply));
    state.SetComplexityN(state.range(0));
}

BENCHMARK(depositions)->RangeMultiplier(10)->Range(1000, 100'000)->Unit(benchmark::kMillisecond)->Complexity();
BENCHMARK(segments)->RangeMultiplier(10)->Range(1000, 100'000)->Unit(benchmark::kMillisecond)->Complexity();

} // namespace

BENCHMARK_MAIN();
