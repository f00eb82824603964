#include "app/DemoServiceChild.h"

#include "support/TemporaryHome.h"

#include <QFile>
#include <gmock/gmock.h>

#include <csignal>

using testing::HasSubstr;

namespace {

class DemoChild : public TemporaryHome
{
protected:
    // An executable script.
    [[nodiscard]] QString script(const QByteArray& lines) const
    {
        const QString file = writeFile(QStringLiteral("service"), "#!/bin/sh\n" + lines);
        QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return file;
    }

    [[nodiscard]] static std::string failureOf(const std::variant<DemoServiceChild::Account, Error>& result)
    {
        const auto* const error = std::get_if<Error>(&result);
        return error ? error->localizedDescription.toStdString() : std::string("(started)");
    }
};

} // namespace

TEST_F(DemoChild, tellsWhereItListensAndItsAccount)
{
    DemoServiceChild child;
    const auto result = child.start(QStringLiteral(DEMO_SERVICE));
    ASSERT_TRUE(std::holds_alternative<DemoServiceChild::Account>(result)) << failureOf(result);
    const auto& account = std::get<DemoServiceChild::Account>(result);
    EXPECT_TRUE(account.secureHost.startsWith(QStringLiteral("https://127.0.0.1:")));
    EXPECT_TRUE(account.fileHost.startsWith(QStringLiteral("http://127.0.0.1:")));
    EXPECT_FALSE(account.userName.isEmpty());
    EXPECT_FALSE(account.password.isEmpty());
}

TEST_F(DemoChild, endsWithItsOwner)
{
    const QString program = script("for last; do [ \"$before\" = --ready-file ] && ready=$last; before=$last; done\n"
                                   "echo $$ > \"$HOME/pid\"; echo > \"$ready\"; exec sleep 1000\n");
    pid_t processId = 0;
    {
        DemoServiceChild child;
        ASSERT_TRUE(std::holds_alternative<DemoServiceChild::Account>(child.start(program)));
        processId = readFile(path(QStringLiteral("pid"))).trimmed().toInt();
        ASSERT_GT(processId, 0);
        EXPECT_EQ(::kill(processId, 0), 0);
    }
    EXPECT_NE(::kill(processId, 0), 0);
}

TEST_F(DemoChild, saysWhyItDidNotStart)
{
    DemoServiceChild child;
    EXPECT_THAT(failureOf(child.start(script("echo the port is taken >&2; exit 1\n"))), HasSubstr("the port is taken"));
}

TEST_F(DemoChild, saysWhenItIsNotInstalled)
{
    DemoServiceChild child;
    EXPECT_THAT(failureOf(child.start(QString())), HasSubstr("not installed"));
    DemoServiceChild other;
    EXPECT_THAT(failureOf(other.start(path(QStringLiteral("nothing")))), HasSubstr("did not start"));
}
