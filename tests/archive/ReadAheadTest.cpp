#include "UnzipFixture.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <unzip.h>

#include <map>
#include <random>
#include <tuple>
#include <utility>
#include <vector>

namespace {

// All that can be seen of an extraction.
struct Outcome
{
    bool success = false;
    QStringList messages;
    QStringList asked;
    QStringList unzippedFiles;
    QString refusal;
    std::uint64_t numPassedOver = 0;
    std::vector<std::tuple<int, std::uint64_t, std::uint64_t>> progress;
    std::map<QString, QByteArray> files; // and folders
    std::map<QString, QDateTime> dates;
    bool operator==(const Outcome&) const = default;
};

QByteArray bytesOf(qsizetype size, unsigned seed)
{
    std::mt19937 random(seed);
    QByteArray bytes(size, '\0');
    // Runs of letters, so that it deflates, but not to nothing.
    for (qsizetype i = 0; i < size; ++i)
        bytes[i] = static_cast<char>('a' + random() % 7);
    return bytes;
}

class ReadAheadUnzip : public UnzipFixture
{
protected:
    // Into a folder of that name, with so many threads that read ahead; none reads on the calling one.
    Outcome unzipWith(unsigned readers, const QByteArray& zip, bool overWrite = true)
    {
        const QString folder = path(QStringLiteral("out"));
        Outcome outcome;
        delegate->messages.clear();
        delegate->asked.clear();
        archive.setReaders(readers);
        archive.setProgressBlock([&](int percentage, std::uint64_t done, std::uint64_t total) {
            outcome.progress.emplace_back(percentage, done, total);
        });
        outcome.success = unzip(zip, overWrite);
        outcome.messages = delegate->messages;
        outcome.asked = delegate->asked;
        outcome.unzippedFiles = archive.unzippedFiles();
        outcome.refusal = archive.refusal();
        outcome.numPassedOver = archive.numPassedOver();
        QDirIterator entries(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                             QDirIterator::Subdirectories);
        while (entries.hasNext()) {
            const QFileInfo info(entries.next());
            outcome.files[info.filePath()] = info.isFile() ? readFile(info.filePath()) : QByteArray();
            if (info.isFile() && info.lastModified().date() == QDate(2011, 3, 4))
                outcome.dates[info.filePath()] = info.lastModified();
        }
        QDir(folder).removeRecursively();
        return outcome;
    }
    void expectEqual(const QByteArray& zip, bool overWrite = true)
    {
        const Outcome expected = unzipWith(0, zip, overWrite);
        for (const unsigned readers : {1U, 3U})
            EXPECT_TRUE(unzipWith(readers, zip, overWrite) == expected) << readers;
    }
    // With the writer's own packing.
    QByteArray deflatedZip(const std::vector<std::pair<QString, QByteArray>>& entries)
    {
        const QString file = path(QStringLiteral("deflated.zip"));
        EXPECT_TRUE(archive.CreateZipFile2(file));
        for (const auto& [name, data] : entries)
            EXPECT_TRUE(archive.addDataToZip(data, std::nullopt, name));
        EXPECT_TRUE(archive.CloseZipFile2());
        return readFile(file);
    }
    QList<CraftedEntry> manyEntries() const
    {
        QList<CraftedEntry> entries;
        for (int i = 0; i < 60; ++i) {
            const qsizetype size = std::vector<qsizetype>{0, 1, 4095, 4096, 4097, 65'536, 65'537, 300'000}[i % 8];
            entries += {.name = "sub" + QByteArray::number(i % 5) + "/" + QByteArray::number(i),
                        .data = bytesOf(size, static_cast<unsigned>(i))};
        }
        return entries;
    }
};

TEST_F(ReadAheadUnzip, ManyEntriesOfAllSizesAreUnpackedAsOnOneThread)
{
    const QByteArray zip = craftedZip(manyEntries());
    expectEqual(zip);
    const Outcome outcome = unzipWith(3, zip);
    EXPECT_TRUE(outcome.success);
    EXPECT_EQ(outcome.unzippedFiles.size(), 60);
    EXPECT_EQ(outcome.files.at(out("sub2/7")), bytesOf(300'000, 7));
    EXPECT_EQ(outcome.progress.size(), 60U);
    EXPECT_EQ(outcome.dates.size(), 60U);
}

TEST_F(ReadAheadUnzip, OneLargeEntryGoesThroughInPieces)
{
    const QByteArray data = bytesOf(5'000'000, 1);
    const QByteArray zip = deflatedZip({{QStringLiteral("large.bin"), data}, {QStringLiteral("small"), "data"}});
    EXPECT_EQ(unzipWith(2, zip).files.at(out("large.bin")), data);
    expectEqual(zip);
}

TEST_F(ReadAheadUnzip, OfTwoEntriesOfOneNameTheLaterStays)
{
    QList<CraftedEntry> entries;
    for (int i = 0; i < 40; ++i)
        entries += {.name = "same.bin", .data = bytesOf(200'000 - 4'000 * i, static_cast<unsigned>(i))};
    EXPECT_EQ(unzipWith(3, craftedZip(entries)).files.at(out("same.bin")), entries.constLast().data);
    expectEqual(craftedZip(entries));
    delegate->answer = false;
    expectEqual(craftedZip(entries), false);
}

TEST_F(ReadAheadUnzip, NothingIsLeftOfWhatLiesBehindABrokenEntry)
{
    for (const int broken : {0, 1, 17, 59}) {
        QList<CraftedEntry> entries = manyEntries();
        entries[broken].wrongChecksum = true;
        entries[broken].data += "more";
        expectEqual(craftedZip(entries));
        EXPECT_EQ(unzipWith(3, craftedZip(entries)).unzippedFiles.size(), broken + 1);
        entries[broken].method = 8;
        expectEqual(craftedZip(entries));
        EXPECT_EQ(unzipWith(3, craftedZip(entries)).unzippedFiles.size(), broken);
        entries[broken].method = 99;
        expectEqual(craftedZip(entries));
        EXPECT_EQ(unzipWith(3, craftedZip(entries)).messages, QStringList{QStringLiteral("Error occurs")});
    }
}

TEST_F(ReadAheadUnzip, EntriesThatArePassedOverAreLeftUnread)
{
    QList<CraftedEntry> entries = manyEntries();
    for (int i = 0; i < entries.size(); i += 3)
        entries[i].name = "../" + entries[i].name;
    EXPECT_EQ(unzipWith(3, craftedZip(entries)).numPassedOver, 20U);
    expectEqual(craftedZip(entries));
}

TEST_F(ReadAheadUnzip, AnEntryThatIsPassedOverIsCheckedWhereItIsOneStepLong)
{
    for (const unsigned readers : {0U, 2U}) {
        for (const qsizetype size : {0, 1, 4095, 4096, 4097, 70'000, 300'000}) {
            const Outcome outcome = unzipWith(
                readers,
                craftedZip({{.name = "../a", .data = bytesOf(size, 1), .wrongChecksum = true}, {.name = "after"}}));
            EXPECT_EQ(outcome.success, size > 4096) << size;
            EXPECT_EQ(outcome.files.count(out("after")), size > 4096 ? 1U : 0U) << size;
        }
    }
}

TEST_F(ReadAheadUnzip, WhatIsKeptOfABrokenEntryIsWhatWholeStepsGave)
{
    const QByteArray whole = deflatedZip({{QStringLiteral("a"), bytesOf(150'000, 5)}});
    const QString file = path(QStringLiteral("broken.zip"));
    for (qsizetype i = 40; i < whole.size() - 100; i += 1999) {
        QByteArray zip = whole;
        zip[i] = static_cast<char>(zip.at(i) ^ 0x55);
        writeFile(QStringLiteral("broken.zip"), zip);
        const UnzHandle handle(unzOpen64(file.toUtf8().constData()));
        ASSERT_EQ(unzOpenCurrentFile(handle.get()), UNZ_OK);
        QByteArray expected;
        QByteArray step(4096, '\0');
        int read = 0;
        while ((read = unzReadCurrentFile(handle.get(), step.data(), 4096)) > 0)
            expected += step.first(read);
        const bool isWhole = read == 0 && unzCloseCurrentFile(handle.get()) == UNZ_OK;
        for (const unsigned readers : {0U, 2U}) {
            const Outcome outcome = unzipWith(readers, zip);
            EXPECT_EQ(outcome.success, isWhole) << i;
            EXPECT_EQ(outcome.files.count(out("a")) != 0 ? outcome.files.at(out("a")) : QByteArray(), expected) << i;
            EXPECT_EQ(outcome.files.count(out("a")), expected.isEmpty() && read < 0 ? 0U : 1U) << i;
        }
    }
}

TEST_F(ReadAheadUnzip, ArchiveCutOrChangedAnywhereIsReadAsOnOneThread)
{
    const QByteArray zip = craftedZip({{.name = "sub/a.txt", .data = bytesOf(5'000, 1)}, {.name = "b.txt"}});
    const auto isHeader = [&](qsizetype i) { return i < 60 || i > 5'000; };
    for (qsizetype i = 0; i < zip.size(); i += isHeader(i) ? 1 : 1'231) {
        expectEqual(zip.first(i));
        QByteArray changed = zip;
        changed[i] = '\xff';
        expectEqual(changed);
    }
}

TEST_F(ReadAheadUnzip, ArchiveThatIsReplacedMeanwhileIsReadAsItWas)
{
    archive.setReaders(2);
    const QString file = writeFile(QStringLiteral("a.zip"), craftedZip({{.name = "first"}}));
    ASSERT_TRUE(archive.UnzipOpenFile(file));
    const QString other = writeFile(QStringLiteral("b.zip"), craftedZip({{.name = "other", .data = "else"}}));
    ASSERT_TRUE(QFile::remove(file) && QFile::rename(other, file));
    EXPECT_TRUE(archive.UnzipFileTo(path(QStringLiteral("out")), true));
    EXPECT_EQ(unzipped("first"), "data");
}

TEST_F(ReadAheadUnzip, ArchiveThatIsClosedFromACallbackEndsTheExtraction)
{
    for (const unsigned readers : {0U, 2U}) {
        archive.setReaders(readers);
        archive.setProgressBlock([this](int, std::uint64_t, std::uint64_t) { archive.UnzipCloseFile(); });
        delegate->messages.clear();
        EXPECT_FALSE(unzip(craftedZip(manyEntries())));
        EXPECT_EQ(delegate->messages, QStringList{QStringLiteral("Error occurs")});
        EXPECT_EQ(archive.unzippedFiles().size(), 1);
    }
}

TEST_F(ReadAheadUnzip, EntriesWithAPasswordAreReadAllTheSame)
{
    const QString file = path(QStringLiteral("a.zip"));
    ASSERT_TRUE(archive.CreateZipFile2Password(file, QStringLiteral("secret")));
    ASSERT_TRUE(archive.addDataToZip(bytesOf(100'000, 1), std::nullopt, QStringLiteral("a")));
    ASSERT_TRUE(archive.CloseZipFile2());
    archive.setReaders(2);
    ASSERT_TRUE(archive.UnzipOpenFilePassword(file, QStringLiteral("secret")));
    EXPECT_TRUE(archive.UnzipFileTo(path(QStringLiteral("out")), true));
    EXPECT_EQ(unzipped("a"), bytesOf(100'000, 1));
}

} // namespace
