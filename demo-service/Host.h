#pragma once

#include "demo-service/Records.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace httplib {
class Server;
struct Request;
struct Response;
} // namespace httplib

namespace DemoService {

// How a reply goes out.
struct Sending
{
    int status = 200;
    std::string contentType = "text/html";
    std::optional<std::string> location = std::nullopt;
    std::vector<std::string> pieces = {}; // together the reply; sent one by one
    std::chrono::milliseconds pause{0};
    std::optional<std::size_t> cutAt = std::nullopt;
    std::optional<std::size_t> resetAt = std::nullopt; // as cutAt, with a reset; beyond the end, behind the reply
    bool reset = false;
};

// One listening port with its threads: one accepts, and each connection has one of its own. The requests are read
// whole, in the order of their bytes, and handed to the answerer on the connection's thread.
class Host
{
public:
    using Answerer = std::function<Sending(Request)>;
    // Told of a request each time that more of its body was read; true resets its connection.
    using Judge = std::function<bool(const Request& soFar)>;
    // Waits; false when the service stops meanwhile.
    using Pause = std::function<bool(std::chrono::milliseconds)>;

    // Listens at once. Throws std::runtime_error when the port cannot be had.
    Host(bool secure, const std::string& address, int port, Answerer answerer, Judge judge, Pause pause);
    ~Host();
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    // Returns when no connection is left; the answerer must let go of what it holds back. Repeatable.
    void stop();
    [[nodiscard]] int port() const { return m_port; }

private:
    void configure(const std::string& address, int port);
    [[nodiscard]] bool isBrokenOff(const Request& soFar, int peerPort) const;
    void send(Sending sending, const httplib::Request& request, httplib::Response& response) const;

    Answerer m_answerer;
    Judge m_judge;
    Pause m_pause;
    bool m_secure;
    std::unique_ptr<httplib::Server> m_server;
    int m_port = 0;
    std::atomic<bool> m_ended = false; // set by m_thread as it ends
    std::thread m_thread;
};

} // namespace DemoService
