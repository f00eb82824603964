#pragma once

#include "engine/SavedStateLock.h"

#include <QDeadlineTimer>
#include <QLocalServer>
#include <QObject>
#include <QString>

#include <chrono>

// One desktop program at a time for a user's settings: a second start brings the first to the front. The first holds a
// lock that the kernel lets go of however it ends, and listens at a socket that the user alone can reach. Main thread.
class SingleInstance : public QObject
{
    Q_OBJECT
public:
    // Programs with the same settings file are the same.
    explicit SingleInstance(const QString& settingsPath);

    enum class Outcome {
        First,         // this program goes on
        OtherCame,     // the one that runs has come to the front
        OtherIsSilent, // there is one, but it does not answer
    };
    // Blocks while another program is asked, at most for that long. One that ends meanwhile leaves its place.
    [[nodiscard]] Outcome start(std::chrono::milliseconds patience = std::chrono::seconds(5));
    // The program ends: it can come to the front no more. The next start waits for the end of the process.
    void stopAnswering();
    // "quillpost (process 4711)"
    [[nodiscard]] QString otherProgram() const;

Q_SIGNALS:
    // Somebody started the program again. On Wayland the token lets a window come to the front.
    void wanted(const QString& activationToken);

private:
    void listen();
    void answer();
    [[nodiscard]] bool askOther(const QDeadlineTimer& deadline) const;

    const QString m_settingsPath;
    const QString m_socketPath;
    SavedStateLock m_lock;
    QLocalServer m_server;
};
