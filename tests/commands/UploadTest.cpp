#include "CommandsTest.h"

#include "commands/DebugUploadCommand.h"
#include "commands/UploadCommand.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;
using Kind = RecordingObserver::Kind;

class UploadTest : public CommandsTest
{
protected:
    [[nodiscard]] std::shared_ptr<UploadCommand> upload(const QString& file, const QString& name) const
    {
        return UploadCommand::uploadCommandWithUser(hosts, u"demo"_s, u"demo1234"_s, job, file, name);
    }
    // The parts of the only request, as "name|file name|content type|content".
    [[nodiscard]] std::vector<std::string> partsSent() const
    {
        const auto requests = service.requests();
        EXPECT_EQ(requests.size(), 1U);
        std::vector<std::string> texts;
        if (!requests.empty()) {
            for (const auto& part : requests.front().parts)
                texts.push_back(part.name + "|" + part.fileName + "|" + part.contentType + "|" + part.content);
        }
        return texts;
    }

    const std::shared_ptr<Job> job = Job::job();
};

TEST_F(UploadTest, AJobFileIsSentInFivePartsInTheirOrder)
{
    const QByteArray bytes("ID3\0\r\n--\xff", 9);
    const auto command = upload(writeFile(u"a.mp3"_s, bytes), u"5120-883-1-a.mp3"_s);
    ASSERT_TRUE(command);
    command->execute();
    EXPECT_EQ(service.requests().at(0).path, "/saltine/test_custupload2.php");
    EXPECT_EQ(service.requests().at(0).method, "POST");
    EXPECT_EQ(partsSent(),
              (std::vector<std::string>{"user|||demo", "pass|||demo1234", "file_size|||9",
                                        "file|5120-883-1-a.mp3|application/octet-stream|" + bytes.toStdString(),
                                        "submit|||Submit Query"}));
}

TEST_F(UploadTest, TheLogIsSentInTheSamePartsToItsOwnPlace)
{
    const auto command = DebugUploadCommand::uploadCommandWithUser(hosts, u"demo"_s, u"demo1234"_s,
                                                                   writeFile(u"q.log"_s, "a line\n"), u"q.log"_s);
    ASSERT_TRUE(command);
    run(command);
    EXPECT_EQ(service.requests().at(0).path, "/saltine/qpt_debug_upload.php");
    EXPECT_EQ(partsSent(),
              (std::vector<std::string>{"user|||demo", "pass|||demo1234", "file_size|||7",
                                        "file|q.log|application/octet-stream|a line\n", "submit|||Submit Query"}));
    EXPECT_EQ(command->dataAsString(), u"UPLOAD COMPLETE"_s);
    EXPECT_EQ(service.logs().at(0).content, "a line\n");
    EXPECT_TRUE(service.refusals().empty());
}

TEST_F(UploadTest, AnEmptyFileIsSentWithSizeNothingAndAnEmptyPart)
{
    const auto command = upload(writeFile(u"a.mp3"_s, ""), u"x.mp3"_s);
    ASSERT_TRUE(command);
    EXPECT_EQ(command->fileSize(), 0);
    run(command);
    EXPECT_EQ(observer.ends().at(0).kind, Kind::Done);
    const auto parts = partsSent();
    ASSERT_EQ(parts.size(), 5U);
    EXPECT_EQ(parts.at(2), "file_size|||0");
    EXPECT_EQ(parts.at(3), "file|x.mp3|application/octet-stream|");
}

TEST_F(UploadTest, ADestinationNameOutsideAsciiIsSentAsUtf8)
{
    const auto command = upload(writeFile(u"a.mp3"_s, "a"), u"5120-883-Zoë Ärger €.mp3"_s);
    ASSERT_TRUE(command);
    EXPECT_EQ(command->destFileName(), u"5120-883-Zoë Ärger €.mp3"_s);
    command->execute();
    EXPECT_EQ(partsSent().at(3), "file|5120-883-Zoë Ärger €.mp3|application/octet-stream|a");
}

