#include "CommandsTest.h"

#include "commands/DownloadFileCommand.h"
#include "commands/RegularDownloadFileCommand.h"

#include <QDir>
#include <QFileInfo>
#include <curl/curl.h>

using namespace Qt::StringLiterals;
using Kind = RecordingObserver::Kind;

class DownloadFileTest : public CommandsTest
{
protected:
    [[nodiscard]] std::shared_ptr<DownloadFileCommand> download(const QString& to) const
    {
        return DownloadFileCommand::downloadFileCommandWithUser(hosts, u"u&é"_s, u"p=w"_s, 4711, 2, to);
    }

    static constexpr const char* endpoint = "test_downloadjob2.php";
};

TEST_F(DownloadFileTest, AResultFileIsAskedForByItsNumber)
{
    service.addOverride(endpoint, {.reply = "bytes"});
    EXPECT_EQ(bodyOf(*download(path(u"a.txt"_s)), endpoint), "user=u&é&pass=p=w&depo=4711&starting_point=0&file_num=2");
    EXPECT_EQ(readFile(path(u"a.txt"_s)), "bytes");
}

TEST_F(DownloadFileTest, AllChunksOfAFileAreWritten)
{
    std::string bytes;
    for (int i = 0; i < 1'000'000; ++i)
        bytes += static_cast<char>(i * 7 % 251);
    service.addOverride(endpoint, {.pieces = {"first ", bytes, std::string(1, '\0'), "last"}});
    const auto command = download(path(u"a.bin"_s));
    run(command);
    expectOnlyEnd(Kind::Done);
    EXPECT_EQ(readFile(path(u"a.bin"_s)).toStdString(), "first " + bytes + std::string(1, '\0') + "last");
    EXPECT_TRUE(command->data().isEmpty());
}

TEST_F(DownloadFileTest, MissingFoldersAreMadeAndAnOldFileIsReplaced)
{
    service.addOverride(endpoint, {.reply = "new"});
    const QString file = writeFile(u"one/old.txt"_s, "old and longer");
    download(file)->execute();
    EXPECT_EQ(readFile(file), "new");
    const QString deep = path(u"two/three/four/a.txt"_s);
    download(deep)->execute();
    EXPECT_EQ(readFile(deep), "new");
}

TEST_F(DownloadFileTest, TheFileIsEmptyFromTheStart)
{
    const auto command = download(path(u"a.txt"_s));
    EXPECT_EQ(readFile(path(u"a.txt"_s)), "");
}

TEST_F(DownloadFileTest, WhatWasReceivedIsWrittenAlsoWhenTheTransferFails)
{
    service.addOverride(endpoint, {.reply = "0123456789", .cutAt = 4, .times = 1});
    const auto cut = download(path(u"a.txt"_s));
    run(cut);
    EXPECT_NE(cut->result(), 0);
    EXPECT_EQ(readFile(path(u"a.txt"_s)), "0123");

    service.addOverride(endpoint, {.status = 500, .reply = "words of an error"});
    const auto refused = download(path(u"b.txt"_s));
    run(refused);
    EXPECT_EQ(refused->result(), CURLE_HTTP_RETURNED_ERROR);
    EXPECT_EQ(readFile(path(u"b.txt"_s)), "");
}

TEST_F(DownloadFileTest, WithoutItsFileTheCommandSendsARequestWithoutABody)
{
    const QString folder = path(u"a.txt"_s);
    ASSERT_TRUE(QDir().mkpath(folder));
    const auto command = download(folder);
    EXPECT_TRUE(log.contains(
        u"[error] [main] DownloadCommand for depo=4711, file=2, unable to create file at path: "_s + folder + u'\n'));
    EXPECT_FALSE(log.contains(u"unable to create folder"_s));
    service.addOverride(endpoint, {.reply = "words"});
    run(command);
    expectOnlyEnd(Kind::Done);
    ASSERT_EQ(service.count(endpoint), 1);
    EXPECT_EQ(service.requests().front().body, "");
    EXPECT_EQ(service.requests().front().method, "GET");
    EXPECT_EQ(command->data(), "words"); // Kept as any reply is, not written.
    EXPECT_TRUE(QDir(folder).isEmpty());
}

TEST_F(DownloadFileTest, AFolderThatCannotBeMadeIsLoggedBeforeItsFile)
{
    writeFile(u"blocked"_s, "a file");
    const QString file = path(u"blocked/sub/a.txt"_s);
    const auto command = download(file);
    const QString start = u"[error] [main] DownloadCommand for depo=4711, file=2, unable to create "_s;
    const QString text = log.text();
    const auto folderLine = text.indexOf(start + u"folder at path: "_s + path(u"blocked/sub"_s) + u'\n');
    const auto fileLine = text.indexOf(start + u"file at path: "_s + file + u'\n');
    EXPECT_GE(folderLine, 0);
    EXPECT_GT(fileLine, folderLine);
    EXPECT_EQ(readFile(path(u"blocked"_s)), "a file");
}

TEST_F(DownloadFileTest, AnyUrlIsFetchedWithAPlainRequest)
{
    const QString file =
        writeFile(u"autorun.inf"_s, "an old one that is a good deal longer than what comes in its place, "
                                    "so that something of it would be seen. It is padded, and padded.");
    const auto command =
        RegularDownloadFileCommand::RegularDownloadFileCommandWithURL(hosts.fileUrl(u"/DemoDisc/autorun.inf"_s), file);
    run(command);
    expectOnlyEnd(Kind::Done);
    ASSERT_EQ(service.requests().size(), 1U);
    EXPECT_TRUE(service.requests().front().onFileHost);
    EXPECT_EQ(service.requests().front().method, "GET");
    EXPECT_EQ(service.requests().front().path, "/DemoDisc/autorun.inf");
    EXPECT_EQ(service.requests().front().body, "");
    EXPECT_EQ(readFile(file).toStdString(), service.requests().front().reply);
}

TEST_F(DownloadFileTest, APlainDownloadMakesNoFolders)
{
    const QString file = path(u"missing/autorun.inf"_s);
    const auto command =
        RegularDownloadFileCommand::RegularDownloadFileCommandWithURL(hosts.fileUrl(u"/DemoDisc/autorun.inf"_s), file);
    EXPECT_TRUE(
        log.contains(u"[error] [main] RegularDownloadFileCommand, unable to create file at path: "_s + file + u'\n'));
    run(command);
    expectOnlyEnd(Kind::Done);
    EXPECT_EQ(service.count("autorun.inf"), 1);
    EXPECT_FALSE(QFileInfo::exists(path(u"missing"_s)));
}

TEST_F(DownloadFileTest, APlainDownloadThatIsCutKeepsWhatCame)
{
    service.addOverride("a.exe", {.pieces = {"0123", "456789"}, .cutAt = 6});
    const auto command =
        RegularDownloadFileCommand::RegularDownloadFileCommandWithURL(hosts.fileUrl(u"/a.exe"_s), path(u"a.exe"_s));
    run(command);
    expectOnlyEnd(Kind::Failed);
    EXPECT_EQ(readFile(path(u"a.exe"_s)), "012345");
}
