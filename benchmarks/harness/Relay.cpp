#include "harness/Relay.h"

#include "harness/ChildRun.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <mutex>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace Bench {

namespace {

sockaddr_in loopback(int port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    return address;
}

int makeSocket()
{
    const int descriptor = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const int yes = 1;
    ::setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
    return descriptor;
}

// Until `from` ends; then `to` is told so.
void pump(int from, int to)
{
    std::array<char, 65536> piece{};
    for (;;) {
        const ssize_t count = ::recv(from, piece.data(), piece.size(), 0);
        if (count <= 0)
            break;
        ssize_t sent = 0;
        while (sent < count) {
            const ssize_t part = ::send(to, piece.data() + sent, static_cast<std::size_t>(count - sent), MSG_NOSIGNAL);
            if (part <= 0)
                break;
            sent += part;
        }
        if (sent < count)
            break;
    }
    ::shutdown(to, SHUT_WR);
    ::shutdown(from, SHUT_RD);
}

} // namespace

double now()
{
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

struct Relay::Shared
{
    int target = 0;
    int listener = -1;
    int port = 0;
    mutable std::mutex mutex;
    std::condition_variable changed;
    int running = 0;         // under mutex
    std::vector<Span> spans; // under mutex

    void accept()
    {
        for (;;) {
            const int client = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
            const double begin = now();
            const std::scoped_lock lock(mutex);
            if (client < 0)
                return ended();
            ++running;
            std::thread([this, client, begin] {
                relay(client);
                const std::scoped_lock done(mutex);
                spans.push_back({begin, now()});
                ended();
            }).detach();
        }
    }

    // Under the lock: who waits may let go of all this as soon as it is free.
    void ended()
    {
        --running;
        changed.notify_all();
    }

    void relay(int client) const
    {
        const int service = makeSocket();
        const int yes = 1;
        ::setsockopt(client, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
        sockaddr_in address = loopback(target);
        if (::connect(service, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0) {
            std::thread back([&] { pump(service, client); });
            pump(client, service);
            back.join();
        }
        ::close(service);
        ::close(client);
    }
};

Relay::Relay(int targetPort) : m_shared(std::make_unique<Shared>())
{
    m_shared->target = targetPort;
    m_shared->listener = makeSocket();
    sockaddr_in address = loopback(0);
    socklen_t size = sizeof address;
    auto* const place = reinterpret_cast<sockaddr*>(&address);
    if (::bind(m_shared->listener, place, size) != 0 || ::listen(m_shared->listener, SOMAXCONN) != 0 ||
        ::getsockname(m_shared->listener, place, &size) != 0)
        fail(QStringLiteral("no port to listen on"));
    m_shared->port = ntohs(address.sin_port);
    m_shared->running = 1;
    std::thread([shared = m_shared.get()] { shared->accept(); }).detach();
}

Relay::~Relay()
{
    ::shutdown(m_shared->listener, SHUT_RDWR);
    std::unique_lock lock(m_shared->mutex);
    m_shared->changed.wait(lock, [this] { return m_shared->running == 0; });
    ::close(m_shared->listener);
}

int Relay::port() const
{
    return m_shared->port;
}

std::vector<Relay::Span> Relay::spans() const
{
    const std::scoped_lock lock(m_shared->mutex);
    std::vector<Span> copies = m_shared->spans;
    std::sort(copies.begin(), copies.end(), [](const Span& a, const Span& b) { return a.begin < b.begin; });
    return copies;
}

} // namespace Bench
