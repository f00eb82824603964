#include "harness/BulkService.h"

#include "harness/ChildRun.h"

#include "demo-service/Certificate.h"

#include <openssl/ssl.h>

#include <algorithm>
#include <arpa/inet.h>
#include <csignal>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace Bench {

namespace {

constexpr qsizetype longestForm = 65536;
constexpr std::size_t pieceSize = 256 * 1024;
constexpr int largestWrite = 1 << 20;

// The value of a header field, in lower case; empty when there is none.
QByteArray fieldOf(const QByteArray& header, const QByteArray& name)
{
    const QByteArray lower = header.toLower();
    const qsizetype at = lower.indexOf("\r\n" + name + ":");
    if (at < 0)
        return {};
    const qsizetype begin = at + name.size() + 3;
    return lower.mid(begin, lower.indexOf("\r\n", begin) - begin).trimmed();
}

void* makeTls()
{
    const DemoService::Certificate certificate = DemoService::makeCertificate("localhost");
    SSL_CTX* const context = SSL_CTX_new(TLS_server_method());
    if (!context || SSL_CTX_use_certificate(context, certificate.certificate.get()) != 1 ||
        SSL_CTX_use_PrivateKey(context, certificate.key.get()) != 1)
        fail(QStringLiteral("no TLS context could be made"));
    return context;
}

} // namespace

// One client's connection, plain or not.
class BulkService::Connection
{
public:
    Connection(int socket, void* tls) : m_socket(socket), m_buffer(pieceSize)
    {
        if (!tls)
            return;
        m_ssl = SSL_new(static_cast<SSL_CTX*>(tls));
        SSL_set_fd(m_ssl, socket);
    }
    ~Connection()
    {
        if (m_ssl) {
            SSL_shutdown(m_ssl);
            SSL_free(m_ssl);
        }
        ::close(m_socket);
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    bool greet() { return !m_ssl || SSL_accept(m_ssl) == 1; }
    // Valid until the next call; empty at the end of the connection.
    QByteArrayView read()
    {
        const auto wanted = static_cast<int>(m_buffer.size());
        const auto count = m_ssl ? SSL_read(m_ssl, m_buffer.data(), wanted)
                                 : static_cast<int>(::recv(m_socket, m_buffer.data(), m_buffer.size(), 0));
        return count > 0 ? QByteArrayView(m_buffer.data(), count) : QByteArrayView();
    }
    bool write(const QByteArray& bytes)
    {
        qsizetype done = 0;
        while (done < bytes.size()) {
            const int size = static_cast<int>(std::min<qsizetype>(bytes.size() - done, largestWrite));
            const auto count =
                m_ssl ? SSL_write(m_ssl, bytes.constData() + done, size)
                      : static_cast<int>(::send(m_socket, bytes.constData() + done, static_cast<std::size_t>(size), 0));
            if (count <= 0)
                return false;
            done += count;
        }
        return true;
    }

private:
    const int m_socket;
    SSL* m_ssl = nullptr;
    std::vector<char> m_buffer;
};

BulkService::BulkService(Wire wire, Answerer answerer) : m_answerer(std::move(answerer))
{
    std::signal(SIGPIPE, SIG_IGN);
    if (wire == Wire::Tls)
        m_tls = makeTls();
    m_listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const place = reinterpret_cast<sockaddr*>(&address);
    if (::bind(m_listener, place, size) != 0 || ::listen(m_listener, SOMAXCONN) != 0 ||
        ::getsockname(m_listener, place, &size) != 0)
        fail(QStringLiteral("no port to listen on"));
    m_port = ntohs(address.sin_port);
    m_running = 1;
    std::thread([this] { accept(); }).detach();
}

BulkService::~BulkService()
{
    ::shutdown(m_listener, SHUT_RDWR);
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_running == 0; });
    ::close(m_listener);
    SSL_CTX_free(static_cast<SSL_CTX*>(m_tls));
}

void BulkService::accept()
{
    for (;;) {
        const int socket = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        const std::scoped_lock lock(m_mutex);
        if (socket < 0) {
            --m_running;
            m_changed.notify_all();
            return;
        }
        const int yes = 1;
        ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
        ++m_running;
        std::thread([this, socket] {
            serve(socket);
            const std::scoped_lock ended(m_mutex);
            --m_running;
            m_changed.notify_all();
        }).detach();
    }
}

void BulkService::serve(int socket)
{
    Connection connection(socket, m_tls);
    if (!connection.greet())
        return;
    QByteArray pending;
    for (;;) {
        qsizetype end = -1;
        while ((end = pending.indexOf("\r\n\r\n")) < 0) {
            const QByteArrayView piece = connection.read();
            if (piece.isEmpty())
                return;
            pending.append(piece);
        }
        const QByteArray header = pending.left(end + 2);
        QByteArray body = pending.mid(end + 4);
        pending.clear();
        const long long length = fieldOf(header, "content-length").toLongLong();
        if (fieldOf(header, "expect") == "100-continue" && !connection.write("HTTP/1.1 100 Continue\r\n\r\n"))
            return;
        long long received = body.size();
        while (received < length) {
            const QByteArrayView piece = connection.read();
            if (piece.isEmpty())
                return;
            received += piece.size();
            if (length <= longestForm)
                body.append(piece);
        }
        m_received += received;
        const QByteArray path = header.split(' ').value(1);
        const QByteArray reply = m_answerer(path, length <= longestForm ? body : QByteArray());
        if (!connection.write("HTTP/1.1 200 OK\r\nContent-Type: application/octet-stream\r\nContent-Length: " +
                              QByteArray::number(reply.size()) + "\r\n\r\n") ||
            !connection.write(reply))
            return;
    }
}

} // namespace Bench
