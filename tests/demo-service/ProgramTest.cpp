#include "DemoClient.h"

#include "support/TemporaryHome.h"
#include "support/Waiting.h"

#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <gmock/gmock.h>

using testing::HasSubstr;
using testing::Not;

namespace {

class DemoProgram : public TemporaryHome
{
protected:
    ~DemoProgram() override
    {
        program.kill();
        program.waitForFinished();
    }

    void start(const QStringList& options)
    {
        program.start(QStringLiteral(DEMO_SERVICE_PROGRAM),
                      QStringList{QStringLiteral("--ready-file"), readyFile()} + options);
    }

    [[nodiscard]] QString readyFile() const { return path(QStringLiteral("ready")); }

    // The secure port out of the ready file, 0 when the program did not get ready.
    [[nodiscard]] int securePort() const
    {
        if (!Waiting::until([this] { return QFile::exists(readyFile()); }))
            return 0;
        static const QRegularExpression form(
            QStringLiteral("^SECURE_HOST=https://127\\.0\\.0\\.1:(\\d+)\nFILE_HOST=http://127\\.0\\.0\\.1:\\d+\n$"));
        return form.match(QString::fromUtf8(readFile(readyFile()))).captured(1).toInt();
    }

    QProcess program;
};

std::string replyFrom(int port, const std::string& endpoint, const std::string& body)
{
    httplib::SSLClient client("127.0.0.1", port);
    client.enable_server_certificate_verification(false);
    const auto result = client.Post("/saltine/" + endpoint, body, "application/x-www-form-urlencoded");
    return result ? result->body : "(no reply)";
}

} // namespace

TEST_F(DemoProgram, saysWhereItListensServesAndEnds)
{
    start({QStringLiteral("--password"), QStringLiteral("s3cret&x"), QStringLiteral("--contact-id"),
           QStringLiteral("99"), QStringLiteral("--log-format"), QStringLiteral("no")});
    const int port = securePort();
    ASSERT_NE(port, 0);
    const std::string credentials = "user=demo&pass=s3cret&x";
    EXPECT_EQ(replyFrom(port, "cauthorize2.php", credentials), "OK: 99");
    EXPECT_EQ(replyFrom(port, "is_fti.php", credentials + "&contactID=99"), "no");
    const QByteArray ready = readFile(readyFile());
    program.terminate();
    ASSERT_TRUE(program.waitForFinished());
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(program.exitCode(), 0);
    EXPECT_EQ(program.readAllStandardOutput(), ready);
    EXPECT_FALSE(QFile::exists(readyFile()));
    const std::string log = program.readAllStandardError().toStdString();
    EXPECT_THAT(log, HasSubstr("POST /saltine/cauthorize2.php 200 OK: 99\n"));
    EXPECT_THAT(log, Not(HasSubstr("s3cret")));
}

TEST_F(DemoProgram, asksAgainForTheSegmentThatItWasTold)
{
    start({QStringLiteral("--again"), QStringLiteral("1:mono"), QStringLiteral("--turnaround"), QStringLiteral("0"),
           QStringLiteral("--send-logs"), QStringLiteral("--delivery-option"), QStringLiteral("ShortCaption")});
    const int port = securePort();
    ASSERT_NE(port, 0);
    DemoClient(port).sendWholeJob(1);
    EXPECT_EQ(replyFrom(port, "checkstatus.php", account + "&contactID=4711"),
              "Depo: 883 Smith.txt Splitting\nSegment: 883 1 Processing_Media_Mono 10000 -1\n");
    EXPECT_EQ(replyFrom(port, "get_instructions.php", account + "&app=Quillpost"), "OK SendLogs");
    EXPECT_EQ(replyFrom(port, "miscstuff.php", account + "&depo=883&field=delivery_option"), "ShortCaption");
}

TEST_F(DemoProgram, refusesOptionsThatMakeNoSense)
{
    for (const QStringList& options : {QStringList{QStringLiteral("--again"), QStringLiteral("2:loud")},
                                       QStringList{QStringLiteral("--again"), QStringLiteral("x:mono")},
                                       QStringList{QStringLiteral("--secure-port"), QStringLiteral("65536")},
                                       QStringList{QStringLiteral("--turnaround"), QStringLiteral("-1")},
                                       QStringList{QStringLiteral("--log-format"), QStringLiteral("maybe")},
                                       QStringList{QStringLiteral("--bind"), QStringLiteral("192.0.2.1")}}) {
        start(options);
        ASSERT_TRUE(program.waitForFinished());
        EXPECT_NE(program.exitCode(), 0) << options.join(QLatin1Char(' ')).toStdString();
        EXPECT_FALSE(program.readAllStandardError().isEmpty());
        EXPECT_FALSE(QFile::exists(readyFile()));
    }
}
