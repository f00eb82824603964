#include "demo-service/Service.h"

#include "demo-service/Endpoints.h"
#include "demo-service/Host.h"
#include "demo-service/Overrides.h"

#include <fmt/format.h>

#include <algorithm>
#include <condition_variable>
#include <mutex>

namespace DemoService {
namespace {

bool replacesAnswer(const Override& replacement)
{
    return replacement.status || replacement.reply || !replacement.pieces.empty() || replacement.location ||
           replacement.reset || replacement.resetRequestAt;
}

std::vector<std::string> inPieces(const std::string& text, std::size_t size)
{
    std::vector<std::string> pieces;
    for (std::size_t at = 0; at < text.size(); at += size)
        pieces.push_back(text.substr(at, size));
    return pieces;
}

std::string contentTypeOf(const Request& request)
{
    return request.onFileHost || request.endpoint == "test_downloadjob2.php" ? "application/octet-stream" : "text/html";
}

Sending sendingOf(const Answer& answer, const std::optional<Override>& replacement, const Request& request)
{
    Sending sending;
    sending.status = answer.status;
    sending.contentType = contentTypeOf(request);
    sending.pieces = {answer.text};
    if (replacement) {
        sending.location = replacement->location;
        sending.cutAt = replacement->cutAt;
        sending.resetAt = replacement->resetAt;
        sending.reset = replacement->reset || replacement->resetRequestAt;
        sending.pause = replacement->pause;
        if (!replacement->pieces.empty())
            sending.pieces = replacement->pieces;
        else if (replacement->pieceSize > 0)
            sending.pieces = inPieces(answer.text, replacement->pieceSize);
    }
    return sending;
}

Answer answerOf(const Override& replacement)
{
    constexpr int found = 302;
    Answer answer;
    answer.status = replacement.status.value_or(replacement.location ? found : 200);
    answer.text = replacement.reply.value_or("");
    for (const std::string& piece : replacement.pieces)
        answer.text += piece;
    return answer;
}

// A reply as it can stand in a line of the log.
std::string shown(const std::string& reply)
{
    constexpr std::size_t longest = 160;
    if (reply.empty())
        return "(empty)";
    std::string text = reply.size() <= longest ? reply : fmt::format("{} bytes", reply.size());
    std::ranges::replace_if(
        text, [](char character) { return static_cast<unsigned char>(character) < 0x20; }, ' ');
    return text;
}

} // namespace

class Service::Implementation
{
public:
    explicit Implementation(Options given)
        : m_options(std::move(given)), m_endpoints(m_options), m_bindAddress(m_options.bindAddress),
          m_secure(true, m_bindAddress, m_options.securePort, answerer(), judge(), pause()),
          m_files(false, m_bindAddress, m_options.filePort, answerer(), judge(), pause())
    {}
    ~Implementation() { stop(); }
    Implementation(const Implementation&) = delete;
    Implementation& operator=(const Implementation&) = delete;

    void stop()
    {
        {
            const std::lock_guard lock(m_mutex);
            m_stopping = true;
        }
        m_changed.notify_all();
        const std::lock_guard lock(m_stopMutex);
        m_secure.stop();
        m_files.stop();
    }

    Sending answer(Request request)
    {
        std::unique_lock lock(m_mutex);
        const std::size_t number = m_firstRequest + m_requests.size();
        m_requests.push_back(request);
        const std::optional<Override> replacement = m_overrides.take(request);
        if (replacement) {
            ++m_overriddenCount;
            holdBack(*replacement, lock);
        }
        if (m_stopping) {
            Sending nothing;
            nothing.cutAt = 0;
            return nothing;
        }
        const bool replaced = replacement && replacesAnswer(*replacement);
        const Answer answer =
            replaced ? answerOf(*replacement) : m_endpoints.answer(request, std::chrono::steady_clock::now());
        if (number >= m_firstRequest) {
            Request& record = m_requests[number - m_firstRequest];
            record.status = answer.status;
            record.reply = answer.text;
            record.refused = answer.refused;
        }
        if (m_options.log)
            m_options.log(fmt::format("{} {} {}{} {}", request.method, request.path, answer.status,
                                      replaced ? " (override)" : "", shown(answer.text)));
        return sendingOf(answer, replacement, request);
    }

