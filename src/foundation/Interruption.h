#pragma once

#include <QSocketNotifier>

#include <functional>

// Ctrl-C and SIGTERM, turned into a call on the main thread. A second one ends the program at once.
class Interruption
{
public:
    // Once in a program, on the main thread, after the QCoreApplication was made.
    explicit Interruption(std::function<void()> interrupted);

    [[nodiscard]] static bool isRequested();
    // Readable once an interruption is requested.
    [[nodiscard]] static int descriptor();

    // From the first moment of the program, so that nothing is left half done.
    static void install();

private:
    QSocketNotifier m_notifier;
};
