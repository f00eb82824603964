#pragma once

#include <QByteArray>

#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>

namespace Bench {

// A host that reads and writes bulk as fast as OpenSSL does, so that a transfer's time is its client's: bodies are
// counted and thrown away, replies go out of memory that is there already. A thread for each connection. Both clients
// of a comparison talk to the same one.
class BulkService
{
public:
    // Called on the connection's thread with the request's path and, where it is a short form, its body. What it
    // returns goes out with status 200.
    using Answerer = std::function<QByteArray(const QByteArray& path, const QByteArray& form)>;
    enum class Wire { Plain, Tls };

    // Listens on a free port of 127.0.0.1 at once; ends the process when it cannot.
    BulkService(Wire wire, Answerer answerer);
    ~BulkService(); // waits for the connections
    BulkService(const BulkService&) = delete;
    BulkService& operator=(const BulkService&) = delete;

    [[nodiscard]] int port() const { return m_port; }
    // Bytes of bodies received so far.
    [[nodiscard]] long long received() const { return m_received; }

private:
    class Connection;
    void accept();
    void serve(int socket);

    const Answerer m_answerer;
    void* m_tls = nullptr; // SSL_CTX; null on a plain wire
    int m_listener = -1;
    int m_port = 0;
    std::atomic<long long> m_received{0};
    std::mutex m_mutex;
    std::condition_variable m_changed;
    int m_running = 0; // threads, under m_mutex
};

} // namespace Bench