    template <typename Work>
    auto locked(Work work)
    {
        const std::lock_guard lock(m_mutex);
        return work();
    }

    void releaseHangs()
    {
        {
            const std::lock_guard lock(m_mutex);
            ++m_release;
        }
        m_changed.notify_all();
    }

    std::vector<Request> requests(const std::function<bool(const Request&)>& wanted)
    {
        std::vector<Request> copies;
        const std::lock_guard lock(m_mutex);
        std::ranges::copy_if(m_requests, std::back_inserter(copies), wanted);
        return copies;
    }

    void clearRequests()
    {
        const std::lock_guard lock(m_mutex);
        m_firstRequest += m_requests.size();
        m_requests.clear();
    }

    Options& options() { return m_options; }
    Endpoints& endpoints() { return m_endpoints; }
    JobBook& book() { return m_endpoints.book(); }
    Overrides& overrides() { return m_overrides; }
    [[nodiscard]] int hanging() const { return m_hanging; }
    [[nodiscard]] int overriddenCount() const { return m_overriddenCount; }
    [[nodiscard]] const std::vector<Request>& recorded() const { return m_requests; }
    [[nodiscard]] std::string address() const { return m_bindAddress; }
    [[nodiscard]] int securePort() const { return m_secure.port(); }
    [[nodiscard]] int filePort() const { return m_files.port(); }

private:
    Host::Answerer answerer()
    {
        return [this](Request request) {
            if (!m_watch)
                return answer(std::move(request));
            m_watch(Stage::Received, request);
            Sending sending = answer(request);
            m_watch(Stage::Answered, request);
            return sending;
        };
    }

    Host::Judge judge()
    {
        return [this](const Request& soFar) {
            if (m_watch)
                m_watch(Stage::Body, soFar);
            const std::lock_guard lock(m_mutex);
            if (!m_overrides.breaksOff(soFar))
                return false;
            ++m_overriddenCount;
            m_requests.push_back(soFar);
            return true;
        };
    }

    Host::Pause pause()
    {
        return [this](std::chrono::milliseconds time) {
            std::unique_lock lock(m_mutex);
            return !m_changed.wait_for(lock, time, [this] { return m_stopping; });
        };
    }

    void holdBack(const Override& replacement, std::unique_lock<std::mutex>& lock)
    {
        if (replacement.delay.count() > 0)
            m_changed.wait_for(lock, replacement.delay, [this] { return m_stopping; });
        if (!replacement.hang)
            return;
        ++m_hanging;
        m_changed.wait(lock, [this, release = m_release] { return m_stopping || m_release != release; });
        --m_hanging;
    }

    std::mutex m_mutex; // guards everything down to m_stopping
    Options m_options;
    Endpoints m_endpoints;
    Overrides m_overrides;
    std::vector<Request> m_requests;
    std::size_t m_firstRequest = 0; // how many requests were cleared before the first that is kept
    int m_hanging = 0;
    int m_overriddenCount = 0;
    unsigned m_release = 0; // counts releaseHangs()
    bool m_stopping = false;

