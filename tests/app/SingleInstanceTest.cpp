#include "app/SingleInstance.h"

#include "support/TemporaryHome.h"
#include "support/Waiting.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocalSocket>
#include <QSignalSpy>

#include <future>
#include <memory>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using Outcome = SingleInstance::Outcome;

namespace {

class SingleInstanceTest : public TemporaryHome
{
protected:
    SingleInstanceTest() { qputenv("XDG_RUNTIME_DIR", path(u"none"_s).toUtf8()); }
    ~SingleInstanceTest() override
    {
        qunsetenv("XDG_RUNTIME_DIR");
        qunsetenv("XDG_ACTIVATION_TOKEN");
    }
    // A second program, while this one's main loop turns.
    [[nodiscard]] Outcome startAnother() const
    {
        auto outcome = std::async(std::launch::async, [this] { return SingleInstance(settings).start(); });
        EXPECT_TRUE(
            Waiting::until([&] { return outcome.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }));
        return outcome.get();
    }
    [[nodiscard]] static QStringList socketsIn(const QString& folder)
    {
        QStringList paths;
        for (const QString& name : QDir(folder).entryList({u"quillpost-*"_s}, QDir::System))
            paths << folder + u'/' + name;
        return paths;
    }
    const QString settings = path(u"config/Quillpost.ini"_s);
};

TEST_F(SingleInstanceTest, ListensInTheFolderThatTheSystemKeepsForThat)
{
    ASSERT_TRUE(QDir().mkpath(path(u"run"_s)));
    qputenv("XDG_RUNTIME_DIR", path(u"run"_s).toUtf8());
    SingleInstance first(settings);
    ASSERT_EQ(first.start(), Outcome::First);
    ASSERT_EQ(socketsIn(path(u"run"_s)).size(), 1);
    EXPECT_EQ(QFileInfo(socketsIn(path(u"run"_s))[0]).permissions() & QFile::Permissions(0x0077), 0);
    EXPECT_EQ(startAnother(), Outcome::OtherCame);
}

TEST_F(SingleInstanceTest, ASecondStartBringsTheFirstToTheFront)
{
    SingleInstance first(settings);
    QSignalSpy wanted(&first, &SingleInstance::wanted);
    ASSERT_EQ(first.start(), Outcome::First);
    qputenv("XDG_ACTIVATION_TOKEN", "token-7");
    EXPECT_EQ(startAnother(), Outcome::OtherCame);
    ASSERT_EQ(wanted.size(), 1);
    EXPECT_EQ(wanted[0][0].toString(), u"token-7");
    EXPECT_EQ(startAnother(), Outcome::OtherCame) << "and every later one";
}

TEST_F(SingleInstanceTest, ProgramsWithOtherSettingsAreNotTheSame)
{
    SingleInstance first(settings);
    ASSERT_EQ(first.start(), Outcome::First);
    EXPECT_EQ(SingleInstance(path(u"demo/Quillpost.ini"_s)).start(), Outcome::First);
}

TEST_F(SingleInstanceTest, TheNextStartAfterTheEndIsTheFirstAgain)
{
    {
        SingleInstance first(settings);
        ASSERT_EQ(first.start(), Outcome::First);
    }
    EXPECT_EQ(SingleInstance(settings).start(), Outcome::First);
}

TEST_F(SingleInstanceTest, AStartWhileTheOtherEndsWaitsAndIsTheFirst)
{
    auto first = std::make_unique<SingleInstance>(settings);
    QSignalSpy wanted(first.get(), &SingleInstance::wanted);
    ASSERT_EQ(first->start(), Outcome::First);
    first->stopAnswering();
    auto outcome = std::async(std::launch::async, [this] { return SingleInstance(settings).start(); });
    EXPECT_FALSE(Waiting::until([&] { return outcome.wait_for(std::chrono::seconds(0)) == std::future_status::ready; },
                                std::chrono::milliseconds(200)));
    first.reset();
    EXPECT_EQ(outcome.get(), Outcome::First);
    EXPECT_TRUE(wanted.isEmpty());
}

TEST_F(SingleInstanceTest, WhatACrashLeavesBehindIsInNobodysWay)
{
    // A socket that nobody listens at any more, where the program's own is to be.
    QString socketPath;
    {
        SingleInstance first(settings);
        ASSERT_EQ(first.start(), Outcome::First);
        const QStringList sockets = socketsIn(path(u"config"_s));
        ASSERT_EQ(sockets.size(), 1);
        socketPath = sockets[0];
    }
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    qstrncpy(address.sun_path, QFile::encodeName(socketPath).constData(), sizeof address.sun_path);
    const int left = ::socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(::bind(left, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ::close(left);

    SingleInstance next(settings);
    QSignalSpy wanted(&next, &SingleInstance::wanted);
    ASSERT_EQ(next.start(), Outcome::First);
    EXPECT_EQ(startAnother(), Outcome::OtherCame);
    EXPECT_EQ(wanted.size(), 1);
}

TEST_F(SingleInstanceTest, OneThatDoesNotAnswerIsNamed)
{
    SingleInstance first(settings);
    ASSERT_EQ(first.start(), Outcome::First);
    // This thread, whose loop would answer, is the one that waits.
    SingleInstance second(settings);
    EXPECT_EQ(second.start(std::chrono::milliseconds(200)), Outcome::OtherIsSilent);
    EXPECT_TRUE(second.otherProgram().startsWith(u"test_app (process "_s)) << second.otherProgram().toStdString();
}

TEST_F(SingleInstanceTest, NoiseAtItsSocketIsNoWish)
{
    SingleInstance first(settings);
    QSignalSpy wanted(&first, &SingleInstance::wanted);
    ASSERT_EQ(first.start(), Outcome::First);
    for (const QByteArray& noise : {QByteArray("GET / HTTP/1.1\r\n\r\n"), QByteArray(100'000, 'x'), QByteArray("\n")}) {
        QLocalSocket socket;
        socket.connectToServer(socketsIn(path(u"config"_s)).value(0));
        ASSERT_TRUE(socket.waitForConnected(1000));
        socket.write(noise);
        socket.flush();
        EXPECT_TRUE(Waiting::until([&] { return socket.state() == QLocalSocket::UnconnectedState; }));
    }
    EXPECT_TRUE(wanted.isEmpty());
}

} // namespace
