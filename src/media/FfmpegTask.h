#pragma once

#include <QByteArrayView>
#include <QString>
#include <QStringList>

#include <atomic>
#include <functional>

// One run of the ffmpeg program, read through its standard error; its standard input and output are the null device.
//
// The child has a process group of its own, so that an interrupt typed at a terminal reaches only this program, which
// then ends its children in order. It is killed when the thread that launched it ends without waiting for it, and so
// when this program is killed.
class FfmpegTask
{
public:
    explicit FfmpegTask(QString launchPath);
    ~FfmpegTask();
    FfmpegTask(const FfmpegTask&) = delete;
    FfmpegTask& operator=(const FfmpegTask&) = delete;

    // False when the system has no descriptor left for the task; launch() then fails.
    [[nodiscard]] bool isUsable() const { return m_wakeDescriptor >= 0; }

    // Launches the child and hands over its output as it comes, in pieces that end at a line end wherever the child
    // writes whole lines without pausing. Returns when the child has closed its output and has ended; one that lives on
    // for a second after closing its output is ended. Blocks the calling thread, on which `output` is called.
    // Returns what went wrong where the child could not be launched, else "". A task can be launched once.
    [[nodiscard]] QString launch(const QStringList& arguments, const std::function<void(QByteArrayView)>& output);

    // Makes a running or later launch() return soon, with no further output handed over. The child is asked to end and
    // killed where it has not ended within 0.3 seconds. Callable from every thread, more than once.
    void terminate();

    [[nodiscard]] bool isTerminated() const { return m_terminated; }

private:
    const QString m_launchPath;
    const int m_wakeDescriptor; // readable once terminate() was called
    std::atomic<bool> m_terminated = false;
    std::atomic<bool> m_launched = false;
};
