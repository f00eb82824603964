#include "Display.h"

#include "support/Waiting.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

#include <csignal>

namespace {

// Searching and pointing on another program's display.
const QString hands = QStringLiteral("xdotool");

} // namespace

Display::Display()
{
    for (const char* name : {"HOME", "PATH"})
        m_environment[QString::fromLatin1(name)] = qEnvironmentVariable(name);
    // The server itself finds a free number, so that tests side by side have a display each.
    m_server.start({QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"), QStringLiteral("0"),
                    QStringLiteral("1600x1000x24"), QStringLiteral("-nolisten"), QStringLiteral("tcp")},
                   m_environment);
    EXPECT_TRUE(Waiting::until([this] { return m_server.standardOutput().endsWith(u'\n') || m_server.hasEnded(); }));
    m_name = u':' + m_server.standardOutput().trimmed();
    m_environment[QStringLiteral("DISPLAY")] = m_name;
    // It says so on the root window once it manages windows. On a busy machine it may find the server not yet ready.
    EXPECT_TRUE(Waiting::until([this] {
        if (!m_windowManager || m_windowManager->hasEnded()) {
            m_windowManager = std::make_unique<ChildProgram>(QStringLiteral("openbox"));
            m_windowManager->start({QStringLiteral("--sm-disable")}, m_environment);
        }
        return point({QStringLiteral("get_desktop")}).has_value();
    })) << m_windowManager->standardError().toStdString();
}

Display::~Display()
{
    m_windowManager->signal(SIGTERM);
    m_server.signal(SIGTERM);
    EXPECT_TRUE(m_windowManager->waitForEnd());
    EXPECT_TRUE(m_server.waitForEnd());
}

std::optional<QString> Display::point(const QStringList& arguments)
{
    ChildProgram program(hands);
    program.start(arguments, m_environment);
    if (!program.waitForEnd() || program.exitCode() != 0)
        return std::nullopt;
    return program.standardOutput().trimmed();
}

std::optional<QString> Display::waitForWindow(const QString& title, std::chrono::milliseconds limit)
{
    std::optional<QString> found;
    const bool came = Waiting::until(
        [&] {
            found = point({QStringLiteral("search"), QStringLiteral("--onlyvisible"), QStringLiteral("--name"), title});
            return found && !found->isEmpty();
        },
        limit);
    return came ? std::optional(found->section(u'\n', -1)) : std::nullopt;
}

bool Display::hasWindow(const QString& title)
{
    const auto found =
        point({QStringLiteral("search"), QStringLiteral("--onlyvisible"), QStringLiteral("--name"), title});
    return found && !found->isEmpty();
}

QString Display::titleOf(const QString& window)
{
    return point({QStringLiteral("getwindowname"), window}).value_or(QString());
}

std::optional<QString> Display::activeWindow()
{
    return point({QStringLiteral("getactivewindow")});
}

void Display::minimize(const QString& window)
{
    point({QStringLiteral("windowminimize"), QStringLiteral("--sync"), window});
}

QRect Display::geometryOf(const QString& window)
{
    QRect rect;
    const QString shell =
        point({QStringLiteral("getwindowgeometry"), QStringLiteral("--shell"), window}).value_or(QString());
    const auto lines = shell.split(u'\n');
    for (const QString& line : lines) {
        const int value = line.section(u'=', 1).toInt();
        if (line.startsWith(u"X="))
            rect.moveLeft(value);
        else if (line.startsWith(u"Y="))
            rect.moveTop(value);
        else if (line.startsWith(u"WIDTH="))
            rect.setWidth(value);
        else if (line.startsWith(u"HEIGHT="))
            rect.setHeight(value);
    }
    return rect;
}

void Display::focus(const QString& window)
{
    EXPECT_TRUE(point({QStringLiteral("windowactivate"), QStringLiteral("--sync"), window}));
}

void Display::type(const QString& text)
{
    EXPECT_TRUE(point({QStringLiteral("type"), QStringLiteral("--delay"), QStringLiteral("5"), text}));
}

void Display::press(const QString& key)
{
    EXPECT_TRUE(point({QStringLiteral("key"), key}));
}

void Display::movePointer(const QPoint& place)
{
    EXPECT_TRUE(point({QStringLiteral("mousemove"), QString::number(place.x()), QString::number(place.y())}));
}

void Display::pressButton()
{
    EXPECT_TRUE(point({QStringLiteral("mousedown"), QStringLiteral("1")}));
}

void Display::releaseButton()
{
    EXPECT_TRUE(point({QStringLiteral("mouseup"), QStringLiteral("1")}));
}
