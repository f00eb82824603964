#pragma once

#include <memory>
#include <vector>

namespace Bench {

// Stands between a client and a service on 127.0.0.1 and notes when each connection was open, without looking into it:
// what a transfer took, its greeting included. Two threads for each connection.
class Relay
{
public:
    // When a connection was accepted and closed, as seconds since the epoch.
    struct Span
    {
        double begin = 0;
        double end = 0;
    };

    // Listens on a free port at once; ends the process when it cannot.
    explicit Relay(int targetPort);
    ~Relay(); // waits for the connections
    Relay(const Relay&) = delete;
    Relay& operator=(const Relay&) = delete;

    [[nodiscard]] int port() const;
    // Of the connections that are closed, in the order in which they began.
    [[nodiscard]] std::vector<Span> spans() const;

private:
    struct Shared;
    std::unique_ptr<Shared> m_shared;
};

// Seconds since the epoch.
[[nodiscard]] double now();

} // namespace Bench
