#include "foundation/Interruption.h"

#include <atomic>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

// A signal handler can reach nothing but globals; they are set before the handler is installed.
int readEnd = -1;
int writeEnd = -1;
constexpr int codeOfASecondOne = 130; // what a shell gives for Ctrl-C
std::atomic<bool> requested{false};

void handleSignal(int)
{
    const int errorBefore = errno;
    if (requested.exchange(true))
        ::_exit(codeOfASecondOne);
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = ::write(writeEnd, &byte, 1);
    errno = errorBefore;
}

} // namespace

void Interruption::install()
{
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    readEnd = ends[0];
    writeEnd = ends[1];
    struct sigaction action
    {};
    action.sa_handler = handleSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        ::sigaction(signal, &action, nullptr);
    ::signal(SIGPIPE, SIG_IGN); // A reader of our output that goes away must not end the work.
}

Interruption::Interruption(std::function<void()> interrupted) : m_notifier(readEnd, QSocketNotifier::Read)
{
    QObject::connect(&m_notifier, &QSocketNotifier::activated, &m_notifier,
                     [this, interrupted = std::move(interrupted)] {
                         m_notifier.setEnabled(false);
                         interrupted();
                     });
}

bool Interruption::isRequested()
{
    return requested;
}

int Interruption::descriptor()
{
    return readEnd;
}
