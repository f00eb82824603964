#include "rows/VirtualScreen.h"

#include "harness/ChildRun.h"

namespace Bench {

VirtualScreen::VirtualScreen()
{
    m_server.setStandardErrorFile(QProcess::nullDevice());
    // It takes a display number that is free, and tells it.
    m_server.start(QStringLiteral("Xvfb"),
                   {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"), QStringLiteral("0"),
                    QStringLiteral("1600x1200x24"), QStringLiteral("-nolisten"), QStringLiteral("tcp"),
                    QStringLiteral("-noreset")});
    while (!m_server.canReadLine()) {
        if (!m_server.waitForReadyRead(20000))
            fail(QStringLiteral("Xvfb does not start: ") + m_server.errorString());
    }
    m_display = u':' + QString::fromLatin1(m_server.readLine().trimmed());
}

VirtualScreen::~VirtualScreen()
{
    m_server.terminate();
    m_server.waitForFinished();
}

QProcessEnvironment VirtualScreen::environment() const
{
    auto environment = QProcessEnvironment::systemEnvironment();
    for (const char* const name : {"WAYLAND_DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "SESSION_MANAGER", "QT_IM_MODULE",
                                   "QT_STYLE_OVERRIDE", "QT_QPA_PLATFORMTHEME", "XDG_CURRENT_DESKTOP"})
        environment.remove(QString::fromLatin1(name));
    environment.insert(QStringLiteral("DISPLAY"), m_display);
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    return environment;
}

} // namespace Bench
