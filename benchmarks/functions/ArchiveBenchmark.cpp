// Unpacking, its cipher and opening an archive.
#include "archive/ZipArchive.h"
#include "archive/ZipCipher.h"

#include <QDir>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>
#include <random>

namespace {

QByteArray text(qsizetype size)
{
    std::mt19937 random(5);
    QByteArray bytes(size, '\0');
    for (char& c : bytes)
        c = "etaoin shrdlu"[std::min(random() % 13, random() % 13)];
    return bytes;
}

// An archive of so many entries of so many bytes in a folder of its own, beside which it is unpacked.
class Sample
{
public:
    Sample(int entries, qsizetype size)
    {
        ZipArchive archive;
        bool written = archive.CreateZipFile2(path());
        const QByteArray data = text(size);
        for (int i = 0; i < entries; ++i) {
            const QString name = QStringLiteral("viewer/%1/%2.txt").arg(i / 100).arg(i);
            written = written && archive.addDataToZip(data, std::nullopt, name);
        }
        m_isWritten = archive.CloseZipFile2() && written;
    }
    [[nodiscard]] bool isWritten() const { return m_isWritten; }
    [[nodiscard]] QString path() const { return m_folder.filePath(QStringLiteral("a.zip")); }
    // One that nothing lies in yet.
    [[nodiscard]] QString nextFolder() { return m_folder.filePath(QStringLiteral("out%1").arg(++m_count)); }

private:
    QTemporaryDir m_folder{QDir::current().filePath(QStringLiteral("archive-benchmark-XXXXXX"))};
    bool m_isWritten = false;
    int m_count = 0;
};

void unpack(benchmark::State& state, int entries, qsizetype size, std::optional<unsigned> readers)
{
    Sample sample(entries, size);
    if (!sample.isWritten())
        state.SkipWithError("the archive could not be written");
    for (auto _ : state) {
        ZipArchive archive;
        archive.setReaders(readers);
        if (!archive.UnzipOpenFile(sample.path()) || !archive.UnzipFileTo(sample.nextFolder(), /*overWrite=*/true))
            state.SkipWithError("the archive could not be unpacked");
    }
    state.SetItemsProcessed(state.iterations() * entries);
    state.SetBytesProcessed(state.iterations() * entries * static_cast<std::int64_t>(size));
}

void SmallEntries(benchmark::State& state)
{
    unpack(state, static_cast<int>(state.range(0)), 2'000, std::nullopt);
    state.SetComplexityN(state.range(0));
}
BENCHMARK(SmallEntries)->RangeMultiplier(4)->Range(64, 4096)->Complexity(benchmark::oN)->UseRealTime();

void LargeEntries(benchmark::State& state)
{
    unpack(state, 8, 4 << 20, static_cast<unsigned>(state.range(0)));
}
BENCHMARK(LargeEntries)->ArgName("readers")->Arg(0)->Arg(1)->Arg(2)->UseRealTime();

void Opening(benchmark::State& state)
{
    const Sample sample(static_cast<int>(state.range(0)), 10);
    for (auto _ : state) {
        ZipArchive archive;
        benchmark::DoNotOptimize(archive.UnzipOpenFile(sample.path()));
    }
}
BENCHMARK(Opening)->Arg(10)->Arg(10'000);

void DirectoryWalk(benchmark::State& state)
{
    const Sample sample(static_cast<int>(state.range(0)), 10);
    const ZipSource source(sample.path());
    const UnzHandle handle = source.newHandle();
    for (auto _ : state)
        benchmark::DoNotOptimize(ZipLimits::refusal(handle.get(), source.size(), std::nullopt));
    state.SetComplexityN(state.range(0));
}
BENCHMARK(DirectoryWalk)->RangeMultiplier(8)->Range(16, 8192)->Complexity(benchmark::oN);

void Cipher(benchmark::State& state)
{
    const QByteArray bytes = text(1 << 16);
    ZipCipher cipher("password");
    for (auto _ : state) {
        for (const char c : bytes)
            benchmark::DoNotOptimize(cipher.decrypted(static_cast<unsigned char>(c)));
    }
    state.SetBytesProcessed(state.iterations() * bytes.size());
}
BENCHMARK(Cipher);

} // namespace

BENCHMARK_MAIN();
