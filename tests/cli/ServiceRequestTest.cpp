#include "cli/ServiceRequest.h"

#include "commands/LoginCommand.h"
#include "demo-service/Service.h"
#include "support/TemporaryHome.h"
#include "support/Waiting.h"

#include <limits>

namespace {

class ServiceRequestTest : public TemporaryHome
{
protected:
    ServiceRequestTest()
    {
        processor.start();
        processor.setMaxNumOfCommandThreads(std::numeric_limits<int>::max());
    }
    ~ServiceRequestTest() override
    {
        processor.stop();
        processor.cancelRunningCommands();
        EXPECT_TRUE(processor.waitUntilAllEnded(std::chrono::seconds(20)));
    }

    // What the request's end was told: the reply, or that it failed.
    QString replyTo(const QString& password)
    {
        const auto hosts = ServiceHosts::fromTexts(QString::fromStdString(service.secureHost()),
                                                   QString::fromStdString(service.fileHost()));
        int ends = 0;
        QString told;
        const ServiceRequest request(
            processor,
            LoginCommand::loginCommandWithUser(std::get<ServiceHosts>(hosts), QStringLiteral("demo"), password),
            [&](CUrlCommand& command, bool succeeded) {
                ++ends;
                told = succeeded ? command.dataAsString() : QStringLiteral("(failed)");
            });
        EXPECT_TRUE(Waiting::until([&] { return ends > 0; }));
        EXPECT_TRUE(Waiting::until([&] { return processor.currentNumOfCommandThreads() == 0; }));
        EXPECT_EQ(ends, 1);
        return told;
    }

    DemoService::Service service;
    CUrlCommandProcessor processor;
};

} // namespace

TEST_F(ServiceRequestTest, endsOnceWithTheReply)
{
    EXPECT_EQ(replyTo(QStringLiteral("demo1234")), QStringLiteral("OK: 4711"));
    EXPECT_EQ(replyTo(QStringLiteral("wrong")), QStringLiteral("Invalid user name or password"));
}

TEST_F(ServiceRequestTest, endsOnceWhenTheTransferFails)
{
    service.addOverride("cauthorize2.php", {.status = 500});
    EXPECT_EQ(replyTo(QStringLiteral("demo1234")), QStringLiteral("(failed)"));
}
