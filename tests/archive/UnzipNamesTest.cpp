#include "UnzipFixture.h"

#include "support/RecordedLog.h"

#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

class UnzipNames : public UnzipFixture
{
protected:
    // An entry of each name becomes a file of that very name.
    void expectKept(const QList<QByteArray>& names)
    {
        QList<CraftedEntry> entries;
        QStringList files;
        for (const QByteArray& name : names) {
            entries += {.name = name, .data = "of " + name};
            files += out(name.constData());
        }
        EXPECT_TRUE(unzip(craftedZip(entries)));
        EXPECT_TRUE(delegate->messages.isEmpty());
        EXPECT_EQ(archive.unzippedFiles(), files);
        for (const QByteArray& name : names) {
            EXPECT_EQ(unzipped(name.constData()), "of " + name);
            EXPECT_FALSE(QFileInfo(out(name.constData())).isSymLink());
        }
    }
};

TEST_F(UnzipNames, NamesThatDifferInLetterCaseAloneAreTwoFiles)
{
    expectKept({"Exhibit.txt", "EXHIBIT.TXT", "exhibit.txt", "Sub/a", "sub/a", "SUB/A"});
}

TEST_F(UnzipNames, OfTwoEntriesOfOneNameTheLaterStays)
{
    EXPECT_TRUE(unzip(craftedZip(
        {{.name = "a.txt", .data = "an earlier and longer text"}, {.name = "x/../a.txt", .data = "later"}})));
    EXPECT_EQ(unzipped("a.txt"), "later");
    EXPECT_EQ(archive.unzippedFiles(), (QStringList{out("a.txt"), out("a.txt")}));
}

TEST_F(UnzipNames, NamesThatOtherSystemsKeepForDevicesAreOrdinaryFiles)
{
    expectKept({"CON", "NUL", "nul.txt", "AUX", "COM1", "LPT1.zip", "dev/null", "a.txt:stream", "C:", "name.", "name ",
                " ", "...", "a?b*c<d>e|f\"g", "~", "-rf", "$HOME", "%s%n", "#"});
}

TEST_F(UnzipNames, DevicesOfThisSystemAreOutside)
{
    EXPECT_TRUE(unzip(craftedZip({{.name = "/dev/null"}, {.name = "\\dev\\null"}, {.name = "../../dev/full"}})));
    EXPECT_EQ(delegate->messages.count(cannotOpenOutput), 3);
    EXPECT_EQ(archive.numPassedOver(), 3U);
}

TEST_F(UnzipNames, ControlCharactersAreKept)
{
    expectKept({"a\nb", "\r", "\t", "\x1b[31mred", "\x7f", "a\x01",
                "\xe2\x80\xae"
                "exe.txt"});
}

TEST_F(UnzipNames, BytesThatAreNoUtf8AreReadAsLatin1)
{
    EXPECT_TRUE(unzip(craftedZip({{.name = "M\xfcller"}, {.name = "\xff\xfe"}, {.name = "\xed\xa0\x80"}})));
    EXPECT_EQ(archive.unzippedFiles(), (QStringList{out("Müller"), out("ÿþ"), path(u"out/\u00ed\u00a0\u0080"_s)}));
    EXPECT_TRUE(delegate->messages.isEmpty());
}

TEST_F(UnzipNames, ComponentOfTheLongestNameIsWrittenAndALongerOneIsNot)
{
    expectKept({QByteArray(255, 'n'), QByteArray(255, 'd') + "/a"});
    EXPECT_TRUE(unzip(craftedZip({{.name = QByteArray(256, 'n')}, {.name = "\xc3\xa9" + QByteArray(254, 'n')}})));
    EXPECT_EQ(archive.numPassedOver(), 2U);
}

TEST_F(UnzipNames, WhatIsPassedOverIsInTheLogShortAndNotWithoutEnd)
{
    const RecordedLog log;
    QList<CraftedEntry> entries{{.name = "../outside.txt"}, {.name = QByteArray(300, 'n') + "the end"}};
    EXPECT_TRUE(unzip(craftedZip(entries)));
    const QString words =
        u"[warning] [main] An entry of the zip file is passed over, because its file cannot be opened: "_s;
    EXPECT_TRUE(log.contains(words + out("../outside.txt") + u'\n')) << qPrintable(log.text());
    EXPECT_TRUE(log.contains(words + QString(193, u'n') + u"the end\n"_s)) << qPrintable(log.text());
    entries = QList<CraftedEntry>(500, {.name = ".."});
    EXPECT_TRUE(unzip(craftedZip(entries)));
    EXPECT_EQ(log.count(words), 2 + 20);
    EXPECT_EQ(archive.numPassedOver(), 500U);
}

TEST_F(UnzipNames, WhatTheDelegateLeavesIsNotPassedOver)
{
    writeFile(u"out/a.txt"_s, "old");
    delegate->answer = false;
    EXPECT_TRUE(unzip(craftedZip({{.name = "a.txt"}}), false));
    EXPECT_EQ(archive.numPassedOver(), 0U);
}

} // namespace
