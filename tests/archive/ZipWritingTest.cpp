#include "UnzipFixture.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <zlib.h>

#include <sys/stat.h>
#include <unistd.h>

namespace {

class ZipWriting : public UnzipFixture
{
protected:
    QString zip() const { return path(QStringLiteral("made.zip")); }
    bool extract(const QString& password = {})
    {
        if (!archive.UnzipOpenFilePassword(zip(), password))
            return false;
        const bool success = archive.UnzipFileTo(path(QStringLiteral("out")), true);
        EXPECT_TRUE(archive.UnzipCloseFile());
        return success;
    }
};

TEST_F(ZipWriting, FileComesBackWithItsBytesNameAndDate)
{
    const QString file = writeFile(QStringLiteral("in/a.txt"), QByteArray("transcript ").repeated(20'000));
    QFile opened(file);
    ASSERT_TRUE(opened.open(QIODevice::ReadWrite));
    const QDateTime date(QDate(2009, 9, 21), QTime(13, 14, 16));
    ASSERT_TRUE(opened.setFileTime(date, QFileDevice::FileModificationTime));
    opened.close();
    const QString link = path(QStringLiteral("link"));
    ASSERT_EQ(symlink(qUtf8Printable(file), qUtf8Printable(link)), 0);

    ASSERT_TRUE(archive.CreateZipFile2(zip()));
    EXPECT_TRUE(archive.addFileToZip(link, QStringLiteral("sub/n\u00e4me.txt")));
    EXPECT_TRUE(archive.CloseZipFile2());
    EXPECT_LT(QFileInfo(zip()).size(), 10'000);
    EXPECT_TRUE(extract());
    EXPECT_EQ(unzipped("sub/n\u00e4me.txt"), readFile(file));
    EXPECT_EQ(QFileInfo(out("sub/n\u00e4me.txt")).lastModified(), date);
}

TEST_F(ZipWriting, NameOutsideAsciiIsMarkedAsUtf8)
{
    ASSERT_TRUE(archive.CreateZipFile2(zip()));
    EXPECT_TRUE(archive.addDataToZip("a", {}, QStringLiteral("a")));
    EXPECT_TRUE(archive.addDataToZip("b", {}, QStringLiteral("\u00e4")));
    EXPECT_TRUE(archive.CloseZipFile2());
    const QByteArray bytes = readFile(zip());
    const qsizetype second = bytes.indexOf("PK\x03\x04", 4);
    EXPECT_EQ(bytes.at(7) & 0x08, 0);
    EXPECT_EQ(bytes.at(second + 7) & 0x08, 0x08);
}

TEST_F(ZipWriting, CompressionLevelIsFollowed)
{
    EXPECT_EQ(archive.compression(), -1);
    archive.setCompression(0);
    ASSERT_TRUE(archive.CreateZipFile2(zip()));
    EXPECT_TRUE(archive.addDataToZip(QByteArray(50'000, 'x'), {}, QStringLiteral("a")));
    EXPECT_TRUE(archive.CloseZipFile2());
    EXPECT_GT(QFileInfo(zip()).size(), 50'000);
    EXPECT_TRUE(extract());
    EXPECT_EQ(unzipped("a"), QByteArray(50'000, 'x'));
}

TEST_F(ZipWriting, EntryWithoutADateThatAnArchiveCanHoldIsDated1980)
{
    EXPECT_EQ(ZipArchive::Date1980(), QDate(1980, 1, 1).startOfDay());
    ASSERT_TRUE(archive.CreateZipFile2(zip()));
    EXPECT_TRUE(archive.addDataToZip("a", {}, QStringLiteral("a")));
    for (const int year : {1970, 2108}) {
        const FileAttributes::Attributes attributes{.modificationDate = QDate(year, 6, 6).startOfDay()};
        EXPECT_TRUE(archive.addDataToZip("b", attributes, QString::number(year)));
    }
    EXPECT_TRUE(archive.CloseZipFile2());
    const QByteArray bytes = readFile(zip());
    qsizetype at = -1;
    for (int i = 0; i < 3; ++i) {
        at = bytes.indexOf("PK\x03\x04", at + 1);
        ASSERT_GE(at, 0);
        EXPECT_EQ(bytes.sliced(at + 10, 4), QByteArray("\0\0\x21\0", 4));
    }
}

TEST_F(ZipWriting, EncryptedEntryOpensWithItsPasswordAlone)
{
    const QByteArray secret = QByteArray("secret text ").repeated(1000);
    ASSERT_TRUE(archive.CreateZipFile2Password(zip(), QStringLiteral("pass")));
    EXPECT_TRUE(archive.addDataToZip(secret, {}, QStringLiteral("a.txt")));
    EXPECT_TRUE(archive.CloseZipFile2());
    EXPECT_EQ(readFile(zip()).at(6) & 1, 1);

    EXPECT_TRUE(extract(QStringLiteral("pass")));
    EXPECT_EQ(unzipped("a.txt"), secret);
    EXPECT_TRUE(archive.password().isEmpty());
    EXPECT_FALSE(extract(QStringLiteral("word")));
    EXPECT_EQ(delegate->messages, QStringList{QStringLiteral("Error occurs")});
    EXPECT_FALSE(extract());
}

TEST_F(ZipWriting, EncryptedEntriesOfEveryKindComeBack)
{
    // More than any buffer on the way, of two bytes only, so that it deflates to many bytes all the same.
    QByteArray large;
    for (std::uint32_t i = 1; large.size() < 300'000; i = i * 1664525 + 1013904223)
        large += (i >> 31) != 0 ? 'a' : 'b';
    ASSERT_TRUE(archive.CreateZipFile2Password(zip(), QStringLiteral("pass")));
    EXPECT_TRUE(archive.addDataToZip(large, {}, QStringLiteral("large")));
    EXPECT_TRUE(archive.addDataToZip("", {}, QStringLiteral("empty")));
    archive.setCompression(0);
    EXPECT_TRUE(archive.addDataToZip("packed, not deflated", {}, QStringLiteral("level0")));
    archive.setPassword({});
    EXPECT_TRUE(archive.addDataToZip("plain", {}, QStringLiteral("plain")));
    EXPECT_TRUE(archive.CloseZipFile2());
    EXPECT_TRUE(extract(QStringLiteral("pass")));
    EXPECT_EQ(unzipped("large"), large);
    EXPECT_EQ(unzipped("empty"), "");
    EXPECT_EQ(unzipped("level0"), "packed, not deflated");
    EXPECT_EQ(unzipped("plain"), "plain");
}

// Both were written by another program, the second one not deflated.
TEST_F(ZipWriting, EncryptedEntriesOfOthersAreRead)
{
    const QByteArray archives[] = {
        QByteArray::fromHex(
            "504b03040a00090000001c46755d8e45d159180000000c00000005001c00662e7478745554090003f75a016bf75a016b7578"
            "0b0001040000000004000000005ec95ef1c941f24830da9a2b874508a33d69daf0fcb09cfe504b07088e45d159180000000c"
            "000000504b01021e030a00090000001c46755d8e45d159180000000c000000050018000000000001000000a4810000000066"
            "2e7478745554050003f75a016b75780b000104000000000400000000504b050600000000010001004b000000670000000000"),
        QByteArray::fromHex(
            "504b03040a00090000001c46755d8e45d159180000000c00000005001c00662e7478745554090003f75a016bf75a016b7578"
            "0b000104000000000400000000881ace1be4d65f2d87ae6241e0377a22d69e85df2fc36101504b07088e45d159180000000c"
            "000000504b01021e030a00090000001c46755d8e45d159180000000c000000050018000000000000000000a4810000000066"
            "2e7478745554050003f75a016b75780b000104000000000400000000504b050600000000010001004b000000670000000000")};
    for (const QByteArray& bytes : archives) {
        writeFile(QStringLiteral("made.zip"), bytes);
        EXPECT_FALSE(extract(QStringLiteral("word")));
        EXPECT_TRUE(extract(QStringLiteral("pass")));
        EXPECT_EQ(unzipped("f.txt"), "hello there\n");
        EXPECT_TRUE(QFile::remove(out("f.txt")));
    }
}

TEST_F(ZipWriting, EncryptedEntryThatWasChangedFailsItsCheck)
{
    archive.setCompression(0);
    ASSERT_TRUE(archive.CreateZipFile2Password(zip(), QStringLiteral("pass")));
    EXPECT_TRUE(archive.addDataToZip(QByteArray(100, 'x'), {}, QStringLiteral("a")));
    EXPECT_TRUE(archive.CloseZipFile2());
    QByteArray bytes = readFile(zip());
    // The last byte of the data: before it lie the header, the name, the cipher's header and the block's.
    const qsizetype last = 30 + 1 + 12 + 5 + 99;
    bytes[last] = static_cast<char>(bytes.at(last) ^ 1);
    writeFile(QStringLiteral("made.zip"), bytes);
    EXPECT_FALSE(extract(QStringLiteral("pass")));
    EXPECT_EQ(delegate->messages, QStringList{QStringLiteral("file was unzipped but failed crc check")});
    EXPECT_EQ(unzipped("a"), QByteArray(99, 'x') + 'y');
    bytes[30 + 1 + 12 + 1] = 'L';
    writeFile(QStringLiteral("made.zip"), bytes);
    EXPECT_FALSE(extract(QStringLiteral("pass")));
    EXPECT_EQ(delegate->messages.last(), QStringLiteral("Failed to read zip file"));
}

TEST_F(ZipWriting, PasswordDoesNotHinderPlainEntries)
{
    ASSERT_TRUE(archive.CreateZipFile2(zip()));
    EXPECT_TRUE(archive.addDataToZip("plain", {}, QStringLiteral("a.txt")));
    EXPECT_TRUE(archive.CloseZipFile2());
    EXPECT_TRUE(extract(QStringLiteral("pass")));
    EXPECT_EQ(unzipped("a.txt"), "plain");
}

TEST_F(ZipWriting, PasswordThatIsNotAsciiIsRefusedRatherThanDropped)
{
    ASSERT_TRUE(archive.CreateZipFile2Password(zip(), QStringLiteral("p\u00e4ss")));
    EXPECT_FALSE(archive.addDataToZip("a", {}, QStringLiteral("a")));
    archive.setPassword(QStringLiteral("pass"));
    EXPECT_TRUE(archive.addDataToZip("a", {}, QStringLiteral("a")));
    EXPECT_TRUE(archive.CloseZipFile2());
    EXPECT_FALSE(extract(QStringLiteral("p\u00e4ss")));
    EXPECT_EQ(delegate->messages, QStringList{QStringLiteral("Error occurs")});
}

TEST_F(ZipWriting, AppendingKeepsTheEntriesThatAreThereAndCreatingDoesNot)
{
    EXPECT_FALSE(archive.CreateZipFile2(zip(), true));
    for (const auto& [name, append] : {std::pair("a", false), std::pair("b", true)}) {
        ASSERT_TRUE(archive.CreateZipFile2(zip(), append));
        EXPECT_TRUE(archive.addDataToZip(name, {}, QString::fromUtf8(name)));
        EXPECT_TRUE(archive.CloseZipFile2());
    }
    EXPECT_TRUE(extract());
    EXPECT_EQ(archive.unzippedFiles(), (QStringList{out("a"), out("b")}));
    ASSERT_TRUE(archive.CreateZipFile2(zip()));
    EXPECT_TRUE(archive.addDataToZip("c", {}, QStringLiteral("c")));
    EXPECT_TRUE(archive.CloseZipFile2());
    EXPECT_TRUE(extract());
    EXPECT_EQ(archive.unzippedFiles(), QStringList{out("c")});
}

TEST_F(ZipWriting, WhatCannotBeAddedIsRefused)
{
    const QString file = writeFile(QStringLiteral("a.txt"), "a");
    EXPECT_FALSE(archive.addFileToZip(file, QStringLiteral("a")));
    EXPECT_FALSE(archive.addDataToZip("a", {}, QStringLiteral("a")));
    EXPECT_FALSE(archive.CloseZipFile2());
    EXPECT_FALSE(archive.CreateZipFile2(path(QStringLiteral("none/a.zip"))));
    EXPECT_FALSE(archive.CreateZipFile2(path(QStringLiteral("."))));

    ASSERT_TRUE(archive.CreateZipFile2(zip()));
    EXPECT_FALSE(archive.addFileToZip(path(QStringLiteral("none")), QStringLiteral("a")));
    EXPECT_FALSE(archive.addFileToZip(path(QString()), QStringLiteral("a")));
    const QString pipe = path(QStringLiteral("pipe"));
    ASSERT_EQ(mkfifo(qUtf8Printable(pipe), 0600), 0);
    EXPECT_FALSE(archive.addFileToZip(pipe, QStringLiteral("a")));
    EXPECT_FALSE(archive.addDataToZip("a", {}, QString()));
    EXPECT_FALSE(archive.addDataToZip("a", {}, QString(70'000, u'n')));
    EXPECT_FALSE(archive.addDataToZip("a", {}, QStringLiteral("a\0b")));
    EXPECT_TRUE(archive.addFileToZip(file, QString(5000, u'n')));
    EXPECT_TRUE(archive.CloseZipFile2());
    ASSERT_TRUE(archive.UnzipOpenFile(zip()));
    EXPECT_EQ(archive.numFiles(), 1U);
}

TEST_F(ZipWriting, ArchiveIsCompleteWhenItsObjectGoes)
{
    {
        ZipArchive writer;
        ASSERT_TRUE(writer.CreateZipFile2(zip()));
        EXPECT_TRUE(writer.addDataToZip("kept", {}, QStringLiteral("a")));
    }
    EXPECT_TRUE(extract());
    EXPECT_EQ(unzipped("a"), "kept");
}

TEST_F(ZipWriting, DelegateHearsWhatTheArchiveSays)
{
    archive.OutputErrorMessage(QStringLiteral("words"));
    EXPECT_EQ(delegate->messages, QStringList{QStringLiteral("words")});
    delegate->answer = false;
    EXPECT_FALSE(archive.OverWrite(QStringLiteral("/a")));
    EXPECT_EQ(delegate->asked, QStringList{QStringLiteral("/a")});
    archive.setDelegate(nullptr);
    archive.OutputErrorMessage(QStringLiteral("lost"));
    EXPECT_TRUE(archive.OverWrite(QStringLiteral("/a")));
}

} // namespace
