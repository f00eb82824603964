#include "ServiceProcess.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds longestStart{20000};
constexpr std::chrono::milliseconds longestEnd{2000};
constexpr std::chrono::milliseconds timeBetweenLooks{5};

} // namespace

ServiceProcess::~ServiceProcess()
{
    m_notifier.reset();
    if (m_socket >= 0)
        ::close(m_socket); // The service ends with its input.
    if (m_processId <= 0)
        return;
    const auto deadline = Clock::now() + longestEnd;
    while (::waitpid(m_processId, nullptr, WNOHANG) == 0) {
        if (Clock::now() >= deadline) {
            ::kill(m_processId, SIGKILL);
            ::waitpid(m_processId, nullptr, 0);
            return;
        }
        std::this_thread::sleep_for(timeBetweenLooks);
    }
}

bool ServiceProcess::start()
{
    if (!startProgram())
        return false;
    m_secureHost = waitForLine().value_or(QString());
    m_fileHost = waitForLine().value_or(QString());
    m_notifier = std::make_unique<QSocketNotifier>(m_socket, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &ServiceProcess::readLines);
    return !m_fileHost.isEmpty();
}

bool ServiceProcess::startProgram()
{
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0)
        return false;
    m_socket = ends[0];
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    std::array<char, sizeof SOAK_SERVICE> program{SOAK_SERVICE};
    const std::array<char*, 2> arguments{program.data(), nullptr};
    const int failure = posix_spawn(&m_processId, program.data(), &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(ends[1]);
    if (failure != 0)
        m_processId = -1;
    return failure == 0;
}

void ServiceProcess::order(const QString& line)
{
    const QByteArray bytes = line.toUtf8() + '\n';
    qsizetype sent = 0;
    while (sent < bytes.size()) {
        const auto rest = static_cast<std::size_t>(bytes.size() - sent);
        const ssize_t count = ::send(m_socket, bytes.constData() + sent, rest, MSG_NOSIGNAL);
        if (count < 0 && errno != EINTR)
            return; // That the service has ended is told by what is read from it.
        sent += std::max<ssize_t>(count, 0);
    }
}

bool ServiceProcess::receive()
{
    std::array<char, 4096> bytes{};
    const ssize_t count = ::recv(m_socket, bytes.data(), bytes.size(), MSG_DONTWAIT);
    if (count > 0)
        m_received.append(bytes.data(), count);
    return count > 0 || (count < 0 && (errno == EAGAIN || errno == EINTR));
}

std::optional<QByteArray> ServiceProcess::takeLine()
{
    const qsizetype end = m_received.indexOf('\n');
    if (end < 0)
        return {};
    const QByteArray line = m_received.left(end).trimmed();
    m_received.remove(0, end + 1);
    return line;
}

std::optional<QString> ServiceProcess::waitForLine()
{
    const auto deadline = Clock::now() + longestStart;
    while (Clock::now() < deadline) {
        if (const auto line = takeLine())
            return QString::fromUtf8(*line);
        pollfd readable{.fd = m_socket, .events = POLLIN, .revents = 0};
        if (::poll(&readable, 1, 100) > 0 && !receive())
            return {};
    }
    return {};
}

void ServiceProcess::readLines()
{
    const bool goesOn = receive();
    while (const auto line = takeLine()) {
        if (line->startsWith("forgotten "))
            Q_EMIT forgotten(line->mid(10).toInt());
    }
    if (goesOn)
        return;
    m_notifier->setEnabled(false);
    Q_EMIT ended();
}
