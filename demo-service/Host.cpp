#include "demo-service/Host.h"

#include "demo-service/Certificate.h"
#include "demo-service/Sockets.h"

#include <fmt/format.h>
#include <httplib.h>

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <stdexcept>
#include <strings.h>
#include <sys/socket.h>

namespace DemoService {
namespace {

// A thread for each connection, so that requests that hang never keep others waiting.
class ConnectionThreads : public httplib::TaskQueue
{
public:
    void enqueue(std::function<void()> connection) override
    {
        {
            const std::lock_guard lock(m_mutex);
            ++m_running;
        }
        std::thread([this, run = std::move(connection)] {
            run();
            // Told under the lock: the queue may be gone as soon as the lock is free.
            const std::lock_guard lock(m_mutex);
            --m_running;
            m_ended.notify_all();
        }).detach();
    }

    void shutdown() override
    {
        std::unique_lock lock(m_mutex);
        m_ended.wait(lock, [this] { return m_running == 0; });
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_ended;
    int m_running = 0; // under m_mutex
};

std::unique_ptr<httplib::Server> makeServer(bool secure)
{
    if (!secure)
        return std::make_unique<httplib::Server>();
    const Certificate certificate = makeCertificate("localhost");
    return std::make_unique<httplib::SSLServer>(certificate.certificate.get(), certificate.key.get());
}

bool isNamed(const std::string& name, const char* other)
{
    return strcasecmp(name.c_str(), other) == 0;
}

Request requestFrom(const httplib::Request& received, bool secure)
{
    Request request;
    request.method = received.method;
    request.path = received.path;
    request.endpoint = received.path.substr(received.path.rfind('/') + 1);
    request.onFileHost = !secure;
    request.time = std::chrono::system_clock::now();
    for (const auto& [name, value] : received.headers) {
        // The library adds these; they did not come over the wire.
        if (name == "REMOTE_ADDR" || name == "REMOTE_PORT" || name == "LOCAL_ADDR" || name == "LOCAL_PORT")
            continue;
        request.headers.emplace_back(isNamed(name, "Content-Type") ? "Content-Type" : name, value);
    }
    return request;
}

// `goesOn` is asked after each piece of the body.
bool readBody(const httplib::ContentReader& reader, bool multipart, Request& request,
              const std::function<bool()>& goesOn)
{
    if (!multipart)
        return reader([&](const char* bytes, std::size_t size) {
            request.body.append(bytes, size);
            return goesOn();
        });
    return reader(
        [&request](const httplib::MultipartFormData& part) {
            request.parts.push_back({part.name, part.filename, part.content_type, {}});
            return true;
        },
        [&](const char* bytes, std::size_t size) {
            request.parts.back().content.append(bytes, size);
            return goesOn();
        });
}

std::size_t sizeOf(const std::vector<std::string>& pieces)
{
    std::size_t size = 0;
    for (const std::string& piece : pieces)
        size += piece.size();
    return size;
}

} // namespace

Host::Host(bool secure, const std::string& address, int port, Answerer answerer, Judge judge, Pause pause)
    : m_answerer(std::move(answerer)), m_judge(std::move(judge)), m_pause(std::move(pause)), m_secure(secure),
      m_server(makeServer(secure))
{
    configure(address, port);
    m_thread = std::thread([this] {
        m_server->listen_after_bind();
        m_ended = true;
    });
    // Until the server runs it cannot be stopped.
    while (!m_server->is_running() && !m_ended)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

Host::~Host()
{
    stop();
}

void Host::configure(const std::string& address, int port)
{
    constexpr time_t patienceInSeconds = 600;
    m_server->new_task_queue = [] { return new ConnectionThreads; };
    m_server->set_tcp_nodelay(true);
    m_server->set_read_timeout(patienceInSeconds);
    m_server->set_write_timeout(patienceInSeconds);
    // The library's own choice lets two services share a port.
    m_server->set_socket_options([](int descriptor) {
        const int yes = 1;
        setsockopt(descriptor, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    });
    m_server->Post(".*", [this](const httplib::Request& received, httplib::Response& response,
                                const httplib::ContentReader& reader) {
        Request request = requestFrom(received, m_secure);
        const auto goesOn = [&] { return !isBrokenOff(request, received.remote_port); };
        if (readBody(reader, received.is_multipart_form_data(), request, goesOn))
            send(m_answerer(std::move(request)), received, response);
    });
    m_server->Get(".*", [this](const httplib::Request& received, httplib::Response& response) {
        send(m_answerer(requestFrom(received, m_secure)), received, response);
    });
    if (port == 0)
        m_port = m_server->bind_to_any_port(address);
    else if (m_server->bind_to_port(address, port))
        m_port = port;
    if (m_port <= 0)
        throw std::runtime_error(fmt::format("cannot listen on {}:{}", address, port));
}

bool Host::isBrokenOff(const Request& soFar, int peerPort) const
{
    if (!m_judge(soFar))
        return false;
    Sockets::reset(m_port, peerPort);
    return true;
}

void Host::send(Sending sending, const httplib::Request& request, httplib::Response& response) const
{
    response.status = sending.status;
    if (sending.location)
        response.set_header("Location", *sending.location);
    if (sending.reset) {
        Sockets::reset(m_port, request.remote_port);
        // Nothing can be written any more; a reply that fails makes the library let go of the connection.
        sending.cutAt = 0;
    }
    std::erase_if(sending.pieces, [](const std::string& piece) { return piece.empty(); });
    const std::size_t size = sizeOf(sending.pieces);
    if (!sending.cutAt && !sending.resetAt && sending.pieces.size() <= 1) {
        response.set_content(size == 0 ? std::string() : std::move(sending.pieces.front()), sending.contentType);
        return;
    }
    const auto whenSent = [this, isReset = sending.resetAt.has_value(), peer = request.remote_port](bool) {
        if (isReset)
            Sockets::reset(m_port, peer);
    };
    if (size == 0 && !sending.cutAt) {
        // The library has no other way to tell when an empty reply is sent.
        const auto nothing = [](std::size_t, httplib::DataSink& sink) {
            sink.done();
            return true;
        };
        response.set_chunked_content_provider(sending.contentType, nothing, whenSent);
        return;
    }
    const std::size_t end = sending.cutAt.value_or(std::min(size, sending.resetAt.value_or(size)));
    // A reply that is shorter than the cut is declared longer, so that the client still misses something.
    const std::size_t declared = sending.cutAt ? std::max(size, end + 1) : size;
    auto next = std::make_shared<std::size_t>(0);
    response.set_content_provider(
        declared, sending.contentType,
        [this, pieces = std::move(sending.pieces), pause = sending.pause, end, next](std::size_t offset, std::size_t,
                                                                                     httplib::DataSink& sink) {
            if (*next == pieces.size() || offset >= end)
                return false;
            if (*next > 0 && !m_pause(pause))
                return false;
            const std::string& piece = pieces[(*next)++];
            return sink.write(piece.data(), std::min(piece.size(), end - offset));
        },
        whenSent);
}

void Host::stop()
{
    if (!m_thread.joinable())
        return;
    m_server->stop();
    // A connection that was accepted last may only now wait for its first byte, hence again and again.
    while (!m_ended) {
        Sockets::endAll(m_port);
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    m_thread.join();
}

} // namespace DemoService
