#pragma once

#include <QProcess>
#include <QProcessEnvironment>

namespace Bench {

// An X server without a screen, of the row's own, so that nothing else draws there and no display is needed. It ends
// with this object. One that cannot be started ends the whole run with a message.
class VirtualScreen
{
public:
    VirtualScreen();
    ~VirtualScreen();
    VirtualScreen(const VirtualScreen&) = delete;
    VirtualScreen& operator=(const VirtualScreen&) = delete;

    // That of programs which show their windows there; without the session's buses and input methods.
    [[nodiscard]] QProcessEnvironment environment() const;

private:
    QProcess m_server;
    QString m_display;
};

} // namespace Bench
