// What the list of jobs asks of a row: its words, what it displays, what it is sorted by; and setting what the service
// says of it.
#include "foundation/Text.h"
#include "model/Job.h"
#include "ui/main/JobListSorting.h"
#include "ui/main/JobListValues.h"
#include "ui/transformers/ValueTransformers.h"

#include <benchmark/benchmark.h>

namespace {

std::shared_ptr<Job> makeJob(int number)
{
    const auto job = Job::job();
    job->setName(Text::format("Deponent {}.txt", number));
    job->setDepoNum(number);
    job->setScoreValue(number % 100);
    job->setTotalMediaDuration(static_cast<float>(60 + number));
    job->setStatus(JobStatusOnServer);
    job->setServerStatus(QStringLiteral("Splitting"));
    return job;
}

void statusText(benchmark::State& state)
{
    const auto job = makeJob(883);
    for ([[maybe_unused]] auto run : state)
        benchmark::DoNotOptimize(jobStatusText(*job));
}

void serverStatus(benchmark::State& state)
{
    const auto job = makeJob(883);
    const QString words = QStringLiteral("Joining");
    for ([[maybe_unused]] auto run : state)
        job->setServerStatus(words);
}

void display(benchmark::State& state)
{
    const std::shared_ptr<MediaObject> job = makeJob(883);
    const auto column = static_cast<JobListColumn>(state.range(0));
    for ([[maybe_unused]] auto run : state)
        benchmark::DoNotOptimize(JobListValues::display(job, column));
}

void sortValue(benchmark::State& state)
{
    const auto job = makeJob(883);
    const auto column = static_cast<JobListColumn>(state.range(0));
    for ([[maybe_unused]] auto run : state)
        benchmark::DoNotOptimize(JobListSorting::sortValue(*job, column));
}

// By the names, from the order of the engine.
void sortRows(benchmark::State& state)
{
    JobListSorting::Rows rows;
    const int count = static_cast<int>(state.range(0));
    for (int i = 0; i < count; ++i) {
        rows.push_back(std::make_unique<JobListNode>());
        rows.back()->object = makeJob(i * 7919 % count);
        rows.back()->engineOrder = i;
        rows.back()->sortValue = JobListSorting::sortValue(*rows.back()->object, JobListColumn::Name);
    }
    for ([[maybe_unused]] auto run : state) {
        JobListSorting::sort(rows, static_cast<int>(JobListColumn::Name), Qt::AscendingOrder);
        state.PauseTiming();
        JobListSorting::sort(rows, -1, Qt::AscendingOrder);
        state.ResumeTiming();
    }
    state.SetComplexityN(state.range(0));
}

BENCHMARK(statusText);
BENCHMARK(serverStatus);
BENCHMARK(display)->DenseRange(0, jobListColumnCount - 1);
BENCHMARK(sortValue)->DenseRange(0, jobListColumnCount - 1);
BENCHMARK(sortRows)->RangeMultiplier(10)->Range(100, 10'000)->Unit(benchmark::kMillisecond)->Complexity();

} // namespace

int main(int argc, char** argv)
{
    ValueTransformers::registerMainWindowTransformers();
    ValueTransformers::registerSubmitJobWindowTransformers();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
