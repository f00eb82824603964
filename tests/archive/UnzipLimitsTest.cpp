#include "UnzipFixture.h"

#include <QDir>
#include <QFileInfo>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

constexpr std::uint32_t block = 4096;

class UnzipLimits : public UnzipFixture
{
protected:
    void setFreeSpace(std::optional<std::uint64_t> bytes)
    {
        archive.setFreeSpace([this, bytes](const QString& folder) {
            EXPECT_EQ(folder, path(u"out"_s));
            return bytes;
        });
    }
    // Nothing was written, not even the folder, and everybody was told why.
    void expectRefused(const QByteArray& zip, const QString& words)
    {
        delegate->messages.clear();
        EXPECT_FALSE(unzip(zip));
        EXPECT_EQ(archive.refusal(), words);
        EXPECT_EQ(delegate->messages, QStringList{words});
        EXPECT_TRUE(archive.unzippedFiles().isEmpty());
        EXPECT_FALSE(QFileInfo::exists(path(u"out"_s)));
    }
    void expectUnpacked(const QByteArray& zip)
    {
        delegate->messages.clear();
        EXPECT_TRUE(unzip(zip));
        EXPECT_EQ(archive.refusal(), QString());
        EXPECT_TRUE(delegate->messages.isEmpty());
    }
    // Two entries with a password, the second of which says that it is small.
    QByteArray lyingZip(qsizetype size)
    {
        const QString file = path(u"lying.zip"_s);
        EXPECT_TRUE(archive.CreateZipFile2Password(file, u"secret"_s));
        EXPECT_TRUE(archive.addDataToZip("true", std::nullopt, u"sub/deep/first.txt"_s));
        EXPECT_TRUE(archive.addDataToZip(QByteArray(size, '\0'), std::nullopt, u"sub/lying.bin"_s));
        EXPECT_TRUE(archive.CloseZipFile2());
        QByteArray zip = readFile(file);
        for (const qsizetype at : {zip.lastIndexOf("PK\x03\x04") + 22, zip.lastIndexOf("PK\x01\x02") + 24})
            zip.replace(at, 4, QByteArray("\x0a\0\0\0", 4));
        return zip;
    }
    bool unzipWithPassword(const QByteArray& zip)
    {
        EXPECT_TRUE(archive.UnzipOpenFilePassword(writeFile(u"a.zip"_s, zip), u"secret"_s));
        return archive.UnzipFileTo(path(u"out"_s), true);
    }
};

TEST_F(UnzipLimits, ArchiveThatNeedsMoreThanIsFreeIsRefusedBeforeAnythingIsWritten)
{
    const QByteArray one(block, 'x');
    const QByteArray zip = craftedZip({{.name = "a", .data = one}, {.name = "sub/b", .data = one}});
    setFreeSpace(ZipLimits::keptFree + 2 * block - 1);
    expectRefused(zip, u"The zip file unpacks to 8192 bytes, and 67117055 are free, of which 67108864 are kept free"_s);
    setFreeSpace(ZipLimits::keptFree + 2 * block);
    expectUnpacked(zip);
}

TEST_F(UnzipLimits, SmallFilesTakeWholeBlocks)
{
    setFreeSpace(ZipLimits::keptFree + block);
    expectUnpacked(craftedZip({{.name = "a"}, {.name = "empty", .data = ""}}));
    QDir(path(u"out"_s)).removeRecursively();
    expectRefused(craftedZip({{.name = "a"}, {.name = "b"}}),
                  u"The zip file unpacks to 8192 bytes, and 67112960 are free, of which 67108864 are kept free"_s);
}

TEST_F(UnzipLimits, OnAFullVolumeThereIsRoomForEmptyFilesAlone)
{
    setFreeSpace(0);
    expectUnpacked(craftedZip({{.name = "empty", .data = ""}}));
    setFreeSpace(ZipLimits::keptFree - 1);
    QDir(path(u"out"_s)).removeRecursively();
    expectRefused(craftedZip({{.name = "a"}}),
                  u"The zip file unpacks to 4096 bytes, and 67108863 are free, of which 67108864 are kept free"_s);
}

