#include "CommandsTest.h"

#include "commands/LoginCommand.h"
#include "foundation/Assertion.h"
#include "foundation/MainThread.h"

#include <curl/curl.h>

#include <thread>

using namespace Qt::StringLiterals;
using Kind = RecordingObserver::Kind;

namespace {

// Tells of results that no transfer here would have.
class CommandWithResult : public CUrlCommand
{
public:
    explicit CommandWithResult(int result) : CUrlCommand(u"https://127.0.0.1"_s) { setResult(result); }
};

} // namespace

class TransferTest : public CommandsTest
{
protected:
    [[nodiscard]] std::shared_ptr<CUrlCommand> runTo(const QString& path)
    {
        auto command = commandTo(path);
        run(command);
        return command;
    }
};

TEST_F(TransferTest, ASelfSignedHostIsTrustedOnPurpose)
{
    service.addOverride("any.php", {.reply = "hello"});
    const auto command = runTo(u"/saltine/any.php"_s);
    expectOnlyEnd(Kind::Done);
    EXPECT_EQ(command->result(), 0);
    EXPECT_EQ(command->data(), "hello");
    EXPECT_EQ(command->dataAsString(), u"hello"_s);
    EXPECT_EQ(service.requests().front().method, "GET");
}

TEST_F(TransferTest, OfAReplyInTwoChunksTheLastIsLeft)
{
    service.addOverride("any.php", {.pieces = {"first ", "second"}, .pause = std::chrono::milliseconds(200)});
    const auto command = runTo(u"/saltine/any.php"_s);
    expectOnlyEnd(Kind::Done);
    EXPECT_EQ(command->data(), "second");
}

TEST_F(TransferTest, AnEmptyReplyIsASuccessWithoutText)
{
    service.addOverride("any.php", {.reply = ""});
    const auto command = runTo(u"/saltine/any.php"_s);
    expectOnlyEnd(Kind::Done);
    EXPECT_TRUE(command->data().isEmpty());
    EXPECT_EQ(command->dataAsString(), QString());
}

TEST_F(TransferTest, BytesOutsideAsciiAndNulsInAReplyAreKept)
{
    const std::string latin1("caf\xe9\0\xff.", 7);
    service.addOverride("any.php", {.reply = latin1, .times = 1});
    const auto first = runTo(u"/saltine/any.php"_s);
    EXPECT_EQ(first->data().toStdString(), latin1);
    EXPECT_EQ(first->dataAsString(), QString::fromLatin1("caf\xe9\0\xff.", 7));

    service.addOverride("any.php", {.reply = "Zoë €"});
    EXPECT_EQ(runTo(u"/saltine/any.php"_s)->dataAsString(), u"Zoë €"_s);
    EXPECT_EQ(observer.calls(Kind::Done).size(), 2U);
}

TEST_F(TransferTest, ARedirectIsFollowed)
{
    service.addOverride("old.php", {.reply = "moved", .location = "/saltine/new.php"});
    service.addOverride("new.php", {.reply = "here"});
    const auto command = runTo(u"/saltine/old.php"_s);
    expectOnlyEnd(Kind::Done);
    EXPECT_EQ(command->data(), "here");
    EXPECT_EQ(service.count("new.php"), 1);
}

TEST_F(TransferTest, ALaterValueOfAnOptionReplacesTheEarlierOne)
{
    const auto command = commandTo(u"/saltine/any.php"_s);
    command->setString(u"old=1"_s, CURLOPT_POSTFIELDS);
    command->setString(u"new=ü"_s, CURLOPT_POSTFIELDS);
    service.addOverride("any.php", {.reply = ""});
    EXPECT_EQ(bodyOf(*command, "any.php"), "new=ü");
}

TEST_F(TransferTest, TheUrlThatIsSetLastIsAsked)
{
    service.addOverride("any.php", {.reply = ""});
    const auto command = commandTo(u"/saltine/other.php"_s);
    command->setUrl(hosts.secureUrl(u"/saltine/any.php"_s));
    EXPECT_EQ(command->url(), hosts.secureUrl(u"/saltine/any.php"_s));
    run(command);
    EXPECT_EQ(service.count("any.php"), 1);
    EXPECT_EQ(service.count("other.php"), 0);
}

// Without the fixture's defaults the error status of this reply is no failure.
TEST_F(TransferTest, AnOptionThatIsRefusedStopsTheOptionsAndNotTheTransfer)
{
    constexpr int unknownOption = 0;
    service.addOverride("any.php", {.status = 404, .reply = "nothing here"});
    const auto plain = std::make_shared<CUrlCommand>(hosts.fileUrl(u"/any.php"_s));
    run(plain);
    EXPECT_EQ(plain->result(), CURLE_HTTP_RETURNED_ERROR);

    const auto refused = std::make_shared<CUrlCommand>(hosts.fileUrl(u"/any.php"_s));
    refused->setNumber(1, unknownOption);
    run(refused);
    EXPECT_EQ(service.count("any.php"), 2);
    EXPECT_EQ(refused->result(), 0); // The transfer's own result, in place of the option's.
    EXPECT_EQ(refused->data(), "nothing here");
    EXPECT_EQ(observer.ends().back().kind, Kind::Done);
}

