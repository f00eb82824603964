// Reading ffmpeg's output while it converts: a line of progress, cut anywhere by the pipe.
#include "media/FfmpegLines.h"

#include <algorithm>
#include <benchmark/benchmark.h>

namespace {

// As of an hour of film; ffmpeg ends each line with a carriage return.
QByteArray progressLines(qsizetype number)
{
    QByteArray output;
    for (qsizetype i = 0; i < number; ++i)
        output += "size=    " + QByteArray::number(i * 61) + "kB time=00:" + QByteArray::number(10 + i / 60 % 50) +
                  ':' + QByteArray::number(10 + i % 50) + ".00 bitrate= 192.0kbits/s speed= 251x    \r";
    return output;
}

void Lines(benchmark::State& state)
{
    const QByteArray output = progressLines(3600);
    const qsizetype piece = state.range(0);
    for (auto _ : state) {
        FfmpegLines lines;
        for (qsizetype at = 0; at < output.size(); at += piece)
            benchmark::DoNotOptimize(lines.add(QByteArrayView(output).sliced(at, std::min(piece, output.size() - at))));
    }
    state.SetBytesProcessed(state.iterations() * output.size());
}
BENCHMARK(Lines)->Arg(80)->Arg(4096)->Arg(65536);

// A program that never ends its line, up to what is kept of it.
void LineWithoutEnd(benchmark::State& state)
{
    const QByteArray piece(4096, 'x');
    for (auto _ : state) {
        FfmpegLines lines;
        for (qsizetype at = 0; at < state.range(0); at += piece.size())
            benchmark::DoNotOptimize(lines.add(piece));
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(LineWithoutEnd)->RangeMultiplier(8)->Range(64 << 10, 4 << 20);

} // namespace

BENCHMARK_MAIN();
