#pragma once

#include <QString>
#include <QStringList>

#include <chrono>
#include <sys/types.h>

// A child process with a process group of its own, which is killed when the thread that started it ends, and so when
// this program is killed. Files that it makes are readable by the user alone. Used by one thread, which waits for the
// child before it lets go of the object.
//
// Made with fork() rather than through Qt: thread sanitizers lose sight of a thread that starts a QProcess.
class ChildProcess
{
public:
    ChildProcess() = default;
    ~ChildProcess(); // kills a child that was not waited for
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    // Once. Standard error goes to `outputDescriptor`, standard input and output to the null device. Returns when the
    // program runs, with "", or with the reason why it could not be run.
    [[nodiscard]] QString start(const QString& program, const QStringList& arguments, int outputDescriptor);

    // Takes up the exit status. False when the child lives on.
    [[nodiscard]] bool waitForEnd(std::chrono::milliseconds atMost);
    // To the child and what it started; does nothing once its end was waited for.
    void signalGroup(int signal) const;

private:
    pid_t m_processId = -1; // -1: none, or waited for
};