TEST_F(TransferTest, ARefusedOptionNeverPartsTheWriteFunctionFromItsCommand)
{
    service.addOverride("any.php", {.reply = "hello"});
    const auto command = std::make_shared<CUrlCommand>(hosts.fileUrl(u"/any.php"_s));
    constexpr qsizetype longerThanLibcurlTakes = 8'000'001;
    command->setString(QString(longerThanLibcurlTakes, u'x'), CURLOPT_USERAGENT);
    run(command);
    EXPECT_EQ(command->result(), 0);
    EXPECT_EQ(command->data(), "hello");
}

TEST_F(TransferTest, VerboseOutputIsTakenAway)
{
    service.addOverride("any.php", {.reply = "hello"});
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    const auto command = commandTo(u"/saltine/any.php"_s);
    EXPECT_FALSE(command->isVerbose());
    command->setIsVerbose(true);
    run(command);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(command->data(), "hello");
    EXPECT_EQ(log.text(), QString());
}

TEST_F(TransferTest, ACommandWithoutProgressReportsReportsNone)
{
    service.addOverride("cauthorize2.php", {.pieces = {"OK", ": 1"}, .pause = std::chrono::milliseconds(50)});
    run(LoginCommand::loginCommandWithUser(hosts, u"demo"_s, u"demo1234"_s));
    expectOnlyEnd(Kind::Done);
}

TEST_F(TransferTest, ProgressReachesTheObserverOnTheMainThreadBeforeTheSinkReturns)
{
    CUrlCommand command(u"https://127.0.0.1"_s);
    command.setObserver(&observer);
    std::atomic<std::size_t> callsAfterReturn = 0;
    std::atomic<int> returned = -1;
    std::thread worker([&] {
        returned = command.progressCallbackDLTotal(/*dlTotal=*/1, /*dlNow=*/2, /*ulTotal=*/3, /*ulNow=*/4);
        callsAfterReturn = observer.calls().size();
    });
    EXPECT_TRUE(Waiting::until([&] { return callsAfterReturn > 0; }));
    worker.join();
    EXPECT_EQ(returned, 0);
    const auto call = observer.calls().at(0);
    EXPECT_TRUE(call.onMainThread);
    EXPECT_EQ(call.nowDL, 2);
    EXPECT_EQ(call.totalDL, 1);
    EXPECT_EQ(call.nowUL, 4);
    EXPECT_EQ(call.totalUL, 3);
    EXPECT_EQ(call.command, &command);
}

TEST_F(TransferTest, ProgressWithoutAnObserverIsDropped)
{
    CUrlCommand command(u"https://127.0.0.1"_s);
    EXPECT_EQ(command.progressCallbackDLTotal(1, 2, 3, 4), 0);
}

TEST(TransferErrorTest, SuccessIsDescribedToo)
{
    const CUrlCommand command(u"https://127.0.0.1"_s);
    EXPECT_EQ(command.result(), 0);
    EXPECT_EQ(command.error(),
              (Error{u"com.ostrova.Quillpost.SyncBaseErrorDomain"_s, 1, u"cURL error( 0, No error )"_s}));
}

TEST(TransferErrorTest, AFailureIsDescribedInLibcurlsWords)
{
    const CommandWithResult command(CURLE_COULDNT_CONNECT);
    EXPECT_EQ(command.error(), (Error{u"com.ostrova.Quillpost.SyncBaseErrorDomain"_s, 1,
                                      u"cURL error( 7, Couldn't connect to server )"_s}));
}

TEST(TransferErrorTest, AnUnknownCodeIsDescribedAsLibcurlDescribesIt)
{
    const CommandWithResult command(9999);
    EXPECT_EQ(command.error(),
              (Error{u"com.ostrova.Quillpost.SyncBaseErrorDomain"_s, 1, u"cURL error( 9999, Unknown error )"_s}));
}

TEST(TransferOptionTest, AValueOfAnUnknownClassIsAProgrammingError)
{
    CUrlCommand command(u"https://127.0.0.1"_s);
    if constexpr (Assertion::stopsTheProgram) {
        EXPECT_DEATH(command.setObject(std::monostate(), CURLOPT_NOBODY), "unknown object class");
    } else {
        const RecordedLog log;
        command.setObject(std::monostate(), CURLOPT_NOBODY);
        EXPECT_TRUE(log.contains(u"unknown object class"_s));
        EXPECT_EQ(command.result(), 0);
    }
}
