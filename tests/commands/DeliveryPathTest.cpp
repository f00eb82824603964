#include "commands/DeliveryPath.h"

#include <QByteArray>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(DeliveryPathTest, EveryFileTypeHasItsFolderInAnyLetterCase)
{
    const std::pair<QString, QString> rows[] = {
        {u"txt"_s, u"Universal_ASCII"_s}, {u"cms"_s, u"TrialDirector"_s}, {u"ptf"_s, u"LiveNote"_s},
        {u"vid"_s, u"LiveNote"_s},        {u"set"_s, u"Ostrova"_s},       {u"sync"_s, u"Ostrova"_s},
        {u"xmef"_s, u"TextMap"_s},        {u"clt"_s, u"Clarity_Legal"_s}, {u"zip"_s, u"Korvane"_s},
        {u"mdb"_s, u"Sanction"_s},        {u"xml"_s, u"Ostrova"_s}};
    for (const auto& [extension, folder] : rows) {
        EXPECT_EQ(DeliveryPath::fileTypeSubFolder(u"a."_s + extension), folder) << qPrintable(extension);
        EXPECT_EQ(DeliveryPath::fileTypeSubFolder(u"a b."_s + extension.toUpper()), folder) << qPrintable(extension);
    }
}

TEST(DeliveryPathTest, AnyOtherFileHasNoFolder)
{
    for (const QString& name : {u"a.pdf"_s, u"a"_s, u"txt"_s, u".txt"_s, u"a."_s, u"a.txt.gz"_s, u"a.xm"_s, QString()})
        EXPECT_EQ(DeliveryPath::fileTypeSubFolder(name), std::nullopt) << qPrintable(name);
}

TEST(DeliveryPathTest, TheSuffixesCountLetterCaseThoughTheExtensionDoesNot)
{
    EXPECT_EQ(DeliveryPath::fileTypeSubFolder(u"Smith_rl.xml"_s), u"RealLegal"_s);
    EXPECT_EQ(DeliveryPath::fileTypeSubFolder(u"Smith_RL.XML"_s), u"Ostrova"_s);
    EXPECT_EQ(DeliveryPath::fileTypeSubFolder(u"Smith_rl.XML"_s), u"Ostrova"_s);
    EXPECT_EQ(DeliveryPath::fileTypeSubFolder(u"Smithrl.xml"_s), u"Ostrova"_s);
    EXPECT_EQ(DeliveryPath::fileTypeSubFolder(u"Smith_id.mdb"_s), u"inData"_s);
    EXPECT_EQ(DeliveryPath::fileTypeSubFolder(u"Smith_ID.mdb"_s), u"Sanction"_s);
    EXPECT_EQ(DeliveryPath::fileTypeSubFolder(u"Smith_id.MDB"_s), u"Sanction"_s);
}

TEST(DeliveryPathTest, AListedNameIsThePathsLastComponent)
{
    EXPECT_EQ(DeliveryPath::fileName(u"a.txt"_s), u"a.txt"_s);
    EXPECT_EQ(DeliveryPath::fileName(u"C:\\out\\Smith_rl.xml"_s), u"Smith_rl.xml"_s);
    EXPECT_EQ(DeliveryPath::fileName(u"\\\\server\\share\\Zoë 1.txt"_s), u"Zoë 1.txt"_s);
    EXPECT_EQ(DeliveryPath::fileName(u"out/b.txt"_s), u"b.txt"_s);
    EXPECT_EQ(DeliveryPath::fileName(u"out\\x\\..\\b.txt\\"_s), u"b.txt"_s);
    EXPECT_EQ(DeliveryPath::fileName(u".hidden"_s), u".hidden"_s);
}

TEST(DeliveryPathTest, AListedNameCannotLeadAway)
{
    EXPECT_EQ(DeliveryPath::fileName(u"../../etc/passwd"_s), u"passwd"_s);
    EXPECT_EQ(DeliveryPath::fileName(u"/etc/passwd"_s), u"passwd"_s);
    EXPECT_EQ(DeliveryPath::fileName(QString::fromLatin1("a\0/b\0.txt", 9)), u"b.txt"_s);
    for (const QString& name : {u".."_s, u"."_s, u"/"_s, u"\\"_s, u"..\\.."_s, u"/.."_s, u"a/.."_s, QString(),
                                QString(QChar(u'\0')), u".\0."_s})
        EXPECT_EQ(DeliveryPath::fileName(name), QString()) << qPrintable(name);
}