TEST_F(UnzipLimits, WhatIsFreeOnTheRealVolumeCounts)
{
    QList<CraftedEntry> entries;
    for (int i = 0; i < 20'000; ++i)
        entries += {.name = QByteArray::number(i), .data = "", .saysSize = 0xffff'f000};
    const QByteArray zip = craftedZip(entries);
    EXPECT_FALSE(unzip(zip));
    EXPECT_TRUE(archive.refusal().startsWith(u"The zip file unpacks to 85899264000000"_s.left(37)))
        << qPrintable(archive.refusal());
    EXPECT_TRUE(archive.refusal().contains(u" are free, "_s)) << qPrintable(archive.refusal());
    EXPECT_FALSE(QFileInfo::exists(path(u"out"_s)));
}

TEST_F(UnzipLimits, FreeSpaceIsThatOfTheNearestFolderThatExists)
{
    const auto here = ZipLimits::freeSpaceOf(path(QString()));
    const auto below = ZipLimits::freeSpaceOf(path(u"not/yet/made"_s));
    ASSERT_TRUE(here && below);
    // Others write meanwhile.
    EXPECT_NEAR(static_cast<double>(*here), static_cast<double>(*below), 1e9);
    EXPECT_GT(*here, 0U);
    EXPECT_TRUE(ZipLimits::freeSpaceOf(QString()));
}

TEST_F(UnzipLimits, WhereFreeSpaceIsNotKnownOnlyTheRatioCounts)
{
    setFreeSpace(std::nullopt);
    expectRefused(craftedZip({{.name = "bomb", .saysSize = ZipLimits::smallSize + 1}}),
                  u"The zip file unpacks to 268439552 bytes, more than 250 times its size"_s);
    archive.setFreeSpace({});
    expectRefused(craftedZip({{.name = "bomb", .saysSize = ZipLimits::smallSize + 1}}),
                  u"The zip file unpacks to 268439552 bytes, more than 250 times its size"_s);
    (void)unzip(craftedZip({{.name = "allowed", .saysSize = ZipLimits::smallSize}}));
    EXPECT_EQ(archive.refusal(), QString());
}

TEST_F(UnzipLimits, LargeArchiveMayUnpackToManyTimesItsSize)
{
    EXPECT_EQ(ZipLimits::room(1000, std::nullopt), ZipLimits::smallSize);
    EXPECT_EQ(ZipLimits::room(1ULL << 30, std::nullopt), 250ULL << 30);
    EXPECT_EQ(ZipLimits::room(1ULL << 30, 100ULL << 30), (100ULL << 30) - ZipLimits::keptFree);
    EXPECT_EQ(ZipLimits::room(std::numeric_limits<std::uint64_t>::max(), std::nullopt),
              std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(ZipLimits::room(1000, 0), 0U);
}

TEST_F(UnzipLimits, EntriesThatShareTheirDataAreRefused)
{
    const QByteArray data(20'000, 'x');
    const QByteArray whole = craftedZip({{.name = "a", .data = data}, {.name = "b", .data = data}});
    expectUnpacked(whole);
    QDir(path(u"out"_s)).removeRecursively();
    expectRefused(craftedZip({{.name = "a", .data = data}, {.name = "b", .data = data, .overlaps = true}}),
                  u"The entries of the zip file overlap"_s);
}

TEST_F(UnzipLimits, MoreEntriesThanAnyDeliveryHasAreRefused)
{
    QList<CraftedEntry> entries(static_cast<qsizetype>(ZipLimits::mostEntries), {.name = "d/", .data = ""});
    const QByteArray most = craftedZip(entries);
    const UnzHandle file(unzOpen64(writeFile(u"most.zip"_s, most).toUtf8().constData()));
    EXPECT_EQ(ZipLimits::refusal(file.get(), static_cast<std::uint64_t>(most.size()), std::nullopt), std::nullopt);
    entries.append(CraftedEntry{.name = "d/", .data = ""});
    expectRefused(craftedZip(entries), u"The zip file has more than 100000 entries"_s);
}

TEST_F(UnzipLimits, WhatInflatesToMoreThanItSaysIsRefusedAndLeavesNothingOfIt)
{
    setFreeSpace(ZipLimits::keptFree + 3 * block);
    writeFile(u"out/sub/before.txt"_s, "kept");
    EXPECT_FALSE(unzipWithPassword(lyingZip(100'000)));
    const QString words = u"The zip file unpacks to more than it says, and than there is room for"_s;
    EXPECT_EQ(archive.refusal(), words);
    EXPECT_EQ(delegate->messages, QStringList{words});
    EXPECT_TRUE(archive.unzippedFiles().isEmpty());
    EXPECT_EQ(QDir(out("sub")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList{u"before.txt"_s});
    EXPECT_EQ(unzipped("sub/before.txt"), "kept");
}

TEST_F(UnzipLimits, WhatInflatesToMoreThanItSaysIsWrittenWhereThereIsRoom)
{
    setFreeSpace(ZipLimits::keptFree + 100'004);
    EXPECT_TRUE(unzipWithPassword(lyingZip(100'000)));
    EXPECT_EQ(archive.refusal(), QString());
    EXPECT_EQ(QFileInfo(out("sub/lying.bin")).size(), 100'000);
}

TEST_F(UnzipLimits, AnEntryWithoutAPasswordGivesNoMoreThanItSays)
{
    EXPECT_FALSE(unzip(craftedZip({{.name = "a.txt", .data = QByteArray(100'000, 'x'), .saysSize = 10}})));
    EXPECT_EQ(archive.refusal(), QString());
    EXPECT_LE(QFileInfo(out("a.txt")).size(), 10);
}

TEST_F(UnzipLimits, TheNextExtractionKnowsNothingOfAnEarlierRefusal)
{
    setFreeSpace(0);
    EXPECT_FALSE(unzip(craftedZip({{.name = "a"}})));
    EXPECT_NE(archive.refusal(), QString());
    setFreeSpace(std::nullopt);
    EXPECT_TRUE(unzip(craftedZip({{.name = "../a"}, {.name = "b"}})));
    EXPECT_EQ(archive.refusal(), QString());
    EXPECT_EQ(archive.numPassedOver(), 1U);
    EXPECT_TRUE(unzip(craftedZip({{.name = "b"}})));
    EXPECT_EQ(archive.numPassedOver(), 0U);
}

} // namespace
