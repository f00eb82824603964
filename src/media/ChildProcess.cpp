#include "media/ChildProcess.h"

#include <QFile>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::chrono::milliseconds timeBetweenLooks{2};

QString systemMessage(int error)
{
    return QString::fromStdString(std::generic_category().message(error));
}

// A duplicate of the descriptor that is none of the three standard ones, and closes by itself when the program runs.
int aboveStandardDescriptors(int descriptor)
{
    return ::fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
}

// In the child between fork and exec, where only calls that are safe in a signal handler are allowed. Tells
// `failureDescriptor` why the program could not be run; the descriptor closes by itself when it runs.
[[noreturn]] void becomeProgram(char* const* arguments, int outputDescriptor, int failureDescriptor, pid_t parent)
{
    ::setpgid(0, 0);
    // What it makes of the user's recordings is for the user alone.
    ::umask(S_IRWXG | S_IRWXO);
    // In a parent without standard descriptors these may have their numbers, which are given away below.
    failureDescriptor = aboveStandardDescriptors(failureDescriptor);
    outputDescriptor = aboveStandardDescriptors(outputDescriptor);
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    // The parent may have gone before the request stood.
    if (::getppid() != parent)
        ::_exit(EXIT_FAILURE);
    sigset_t none;
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    // Ignored signals would stay ignored in the program.
    for (const int signal : {SIGPIPE, SIGINT, SIGTERM, SIGHUP})
        ::signal(signal, SIG_DFL);
    const int null = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    if (null >= 0 && ::dup2(null, STDIN_FILENO) >= 0 && ::dup2(null, STDOUT_FILENO) >= 0 &&
        ::dup2(outputDescriptor, STDERR_FILENO) >= 0)
        ::execv(arguments[0], arguments);
    const int error = errno;
    [[maybe_unused]] const ssize_t written = ::write(failureDescriptor, &error, sizeof error);
    ::_exit(EXIT_FAILURE);
}

// The reason that the child gave, or 0 once it runs the program.
int readFailure(int descriptor)
{
    int error = 0;
    ssize_t count = 0;
    do {
        count = ::read(descriptor, &error, sizeof error);
    } while (count < 0 && errno == EINTR);
    return count == static_cast<ssize_t>(sizeof error) ? error : 0;
}

} // namespace

ChildProcess::~ChildProcess()
{
    if (m_processId > 0) {
        signalGroup(SIGKILL);
        ::waitpid(m_processId, nullptr, 0);
    }
}

QString ChildProcess::start(const QString& program, const QStringList& arguments, int outputDescriptor)
{
    // All memory is taken before the fork.
    std::vector<std::string> texts{QFile::encodeName(program).toStdString()};
    for (const QString& argument : arguments)
        texts.push_back(QFile::encodeName(argument).toStdString());
    std::vector<char*> pointers;
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);

    std::array<int, 2> failureEnds{};
    if (::pipe2(failureEnds.data(), O_CLOEXEC) != 0)
        return systemMessage(errno);
    const pid_t parent = ::getpid();
    m_processId = ::fork();
    if (m_processId == 0)
        becomeProgram(pointers.data(), outputDescriptor, failureEnds[1], parent);
    int failure = m_processId < 0 ? errno : 0;
    ::close(failureEnds[1]);
    if (m_processId > 0)
        failure = readFailure(failureEnds[0]);
    ::close(failureEnds[0]);
    if (failure == 0)
        return {};
    if (m_processId > 0)
        ::waitpid(m_processId, nullptr, 0);
    m_processId = -1;
    return program + QStringLiteral(": ") + systemMessage(failure);
}

bool ChildProcess::waitForEnd(std::chrono::milliseconds atMost)
{
    const auto deadline = std::chrono::steady_clock::now() + atMost;
    while (m_processId > 0) {
        const pid_t ended = ::waitpid(m_processId, nullptr, WNOHANG);
        if (ended == m_processId || (ended < 0 && errno == ECHILD))
            m_processId = -1;
        else if (std::chrono::steady_clock::now() >= deadline)
            return false;
        else
            std::this_thread::sleep_for(timeBetweenLooks);
    }
    return true;
}

void ChildProcess::signalGroup(int signal) const
{
    if (m_processId > 0)
        ::kill(-m_processId, signal);
}
