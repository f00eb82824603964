#include "UnzipFixture.h"

#include "support/RecordedLog.h"

#include <QDir>
#include <QFileInfo>

#include <sys/stat.h>
#include <utility>
#include <vector>

namespace {

class Unzip : public UnzipFixture
{};

TEST_F(Unzip, EntriesAreWrittenBelowTheFolderAndListedInTheirOrder)
{
    const QByteArray large = QByteArray("0123456789").repeated(5000);
    EXPECT_TRUE(unzip(craftedZip({{.name = "b.txt", .data = "b"},
                                  {.name = "sub/deep/a.bin", .data = large},
                                  {.name = "empty.txt", .data = ""}})));
    EXPECT_EQ(unzipped("b.txt"), "b");
    EXPECT_EQ(unzipped("sub/deep/a.bin"), large);
    EXPECT_TRUE(QFileInfo(out("empty.txt")).isFile());
    EXPECT_EQ(archive.unzippedFiles(), (QStringList{out("b.txt"), out("sub/deep/a.bin"), out("empty.txt")}));
    EXPECT_TRUE(delegate->messages.isEmpty());
}

TEST_F(Unzip, FolderEntriesMakeFoldersAndAreNotListedAsFiles)
{
    EXPECT_TRUE(unzip(craftedZip({{.name = "one/", .data = ""}, {.name = "two\\three\\", .data = "ignored"}})));
    EXPECT_TRUE(QFileInfo(out("one")).isDir());
    EXPECT_TRUE(QFileInfo(out("two/three")).isDir());
    EXPECT_TRUE(archive.unzippedFiles().isEmpty());
    EXPECT_TRUE(delegate->messages.isEmpty());
}

TEST_F(Unzip, BackslashesInNamesSeparateFolders)
{
    EXPECT_TRUE(unzip(craftedZip({{.name = "viewer\\bin\\run.exe"}, {.name = "viewer\\read/me.txt"}})));
    EXPECT_EQ(unzipped("viewer/bin/run.exe"), "data");
    EXPECT_EQ(unzipped("viewer/read/me.txt"), "data");
    EXPECT_EQ(archive.unzippedFiles().value(0), out("viewer/bin/run.exe"));
}

TEST_F(Unzip, ExistingFileIsReplacedWithoutAskingWhenOverwritingIsOn)
{
    writeFile(QStringLiteral("out/a.txt"), "an older and longer text");
    delegate->answer = false;
    EXPECT_TRUE(unzip(craftedZip({{.name = "a.txt"}})));
    EXPECT_EQ(unzipped("a.txt"), "data");
    EXPECT_TRUE(delegate->asked.isEmpty());
}

TEST_F(Unzip, ExistingFileIsLeftWhenTheDelegateSaysSoAndTheExtractionGoesOn)
{
    writeFile(QStringLiteral("out/a.txt"), "old");
    delegate->answer = false;
    EXPECT_TRUE(unzip(craftedZip({{.name = "a.txt"}, {.name = "b.txt"}}), false));
    EXPECT_EQ(unzipped("a.txt"), "old");
    EXPECT_EQ(unzipped("b.txt"), "data");
    EXPECT_EQ(delegate->asked, QStringList{out("a.txt")});
    EXPECT_EQ(archive.unzippedFiles(), QStringList{out("b.txt")});
    EXPECT_TRUE(delegate->messages.isEmpty());
}

TEST_F(Unzip, ExistingFileIsReplacedWhenTheDelegateAgreesOrDoesNotAnswerOrIsMissing)
{
    const QByteArray zip = craftedZip({{.name = "a.txt"}});
    for (const std::shared_ptr<ZipArchiveDelegate>& asked :
         {std::shared_ptr<ZipArchiveDelegate>(delegate), std::make_shared<ZipArchiveDelegate>(),
          std::shared_ptr<ZipArchiveDelegate>()}) {
        writeFile(QStringLiteral("out/a.txt"), "old");
        archive.setDelegate(asked);
        EXPECT_TRUE(unzip(zip, false));
        EXPECT_EQ(unzipped("a.txt"), "data");
    }
    EXPECT_EQ(delegate->asked.size(), 1);
}

TEST_F(Unzip, FileBearsTheDateOfItsEntry)
{
    EXPECT_TRUE(unzip(craftedZip({{.name = "a.txt"}})));
    EXPECT_EQ(QFileInfo(out("a.txt")).lastModified(), QDateTime(QDate(2011, 3, 4), QTime(10, 20, 30)));
}

TEST_F(Unzip, StoredYearOfZeroKeepsTheTimeOfExtraction)
{
    const QDateTime before = QDateTime::currentDateTime().addSecs(-2);
    EXPECT_TRUE(unzip(craftedZip({{.name = "none.txt", .dosDate = 0, .dosTime = 0},
                                  {.name = "first.txt", .dosDate = (1 << 5) | 1},
                                  {.name = "second.txt", .dosDate = (1 << 9) | (1 << 5) | 1, .dosTime = 0}})));
    EXPECT_GE(QFileInfo(out("none.txt")).lastModified(), before);
    EXPECT_GE(QFileInfo(out("first.txt")).lastModified(), before);
    EXPECT_EQ(QFileInfo(out("second.txt")).lastModified(), QDate(1981, 1, 1).startOfDay());
}

TEST_F(Unzip, DateThatIsInNoCalendarRunsOver)
{
    EXPECT_TRUE(unzip(craftedZip({{.name = "a.txt", .dosDate = (31 << 9) | (4 << 5) | 31, .dosTime = 0},
                                  {.name = "b.txt", .dosDate = 31 << 9, .dosTime = 0}})));
    EXPECT_EQ(QFileInfo(out("a.txt")).lastModified(), QDate(2011, 5, 1).startOfDay());
    EXPECT_EQ(QFileInfo(out("b.txt")).lastModified(), QDate(2010, 11, 30).startOfDay());
}

TEST_F(Unzip, CorruptEntryLeavesItsFileAndEndsTheExtraction)
{
    int progressCalls = 0;
    archive.setProgressBlock([&](int, std::uint64_t, std::uint64_t) { ++progressCalls; });
    EXPECT_FALSE(unzip(craftedZip({{.name = "a.txt"}, {.name = "b.txt", .wrongChecksum = true}, {.name = "c.txt"}})));
    EXPECT_EQ(unzipped("b.txt"), "data");
    EXPECT_FALSE(QFile::exists(out("c.txt")));
    EXPECT_EQ(archive.unzippedFiles(), (QStringList{out("a.txt"), out("b.txt")}));
    EXPECT_EQ(delegate->messages, QStringList{QStringLiteral("file was unzipped but failed crc check")});
    EXPECT_EQ(progressCalls, 1);
}

TEST_F(Unzip, EntryThatCannotBeReadEndsTheExtractionAfterItsProgress)
{
    std::vector<int> percentages;
    archive.setProgressBlock([&](int percentage, std::uint64_t, std::uint64_t) { percentages.push_back(percentage); });
    EXPECT_FALSE(
        unzip(craftedZip({{.name = "a.txt"}, {.name = "b.txt", .data = "not deflated", .method = 8}, {.name = "c"}})));
    EXPECT_EQ(unzipped("a.txt"), "data");
    EXPECT_FALSE(QFile::exists(out("b.txt")));
    EXPECT_FALSE(QFile::exists(out("c")));
    EXPECT_EQ(delegate->messages, QStringList{QStringLiteral("Failed to read zip file")});
    EXPECT_EQ(percentages, (std::vector<int>{33, 66}));
    EXPECT_EQ(archive.unzippedFiles(), QStringList{out("a.txt")});
}

TEST_F(Unzip, EntryThatBreaksInTheMiddleKeepsWhatWasRead)
{
    // Level 0 packs plain blocks, each with its length and the complement of it in front.
    archive.setCompression(0);
    const QByteArray data(200'000, 'd');
    const QString zip = path(QStringLiteral("blocks.zip"));
    ASSERT_TRUE(archive.CreateZipFile2(zip));
    ASSERT_TRUE(archive.addDataToZip(data, {}, QStringLiteral("blocks")));
    ASSERT_TRUE(archive.CloseZipFile2());
    QByteArray bytes = readFile(zip);
    const auto at = [&](qsizetype i) { return static_cast<unsigned char>(bytes.at(i)); };
    const qsizetype firstBlock = 30 + 6;
    const qsizetype firstLength = at(firstBlock + 1) + 256 * at(firstBlock + 2);
    const qsizetype secondLength = firstBlock + 5 + firstLength + 1;
    bytes[secondLength] = static_cast<char>(at(secondLength) ^ 0xff);
    EXPECT_FALSE(unzip(bytes));
    EXPECT_EQ(delegate->messages, QStringList{QStringLiteral("Failed to read zip file")});
    const QByteArray kept = unzipped("blocks");
    EXPECT_GT(kept.size(), 8'000);
    EXPECT_LE(kept.size(), firstLength);
    EXPECT_TRUE(data.startsWith(kept));
    EXPECT_EQ(archive.unzippedFiles(), QStringList{out("blocks")});
}

TEST_F(Unzip, EntryOfUnknownMethodCannotBeOpened)
{
    EXPECT_FALSE(unzip(craftedZip({{.name = "a.txt", .method = 99}, {.name = "b.txt"}})));
    EXPECT_EQ(delegate->messages, QStringList{QStringLiteral("Error occurs")});
    EXPECT_FALSE(QFile::exists(out("b.txt")));
}

TEST_F(Unzip, EntryMissingFromTheDirectoryIsAnError)
{
    QByteArray zip = craftedZip({{.name = "a.txt"}, {.name = "b.txt"}});
    zip[zip.lastIndexOf("PK\x01\x02")] = 'X';
    EXPECT_FALSE(unzip(zip));
    EXPECT_EQ(unzipped("a.txt"), "data");
    EXPECT_EQ(delegate->messages, QStringList{QStringLiteral("Error occurs")});
}

TEST_F(Unzip, ArchiveWhoseFirstEntryIsDamagedFailsAndSaysSoTwice)
{
    QByteArray zip = craftedZip({{.name = "a.txt"}});
    zip[zip.lastIndexOf("PK\x01\x02")] = 'X';
    EXPECT_FALSE(unzip(zip));
    EXPECT_EQ(delegate->messages, (QStringList{QStringLiteral("Failed"), QStringLiteral("Error occurs")}));
}

TEST_F(Unzip, ProgressOfThreeEntriesIsAThirdTwoThirdsAndAllEvenWhenOneIsPassedOver)
{
    std::vector<std::vector<std::uint64_t>> calls;
    archive.setProgressBlock([&](int percentage, std::uint64_t done, std::uint64_t total) {
        calls.push_back({static_cast<std::uint64_t>(percentage), done, total});
    });
    EXPECT_TRUE(unzip(craftedZip({{.name = "a.txt"}, {.name = "../b.txt"}, {.name = "c/"}})));
    EXPECT_EQ(calls, (std::vector<std::vector<std::uint64_t>>{{33, 1, 3}, {66, 2, 3}, {100, 3, 3}}));
}

TEST_F(Unzip, NumberOfEntriesIsKeptAndWrittenToTheSystemLog)
{
    const RecordedLog log;
    EXPECT_TRUE(archive.UnzipOpenFile(writeFile(QStringLiteral("a.zip"), craftedZip({{.name = "a"}, {.name = "b"}}))));
    EXPECT_EQ(archive.numFiles(), 2U);
    EXPECT_TRUE(log.contains(QStringLiteral("[info] [main] 2 entries in the zip file")));
    EXPECT_FALSE(archive.UnzipOpenFile(path(QStringLiteral("none.zip"))));
    EXPECT_EQ(archive.numFiles(), 0U);
}

TEST_F(Unzip, WhatIsNoArchiveDoesNotOpen)
{
    EXPECT_FALSE(archive.UnzipOpenFile(path(QStringLiteral("missing.zip"))));
    EXPECT_FALSE(archive.UnzipOpenFile(path(QStringLiteral("."))));
    EXPECT_FALSE(archive.UnzipOpenFile(QString()));
    EXPECT_FALSE(archive.UnzipOpenFile(writeFile(QStringLiteral("a.zip"), "")));
    EXPECT_FALSE(archive.UnzipOpenFile(writeFile(QStringLiteral("a.zip"), QByteArray(100'000, 'x'))));
    EXPECT_FALSE(archive.UnzipOpenFile(writeFile(QStringLiteral("a.zip"), craftedZip({}))));
    const QString pipe = path(QStringLiteral("pipe.zip"));
    ASSERT_EQ(mkfifo(qUtf8Printable(pipe), 0600), 0);
    EXPECT_FALSE(archive.UnzipOpenFile(pipe));
}

TEST_F(Unzip, ArchiveCutAnywhereIsRefusedOrReadWithoutHarm)
{
    const QByteArray zip = craftedZip({{.name = "sub/a.txt", .data = QByteArray(40, 'a')}, {.name = "b.txt"}});
    for (qsizetype size = 0; size <= zip.size(); ++size) {
        const bool success = unzip(zip.first(size));
        // Within the last record, what is left may still tell where everything lies.
        if (size < zip.size() - 22 || size == zip.size()) {
            EXPECT_EQ(success, size == zip.size()) << size;
        } else if (success) {
            EXPECT_EQ(archive.unzippedFiles().size(), 2);
        }
    }
}

TEST_F(Unzip, ArchiveWithAnyByteChangedIsReadWithoutHarm)
{
    const QByteArray zip = craftedZip({{.name = "sub/a.txt"}, {.name = "b.txt"}});
    for (qsizetype i = 0; i < zip.size(); ++i) {
        for (const char change : {'\x2f', '\xff'}) {
            QByteArray changed = zip;
            changed[i] = change;
            (void)unzip(changed);
        }
    }
    EXPECT_EQ(QDir(path(QString())).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
              (QStringList{QStringLiteral("a.zip"), QStringLiteral("out")}));
}

TEST_F(Unzip, ArchiveOfAsManyEntriesAsTheOldFormatCanCountIsReadToItsEnd)
{
    const QList<CraftedEntry> entries(65535, {.name = "d/", .data = ""});
    EXPECT_TRUE(unzip(craftedZip(entries)));
    EXPECT_EQ(archive.numFiles(), 65535U);
    EXPECT_TRUE(delegate->messages.isEmpty());
}

TEST_F(Unzip, WithoutAnOpenArchiveExtractionFailsAndClosingSucceeds)
{
    EXPECT_FALSE(archive.UnzipFileTo(path(QStringLiteral("out")), true));
    EXPECT_EQ(delegate->messages, (QStringList{QStringLiteral("Failed"), QStringLiteral("Error occurs")}));
    EXPECT_TRUE(archive.UnzipCloseFile());
}

TEST_F(Unzip, EachOpeningStartsANewListAndAnotherOpeningClosesTheFirst)
{
    EXPECT_TRUE(unzip(craftedZip({{.name = "a.txt"}})));
    EXPECT_EQ(archive.unzippedFiles().size(), 1);
    EXPECT_TRUE(unzip(craftedZip({{.name = "b.txt"}})));
    EXPECT_EQ(archive.unzippedFiles(), QStringList{out("b.txt")});
    const QString zip = writeFile(QStringLiteral("c.zip"), craftedZip({{.name = "c.txt"}}));
    EXPECT_TRUE(archive.UnzipOpenFile(zip));
    EXPECT_TRUE(archive.UnzipOpenFile(zip));
    EXPECT_TRUE(archive.unzippedFiles().isEmpty());
}

TEST_F(Unzip, ExtractsTwiceFromOneOpening)
{
    ASSERT_TRUE(archive.UnzipOpenFile(writeFile(QStringLiteral("a.zip"), craftedZip({{.name = "a"}, {.name = "b"}}))));
    EXPECT_TRUE(archive.UnzipFileTo(path(QStringLiteral("one")), true));
    EXPECT_TRUE(archive.UnzipFileTo(path(QStringLiteral("two")), true));
    EXPECT_EQ(readFile(path(QStringLiteral("two/b"))), "data");
    EXPECT_EQ(archive.unzippedFiles().size(), 4);
}

TEST_F(Unzip, NamesAreDecodedAsSetAndFromLatin1WhereThatFails)
{
    EXPECT_EQ(archive.stringEncoding(), QStringConverter::Utf8);
    EXPECT_TRUE(unzip(craftedZip({{.name = "caf\xC3\xA9"}, {.name = "caf\xE9!"}, {.name = "caf\xE8!"}})));
    EXPECT_EQ(archive.unzippedFiles(), (QStringList{out("caf\u00e9"), out("caf\u00e9!"), out("caf\u00e8!")}));
    archive.setStringEncoding(QStringConverter::Latin1);
    EXPECT_TRUE(unzip(craftedZip({{.name = "caf\xC3\xA9"}})));
    EXPECT_EQ(archive.unzippedFiles(), QStringList{out("caf\u00c3\u00a9")});
}

} // namespace