TEST_F(UploadTest, AMissingFileGivesNoCommandAndALine)
{
    const QString missing = path(u"missing.mp3"_s);
    EXPECT_EQ(upload(missing, u"x.mp3"_s), nullptr);
    EXPECT_TRUE(log.contains(u"[error] [main] Unable to get attributes of file: "_s + missing + u'\n'));
    EXPECT_EQ(DebugUploadCommand::uploadCommandWithUser(hosts, u"u"_s, u"p"_s, missing, u"x"_s), nullptr);
    EXPECT_EQ(log.count(u"Unable to get attributes of file: "_s), 2);
}

TEST_F(UploadTest, AFileThatCannotBeReadGivesNoCommandAndALine)
{
    const QString folder = path(u"folder.mp3"_s);
    ASSERT_TRUE(QDir().mkpath(folder));
    EXPECT_EQ(upload(folder, u"x.mp3"_s), nullptr);
    EXPECT_TRUE(log.contains(u"[error] [main] Unable to get data of file: "_s + folder + u'\n'));
    EXPECT_EQ(DebugUploadCommand::uploadCommandWithUser(hosts, u"u"_s, u"p"_s, folder, u"x"_s), nullptr);
    EXPECT_EQ(log.count(u"Unable to get data of file: "_s), 2);
}

TEST_F(UploadTest, ThePathIsStandardized)
{
    writeFile(u"sub/a.mp3"_s, "a");
    const auto command = upload(path(u"sub/./../sub//a.mp3"_s), u"x.mp3"_s);
    ASSERT_TRUE(command);
    EXPECT_EQ(command->filePath(), path(u"sub/a.mp3"_s));
}

TEST_F(UploadTest, TheFileIsSentAsItWasWhenTheCommandWasMade)
{
    const auto command = upload(writeFile(u"a.mp3"_s, "before"), u"x.mp3"_s);
    ASSERT_TRUE(command);
    writeFile(u"a.mp3"_s, "after and longer");
    command->execute();
    EXPECT_EQ(partsSent().at(2), "file_size|||6");
    EXPECT_EQ(partsSent().at(3), "file|x.mp3|application/octet-stream|before");
}

TEST_F(UploadTest, ALargeFileThatIsCutMeanwhileFailsTheUploadAndNotTheProgram)
{
    const QString path = writeFile(u"a.mp3"_s, QByteArray(6'000'000, 'a'));
    const auto command = upload(path, u"5120-883-1-a.mp3"_s);
    ASSERT_TRUE(command);
    ASSERT_TRUE(QFile::resize(path, 1000));
    command->execute();
    EXPECT_NE(command->result(), 0);
    EXPECT_TRUE(log.text().contains(u"The file was changed while it was uploaded"_s));
}

TEST_F(UploadTest, AFileThatGrewSinceItsSizeWasTakenIsReadToItsEnd)
{
    // What the system makes up as it is read has no size.
    const QString path = u"/proc/self/limits"_s;
    ASSERT_EQ(QFileInfo(path).size(), 0);
    const auto command = upload(path, u"5120-883-1-a.mp3"_s);
    ASSERT_TRUE(command);
    command->execute();
    EXPECT_NE(partsSent().at(3).find("Max open files"), std::string::npos);
}

// The method and the body stay the same on these, so the file has to be sent once more, from its beginning.
TEST_F(UploadTest, AfterARedirectThatKeepsTheRequestTheWholeFileIsSentAgain)
{
    const QByteArray bytes(3'000'000, 'a');
    service.addOverride("test_custupload2.php",
                        {.status = 307, .location = service.secureHost() + "/saltine/elsewhere.php", .times = 1});
    service.addOverride("elsewhere.php", {.reply = "UPLOAD COMPLETE"});
    const auto command = upload(writeFile(u"a.mp3"_s, bytes), u"5120-883-1-a.mp3"_s);
    ASSERT_TRUE(command);
    command->execute();
    EXPECT_EQ(command->result(), 0);
    const auto requests = service.requests("elsewhere.php");
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests.front().method, "POST");
    ASSERT_EQ(requests.front().parts.size(), 5U);
    EXPECT_TRUE(requests.front().parts.at(3).content == bytes.toStdString());
}

