// Reading a transcript's name and date, and the parts of that.
#include "foundation/DateText.h"
#include "transcript/DeponentName.h"
#include "transcript/DepositionFileParser.h"
#include "transcript/LineWords.h"
#include "transcript/PhraseSearch.h"
#include "transcript/TranscriptPrefill.h"
#include "transcript/TranscriptText.h"

#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>
#include <random>

namespace {

// Testimony without a deponent or a month, so that all of it is looked at.
QByteArray testimony(qsizetype size, const char* lineEnd)
{
    const QByteArray page = QByteArray("    1          Q    Good morning. Would you state your full name") + lineEnd +
                            "    2     for the record, please." + lineEnd + "    3          A    Jane Quentin Doe." +
                            lineEnd + "    4          Q    Do you remember the afternoon of the first?" + lineEnd;
    return page.repeated(size / page.size() + 1).first(size);
}

void readFile(benchmark::State& state, const QByteArray& contents)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a.txt"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(contents) != contents.size() || !file.flush())
        state.SkipWithError("the transcript could not be written");
    for (auto _ : state)
        benchmark::DoNotOptimize(TranscriptPrefill::read(path));
    state.SetBytesProcessed(state.iterations() * contents.size());
    state.SetComplexityN(contents.size());
}

void FileOfLines(benchmark::State& state)
{
    readFile(state, testimony(state.range(0), "\r\n"));
}
BENCHMARK(FileOfLines)->RangeMultiplier(8)->Range(4 << 10, 16 << 20)->Complexity(benchmark::oN);

void FileOfOneLine(benchmark::State& state)
{
    readFile(state, testimony(state.range(0), "  "));
}
BENCHMARK(FileOfOneLine)->RangeMultiplier(8)->Range(4 << 10, 16 << 20)->Complexity(benchmark::oN);

// Statistical detection of the encoding, which looks at a sample of limited size.
void FileOfForeignBytes(benchmark::State& state)
{
    std::mt19937 random(3);
    QByteArray bytes(state.range(0), '\0');
    for (char& c : bytes)
        c = static_cast<char>(random());
    readFile(state, bytes);
}
BENCHMARK(FileOfForeignBytes)->RangeMultiplier(8)->Range(4 << 10, 2 << 20);

void Decoding(benchmark::State& state)
{
    QByteArray text = testimony(1 << 20, "\r\n");
    if (state.range(0) != 0)
        text += "\xc3\xa9";
    for (auto _ : state)
        benchmark::DoNotOptimize(TranscriptText::decode(text));
    state.SetBytesProcessed(state.iterations() * text.size());
}
BENCHMARK(Decoding)->ArgName("foreign letters")->Arg(0)->Arg(1);

void Phrase(benchmark::State& state)
{
    const QString text = QString::fromLatin1(testimony(1 << 20, "  "));
    const PhraseSearch search(u"deposition of", PhraseSearch::Letters::Lowercase);
    for (auto _ : state)
        benchmark::DoNotOptimize(search.isIn(text));
    state.SetBytesProcessed(state.iterations() * text.size());
}
BENCHMARK(Phrase);

void WordsOfALine(benchmark::State& state)
{
    const QString line = QString::fromLatin1(testimony(state.range(0), "  "));
    for (auto _ : state) {
        LineWords words(line);
        const qsizetype count = words.count();
        for (qsizetype k = 0; k < count; ++k)
            benchmark::DoNotOptimize(words.word(k));
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(WordsOfALine)->RangeMultiplier(16)->Range(64, 1 << 20)->Complexity(benchmark::oN);

void DateOnALine(benchmark::State& state)
{
    const QStringList lines{QStringLiteral("   13          Wednesday, March 4, 2026"), QString()};
    DepositionFileParser parser;
    for (auto _ : state)
        parser.findDepoDate(lines, 0, 1);
}
BENCHMARK(DateOnALine);

void DateOfItsText(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(DateText::readLeniently(QStringLiteral("04 march 2026")));
}
BENCHMARK(DateOfItsText);

void NameOfACandidate(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(DeponentName::split(
            DeponentName::candidate(QStringLiteral("JOHN A. SMITH, JR. taken on behalf of the Plaintiff")), false));
}
BENCHMARK(NameOfACandidate);

} // namespace

BENCHMARK_MAIN();
