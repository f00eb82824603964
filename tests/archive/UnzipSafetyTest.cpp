#include "UnzipFixture.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <sys/stat.h>
#include <unistd.h>

namespace {

// Unix mode of a symbolic link, as archivers keep it.
constexpr std::uint32_t linkAttributes = 0120777U << 16;

class UnzipSafety : public UnzipFixture
{
protected:
    // Extracts an entry of that name and one after it, and expects the first to be refused without harm to the other.
    void expectRefused(const QByteArray& name)
    {
        delegate->messages.clear();
        EXPECT_TRUE(unzip(craftedZip({{.name = name}, {.name = "after.txt"}}))) << name.toStdString();
        EXPECT_EQ(delegate->messages, QStringList{cannotOpenOutput}) << name.toStdString();
        EXPECT_EQ(archive.unzippedFiles(), QStringList{out("after.txt")});
    }
    void link(const QString& target, const char* name)
    {
        QDir().mkpath(QFileInfo(out(name)).path());
        ASSERT_EQ(symlink(qUtf8Printable(target), qUtf8Printable(out(name))), 0);
    }
    QStringList homeEntries() const { return QDir(path(QString())).entryList(QDir::AllEntries | QDir::NoDotAndDotDot); }
};

TEST_F(UnzipSafety, NamesThatLeadOutsideAreRefused)
{
    for (const char* name : {"../escaped.txt", "sub/../../escaped.txt", "..\\escaped.txt", "sub\\..\\..\\escaped.txt",
                             "./../escaped.txt", "..", "../out/../escaped.txt", "../escaped/", "a/b/../../../escaped"})
        expectRefused(name);
    EXPECT_EQ(homeEntries(), (QStringList{QStringLiteral("a.zip"), QStringLiteral("out")}));
}

TEST_F(UnzipSafety, AbsoluteNamesAreRefused)
{
    const QByteArray outside = path(QStringLiteral("escaped.txt")).toUtf8();
    expectRefused(outside);
    expectRefused("/");
    expectRefused(QByteArray(outside).replace('/', '\\'));
    expectRefused("/" + outside + "/");
    EXPECT_EQ(homeEntries(), (QStringList{QStringLiteral("a.zip"), QStringLiteral("out")}));
}

TEST_F(UnzipSafety, NamesThatStayInsideAreTakenAsTheyResolve)
{
    EXPECT_TRUE(unzip(craftedZip({{.name = "sub/../a.txt"},
                                  {.name = ".//b.txt"},
                                  {.name = "...txt"},
                                  {.name = "C:\\w.txt"},
                                  {.name = "./", .data = ""}})));
    EXPECT_EQ(archive.unzippedFiles(), (QStringList{out("a.txt"), out("b.txt"), out("...txt"), out("C:/w.txt")}));
    EXPECT_EQ(unzipped("C:/w.txt"), "data");
    EXPECT_TRUE(delegate->messages.isEmpty());
}

TEST_F(UnzipSafety, EmptyNameAndNameWithANulAreRefused)
{
    expectRefused("");
    expectRefused(".");
    expectRefused(QByteArray("a\0b.txt", 7));
    EXPECT_FALSE(QFile::exists(out("a")));
}

TEST_F(UnzipSafety, VeryLongNamesAreRefused)
{
    expectRefused(QByteArray(5000, 'n'));
    expectRefused(QByteArray(300, 'd') + "/a.txt");
    expectRefused(QByteArray(65535, 'n'));
}

TEST_F(UnzipSafety, LongPathOfShortFoldersIsWritten)
{
    QByteArray name;
    while (name.size() < 5000)
        name += QByteArray(50, 'd') + "/";
    EXPECT_TRUE(unzip(craftedZip({{.name = name + "a.txt"}})));
    EXPECT_EQ(archive.unzippedFiles().size(), 1);
    EXPECT_TRUE(delegate->messages.isEmpty());
    // Too long a path for the folder to be removed with the home.
    EXPECT_EQ(QProcess::execute(QStringLiteral("rm"), {QStringLiteral("-rf"), path(QStringLiteral("out"))}), 0);
}

TEST_F(UnzipSafety, LinkAtTheFilesPlaceIsNotFollowed)
{
    const QString outside = writeFile(QStringLiteral("outside.txt"), "untouched");
    link(outside, "a.txt");
    link(path(QStringLiteral("made.txt")), "b.txt");
    expectRefused("a.txt");
    expectRefused("b.txt");
    EXPECT_EQ(readFile(outside), "untouched");
    EXPECT_FALSE(QFile::exists(path(QStringLiteral("made.txt"))));
}

TEST_F(UnzipSafety, LinkOnTheWayIsNotFollowed)
{
    QDir().mkpath(path(QStringLiteral("elsewhere")));
    link(path(QStringLiteral("elsewhere")), "sub");
    link(path(QStringLiteral("elsewhere")), "deep/er/sub");
    expectRefused("sub/a.txt");
    expectRefused("sub/more/a.txt");
    expectRefused("deep/er/sub/a.txt");
    EXPECT_TRUE(unzip(craftedZip({{.name = "sub/folder/", .data = ""}})));
    EXPECT_TRUE(QDir(path(QStringLiteral("elsewhere"))).isEmpty());
}

TEST_F(UnzipSafety, DestinationItselfMayBeReachedOverALink)
{
    QDir().mkpath(path(QStringLiteral("elsewhere")));
    ASSERT_EQ(symlink(qUtf8Printable(path(QStringLiteral("elsewhere"))), qUtf8Printable(path(QStringLiteral("out")))),
              0);
    EXPECT_TRUE(unzip(craftedZip({{.name = "a.txt"}})));
    EXPECT_EQ(readFile(path(QStringLiteral("elsewhere/a.txt"))), "data");
}

TEST_F(UnzipSafety, EntriesThatAreLinksBecomePlainFiles)
{
    const QByteArray target = path(QString()).toUtf8();
    EXPECT_TRUE(unzip(craftedZip({{.name = "sub", .data = target, .externalAttributes = linkAttributes},
                                  {.name = "sub/escaped.txt"},
                                  {.name = "after.txt"}})));
    EXPECT_FALSE(QFileInfo(out("sub")).isSymLink());
    EXPECT_EQ(unzipped("sub"), target);
    EXPECT_FALSE(QFile::exists(path(QStringLiteral("escaped.txt"))));
    EXPECT_EQ(delegate->messages, QStringList{cannotOpenOutput});
    EXPECT_EQ(archive.unzippedFiles(), (QStringList{out("sub"), out("after.txt")}));
}

TEST_F(UnzipSafety, LinkCountsAsExistingWhenOverwritingIsOff)
{
    link(path(QStringLiteral("nowhere")), "a.txt");
    delegate->answer = false;
    EXPECT_TRUE(unzip(craftedZip({{.name = "a.txt"}}), false));
    EXPECT_EQ(delegate->asked, QStringList{out("a.txt")});
    EXPECT_TRUE(delegate->messages.isEmpty());
}

TEST_F(UnzipSafety, FolderOrPipeAtTheFilesPlaceIsLeftAlone)
{
    QDir().mkpath(out("folder"));
    ASSERT_EQ(mkfifo(qUtf8Printable(out("pipe")), 0600), 0);
    expectRefused("folder");
    expectRefused("pipe");
    EXPECT_TRUE(QFileInfo(out("folder")).isDir());
}

TEST_F(UnzipSafety, FileAtAFoldersPlaceIsLeftAlone)
{
    writeFile(QStringLiteral("out/sub"), "file");
    expectRefused("sub/a.txt");
    EXPECT_EQ(unzipped("sub"), "file");
}

TEST_F(UnzipSafety, DestinationThatCannotBeMadeRefusesEveryEntryWhichIsNoFailure)
{
    writeFile(QStringLiteral("out"), "a file");
    EXPECT_TRUE(unzip(craftedZip({{.name = "a.txt"}, {.name = "b/c.txt"}, {.name = "d/", .data = ""}})));
    EXPECT_EQ(delegate->messages, (QStringList{cannotOpenOutput, cannotOpenOutput}));
    EXPECT_TRUE(archive.unzippedFiles().isEmpty());
}

TEST_F(UnzipSafety, RefusalsWithoutADelegateAreSilent)
{
    archive.setDelegate(nullptr);
    EXPECT_TRUE(unzip(craftedZip({{.name = "../a.txt"}, {.name = "b.txt"}})));
    EXPECT_EQ(archive.unzippedFiles(), QStringList{out("b.txt")});
}

} // namespace