    const std::function<void(Stage, const Request&)> m_watch = m_options.watch;
    std::condition_variable m_changed; // with m_mutex
    std::mutex m_stopMutex;            // one stop() at a time
    const std::string m_bindAddress;
    // Last, because their threads use everything above.
    Host m_secure;
    Host m_files;
};

Service::Service(Options options) : m_implementation(std::make_unique<Implementation>(std::move(options))) {}

Service::~Service() = default;

void Service::stop()
{
    m_implementation->stop();
}

int Service::securePort() const
{
    return m_implementation->securePort();
}

int Service::filePort() const
{
    return m_implementation->filePort();
}

std::string Service::secureHost() const
{
    return fmt::format("https://{}:{}", m_implementation->address(), securePort());
}

std::string Service::fileHost() const
{
    return fmt::format("http://{}:{}", m_implementation->address(), filePort());
}

std::vector<Request> Service::requests() const
{
    return m_implementation->requests([](const Request&) { return true; });
}

std::vector<Request> Service::requests(const std::string& endpoint) const
{
    return m_implementation->requests([&](const Request& request) { return request.endpoint == endpoint; });
}

int Service::count(const std::string& endpoint) const
{
    return m_implementation->locked([&] {
        return static_cast<int>(std::ranges::count(m_implementation->recorded(), endpoint, &Request::endpoint));
    });
}

std::vector<std::string> Service::refusals() const
{
    std::vector<std::string> texts;
    for (const Request& request : m_implementation->requests([](const Request& one) { return one.refused; }))
        texts.push_back(request.endpoint + ": " + request.reply);
    return texts;
}

void Service::clearRequests()
{
    m_implementation->clearRequests();
}

void Service::addOverride(const std::string& endpoint, Override replacement)
{
    m_implementation->locked([&] { m_implementation->overrides().add(endpoint, std::move(replacement)); });
}

void Service::clearOverrides()
{
    m_implementation->locked([&] { m_implementation->overrides().clear(); });
    releaseHangs();
}

int Service::overriddenCount() const
{
    return m_implementation->locked([&] { return m_implementation->overriddenCount(); });
}

void Service::releaseHangs()
{
    m_implementation->releaseHangs();
}

int Service::hanging() const
{
    return m_implementation->locked([&] { return m_implementation->hanging(); });
}

void Service::setTurnaround(std::chrono::milliseconds turnaround)
{
    m_implementation->locked(
        [&] { m_implementation->book().setTurnaround(turnaround, std::chrono::steady_clock::now()); });
}

void Service::setDemandPasswordChange(bool demand)
{
    m_implementation->locked([&] { m_implementation->options().demandPasswordChange = demand; });
}

void Service::setSendLogs()
{
    m_implementation->locked([&] { m_implementation->options().sendLogs = true; });
}

void Service::setLogFormat(bool available)
{
    m_implementation->locked([&] { m_implementation->options().logFormat = available; });
}

void Service::setDeliveryOption(const std::string& option)
{
    m_implementation->locked([&] { m_implementation->options().deliveryOption = option; });
}

void Service::setRates(const Rates& rates)
{
    m_implementation->locked([&] { m_implementation->options().rates = rates; });
}

void Service::setPassword(const std::string& password)
{
    m_implementation->locked([&] { m_implementation->options().password = password; });
}

std::vector<Job> Service::jobs() const
{
    return m_implementation->locked([&] { return m_implementation->book().jobs(std::chrono::steady_clock::now()); });
}

std::optional<Job> Service::job(int depoNumber) const
{
    return m_implementation->locked(
        [&] { return m_implementation->book().job(depoNumber, std::chrono::steady_clock::now()); });
}

std::vector<UploadedLog> Service::logs() const
{
    return m_implementation->locked([&] { return m_implementation->endpoints().logs(); });
}

std::string Service::password() const
{
    return m_implementation->locked([&] { return m_implementation->options().password; });
}

int Service::addServerJob(const std::string& transcriptName, int segments, const std::string& machine)
{
    return m_implementation->locked([&] {
        return m_implementation->book().addServerJob(transcriptName, segments, machine,
                                                     std::chrono::steady_clock::now());
    });
}

bool Service::askAgain(int depoNumber, Again again)
{
    return m_implementation->locked([&] { return m_implementation->book().askAgain(depoNumber, again); });
}

bool Service::voidJob(int depoNumber)
{
    return m_implementation->locked([&] { return m_implementation->book().voidJob(depoNumber); });
}

bool Service::forgetJob(int depoNumber)
{
    return m_implementation->locked([&] { return m_implementation->book().forget(depoNumber); });
}

bool Service::holdWord(int depoNumber, const std::string& word)
{
    return m_implementation->locked([&] { return m_implementation->book().holdWord(depoNumber, word); });
}

bool Service::setDeliverables(int depoNumber, std::vector<std::pair<std::string, std::string>> nameAndBytes)
{
    return m_implementation->locked(
        [&] { return m_implementation->book().setDeliverables(depoNumber, std::move(nameAndBytes)); });
}

} // namespace DemoService