TEST(DeliveryPathTest, ALongNameIsCutToWhatAFileSystemTakesAndKeepsItsExtension)
{
    const QString name = DeliveryPath::fileName(QString(5000, u'a') + u".xml"_s);
    EXPECT_EQ(name.size(), 255);
    EXPECT_TRUE(name.startsWith(QString(242, u'a') + u'~'));
    EXPECT_TRUE(name.endsWith(u".xml"_s));
    EXPECT_EQ(DeliveryPath::fileName(QString(255, u'a')), QString(255, u'a'));
    EXPECT_TRUE(DeliveryPath::fileName(QString(256, u'a')).startsWith(QString(246, u'a') + u'~'));
    EXPECT_EQ(DeliveryPath::fileName(QString(256, u'a')).size(), 255);

    const QString wide = DeliveryPath::fileName(u"😀"_s.repeated(1000) + u".txt"_s);
    EXPECT_LE(wide.toUtf8().size(), 255);
    EXPECT_GT(wide.toUtf8().size(), 240);
    EXPECT_TRUE(wide.startsWith(u"😀"_s.repeated(60) + u'~')) << "no character is cut in two";

    // An extension that is itself too long is not one.
    EXPECT_EQ(DeliveryPath::fileName(u"a."_s + QString(5000, u'b')).toUtf8().size(), 255);
}

TEST(DeliveryPathTest, LongNamesThatDifferWhereTheyAreCutStayTwoFiles)
{
    const QString same(5000, u'a');
    const QString one = DeliveryPath::fileName(same + u"1.xml"_s);
    EXPECT_NE(one, DeliveryPath::fileName(same + u"2.xml"_s));
    EXPECT_EQ(one, DeliveryPath::fileName(same + u"1.xml"_s)) << "a second delivery replaces the first";
    EXPECT_EQ(DeliveryPath::fileName(one), one);
    EXPECT_NE(DeliveryPath::jobFolder(same + u"1"_s), DeliveryPath::jobFolder(same + u"2"_s));
}

TEST(DeliveryPathTest, NamesThatDifferInLetterCaseAloneStayTwoFiles)
{
    EXPECT_EQ(DeliveryPath::fileName(u"Smith.TXT"_s), u"Smith.TXT"_s);
    EXPECT_EQ(DeliveryPath::fileName(u"smith.txt"_s), u"smith.txt"_s);
    EXPECT_NE(DeliveryPath::fileName(QString(300, u'a')), DeliveryPath::fileName(QString(300, u'A')));
    EXPECT_NE(DeliveryPath::jobFolder(u"Smith"_s), DeliveryPath::jobFolder(u"SMITH"_s));
}

TEST(DeliveryPathTest, NamesThatOtherSystemsKeepForDevicesAreOrdinaryNames)
{
    for (const QString& name : {u"CON"_s, u"nul.txt"_s, u"AUX."_s, u"COM1 "_s, u"a.txt:stream"_s, u"C:"_s, u"[1m"_s}) {
        EXPECT_EQ(DeliveryPath::fileName(name), name);
        EXPECT_EQ(DeliveryPath::jobFolder(name), name);
    }
    EXPECT_EQ(DeliveryPath::fileName(u"/dev/null"_s), u"null"_s);
    EXPECT_EQ(DeliveryPath::jobFolder(u"/dev/null"_s), u"_dev_null"_s);
}

TEST(DeliveryPathTest, AJobFolderOfTooManyFoldersIsMadeOneComponent)
{
    const QString most = u"d/"_s.repeated(511) + u"ab"_s;
    EXPECT_EQ(DeliveryPath::jobFolder(most), most);
    const QString name = DeliveryPath::jobFolder(most + u"c"_s);
    EXPECT_TRUE(name.startsWith(u"d_d_d_"_s));
    EXPECT_FALSE(name.contains(u'/'));
    EXPECT_EQ(name.toUtf8().size(), 255);
}

TEST(DeliveryPathTest, AJobFolderStaysAsTheServiceNamesIt)
{
    for (const QString& name :
         {u"Smith_030411_4711"_s, u"no_caption"_s, QString(), u"A & B v. C..D"_s, u"year/case"_s, u"Zoë \"x\""_s})
        EXPECT_EQ(DeliveryPath::jobFolder(name), name);
}

TEST(DeliveryPathTest, AJobFolderThatWouldLeadAwayIsMadeOneComponent)
{
    EXPECT_EQ(DeliveryPath::jobFolder(u".."_s), u"__"_s);
    EXPECT_EQ(DeliveryPath::jobFolder(u"/etc/cron.d"_s), u"_etc_cron.d"_s);
    EXPECT_EQ(DeliveryPath::jobFolder(u"../../evil_030411_1"_s), u".._.._evil_030411_1"_s);
    EXPECT_EQ(DeliveryPath::jobFolder(u"a/../../b"_s), u"a_.._.._b"_s);
    EXPECT_EQ(DeliveryPath::jobFolder(QString::fromLatin1(".\0./x", 5)), u".._x"_s);
    EXPECT_EQ(DeliveryPath::jobFolder(QString(5000, u'a')).size(), 255);
    EXPECT_EQ(DeliveryPath::jobFolder(u"ok/"_s + u"é"_s.repeated(5000)).toUtf8().size(), 3 + 255);
}