TEST_F(UploadTest, AnEmptyFileSurvivesSuchARedirectToo)
{
    service.addOverride("test_custupload2.php",
                        {.status = 308, .location = service.secureHost() + "/saltine/elsewhere.php", .times = 1});
    const auto command = upload(writeFile(u"a.mp3"_s, {}), u"5120-883-1-a.mp3"_s);
    ASSERT_TRUE(command);
    command->execute();
    const auto requests = service.requests("elsewhere.php");
    ASSERT_EQ(requests.size(), 1U);
    ASSERT_EQ(requests.front().parts.size(), 5U);
    EXPECT_EQ(requests.front().parts.at(3).content, "");
}

TEST_F(UploadTest, UploadsReportTheirProgressOnTheMainThread)
{
    const QByteArray bytes(3'000'000, 'x');
    const auto command = upload(writeFile(u"a.mp3"_s, bytes), u"x.mp3"_s);
    ASSERT_TRUE(command);
    run(command);
    const auto progress = observer.calls(Kind::Progress);
    ASSERT_FALSE(progress.empty());
    EXPECT_TRUE(std::ranges::all_of(observer.calls(), &RecordingObserver::Call::onMainThread));
    EXPECT_TRUE(std::ranges::is_sorted(progress, {}, &RecordingObserver::Call::nowUL));
    EXPECT_GT(progress.back().nowUL, 3'000'000);
    EXPECT_EQ(progress.back().nowUL, progress.back().totalUL);
    EXPECT_EQ(observer.ends().size(), 1U);
    EXPECT_EQ(observer.calls().back().kind, Kind::Done);
    EXPECT_EQ(service.requests().at(0).parts.at(3).content, bytes.toStdString());
}

TEST_F(UploadTest, AnUploadThatFailsIsReportedOnce)
{
    service.addOverride("test_custupload2.php", {.status = 500});
    const auto command = upload(writeFile(u"a.mp3"_s, "a"), u"x.mp3"_s);
    ASSERT_TRUE(command);
    run(command);
    ASSERT_EQ(observer.ends().size(), 1U);
    EXPECT_EQ(observer.ends().at(0).kind, Kind::Failed);
}

TEST_F(UploadTest, CancellingEndsAHangingUpload)
{
    service.addOverride("test_custupload2.php", {.hang = true});
    const auto command = upload(writeFile(u"a.mp3"_s, "a"), u"x.mp3"_s);
    ASSERT_TRUE(command);
    command->setObserver(&observer);
    processor.postCommand(command);
    ASSERT_TRUE(Waiting::until([&] { return service.hanging() == 1; }));
    processor.cancelRunningCommands();
    ASSERT_TRUE(Waiting::until([&] { return processor.currentNumOfCommandThreads() == 0; }));
    ASSERT_EQ(observer.ends().size(), 1U);
    EXPECT_EQ(observer.ends().at(0).kind, Kind::Failed);
}

TEST_F(UploadTest, WhatAnUploadBelongsToIsNotKeptAliveByIt)
{
    const auto command = upload(writeFile(u"a.mp3"_s, "a"), u"x.mp3"_s);
    ASSERT_TRUE(command);
    EXPECT_EQ(command->job(), job);
    EXPECT_EQ(command->uploadedObject(), nullptr);
    {
        const auto media = MediaFile::mediaFileWithPath(path(u"a.mp3"_s));
        command->setUploadedObject(media);
        EXPECT_EQ(command->uploadedObject(), media);
    }
    EXPECT_EQ(command->uploadedObject(), nullptr);

    const auto debug = DebugUploadCommand::uploadCommandWithUser(hosts, u"u"_s, u"p"_s, path(u"a.mp3"_s), u"x"_s);
    ASSERT_TRUE(debug);
    EXPECT_EQ(debug->uploadedObject(), nullptr);
    debug->setUploadedObject(log.fileLogger());
    EXPECT_EQ(debug->uploadedObject(), log.fileLogger());
}
