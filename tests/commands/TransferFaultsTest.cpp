#include "CommandsTest.h"

#include "commands/LoginCommand.h"

#include <curl/curl.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using Kind = RecordingObserver::Kind;

namespace {

// Nobody else can listen on it, nor does the holder, as long as this lives.
class SilentPort
{
public:
    SilentPort() : m_socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        EXPECT_EQ(::bind(m_socket, reinterpret_cast<const sockaddr*>(&address), size), 0);
        EXPECT_EQ(::getsockname(m_socket, reinterpret_cast<sockaddr*>(&address), &size), 0);
        m_number = ntohs(address.sin_port);
    }
    ~SilentPort() { ::close(m_socket); }
    SilentPort(const SilentPort&) = delete;
    SilentPort& operator=(const SilentPort&) = delete;
    [[nodiscard]] int number() const { return m_number; }

private:
    int m_socket;
    int m_number = 0;
};

} // namespace

class TransferFaultsTest : public CommandsTest
{
protected:
    void expectFailure(const CUrlCommand& command, int result) const
    {
        expectOnlyEnd(Kind::Failed);
        EXPECT_EQ(command.result(), result);
        EXPECT_TRUE(log.contains(u"[error] [command] cURL error code = %1\n"_s.arg(result)));
        EXPECT_EQ(command.error().code, 1);
    }
};

TEST_F(TransferFaultsTest, AnErrorStatusIsAFailureReportedOnceOnTheMainThread)
{
    service.addOverride("any.php", {.status = 404, .reply = "nothing here"});
    const auto command = commandTo(u"/saltine/any.php"_s);
    run(command);
    expectFailure(*command, CURLE_HTTP_RETURNED_ERROR);
    EXPECT_EQ(log.count(u"cURL error code"_s), 1);
}

TEST_F(TransferFaultsTest, FailureBeginsAtStatusFourHundred)
{
    for (const auto& [status, kind] : {std::pair{399, Kind::Done},
                                       {400, Kind::Failed},
                                       {403, Kind::Failed},
                                       {500, Kind::Failed},
                                       {503, Kind::Failed}}) {
        service.addOverride("any.php", {.status = status, .reply = "words", .times = 1});
        run(commandTo(u"/saltine/any.php"_s));
        EXPECT_EQ(observer.calls().back().kind, kind) << status;
    }
    EXPECT_EQ(observer.calls().size(), 5U);
}

TEST_F(TransferFaultsTest, ALoopOfRedirectsEndsInAFailure)
{
    service.addOverride("any.php", {.location = "/saltine/any.php"});
    const auto command = commandTo(u"/saltine/any.php"_s);
    run(command);
    expectFailure(*command, CURLE_TOO_MANY_REDIRECTS);
    EXPECT_EQ(service.count("any.php"), 31);
}

TEST_F(TransferFaultsTest, ARefusedConnectionIsAFailure)
{
    const SilentPort port;
    const auto command = std::make_shared<CUrlCommand>(u"https://127.0.0.1:%1/saltine/any.php"_s.arg(port.number()));
    run(command);
    expectFailure(*command, CURLE_COULDNT_CONNECT);
    EXPECT_TRUE(command->data().isEmpty());
}

TEST_F(TransferFaultsTest, AUrlThatIsNoneIsAFailure)
{
    const auto command = std::make_shared<CUrlCommand>(QString());
    run(command);
    expectOnlyEnd(Kind::Failed);
    EXPECT_NE(command->result(), 0);
}

TEST_F(TransferFaultsTest, AConnectionCutInTheMiddleOfAReplyIsAFailure)
{
    service.addOverride("any.php", {.reply = "a reply of some length", .cutAt = 7});
    const auto command = commandTo(u"/saltine/any.php"_s);
    run(command);
    expectOnlyEnd(Kind::Failed);
    EXPECT_NE(command->result(), 0);
    EXPECT_EQ(command->data(), "a reply");
}

TEST_F(TransferFaultsTest, AConnectionResetBeforeTheReplyIsAFailure)
{
    service.addOverride("any.php", {.reset = true});
    const auto command = commandTo(u"/saltine/any.php"_s);
    run(command);
    expectOnlyEnd(Kind::Failed);
    EXPECT_NE(command->result(), 0);
    EXPECT_TRUE(command->data().isEmpty());
}

TEST_F(TransferFaultsTest, CancellingEndsAHangingTransferSoon)
{
    service.addOverride("any.php", {.hang = true});
    const auto command = commandTo(u"/saltine/any.php"_s);
    command->setObserver(&observer);
    processor.postCommand(command);
    ASSERT_TRUE(Waiting::until([&] { return service.hanging() == 1; }));
    processor.cancelRunningCommands();
    EXPECT_TRUE(Waiting::until([&] { return processor.currentNumOfCommandThreads() == 0; }));
    EXPECT_EQ(service.hanging(), 1); // The service did not let go of it.
    expectOnlyEnd(Kind::Failed);
    EXPECT_NE(command->result(), 0);
}

TEST_F(TransferFaultsTest, ACommandCancelledBeforeItBeginsAsksNothing)
{
    const auto command = commandTo(u"/saltine/any.php"_s);
    command->cancel();
    run(command);
    expectFailure(*command, CURLE_ABORTED_BY_CALLBACK);
    EXPECT_TRUE(service.requests().empty());
}

TEST_F(TransferFaultsTest, ASlowReplyIsWaitedFor)
{
    service.addOverride("any.php", {.reply = "at last", .delay = std::chrono::milliseconds(300)});
    const auto command = commandTo(u"/saltine/any.php"_s);
    run(command);
    expectOnlyEnd(Kind::Done);
    EXPECT_EQ(command->data(), "at last");
}
