#define CURL_DISABLE_DEPRECATION // The progress function without its successor's integer types is what is reported.

#include "commands/CUrlCommand.h"

#include "foundation/Assertion.h"
#include "foundation/Log.h"
#include "foundation/MainThread.h"

#include <QStringDecoder>
#include <curl/curl.h>

#include <array>
#include <csignal>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

static_assert(CURL_ERROR_SIZE == 256);

namespace {

// Newer libraries stop at thirty redirections by themselves; this one would follow a loop for ever.
constexpr long maximumRedirections = 30;

// An upload reports its progress for each buffer that it fills, and waits while the main thread hears of it: few turns
// for a recording. What does not fit into a processor's second cache would be fetched from memory twice.
constexpr long uploadBufferSize = 1L << 20;

// The shorter key first, as browsers have it: it is as safe for what is sent here, and takes an eighth less of both
// ends' processors.
constexpr const char* cipherOrder = "TLS_AES_128_GCM_SHA256:TLS_AES_256_GCM_SHA384:TLS_CHACHA20_POLY1305_SHA256";

// A function and its data go together: libcurl's own function would take the command for a file. None can be refused.
constexpr std::array callbackOptions{CURLOPT_WRITEFUNCTION, CURLOPT_WRITEDATA,     CURLOPT_PROGRESSFUNCTION,
                                     CURLOPT_PROGRESSDATA,  CURLOPT_DEBUGFUNCTION, CURLOPT_DEBUGDATA};

std::size_t writeFunction(char* bytes, std::size_t size, std::size_t number, void* command)
{
    return static_cast<CUrlCommand*>(command)->selfBodyFunction(bytes, size, number);
}

int progressFunction(void* command, double dlTotal, double dlNow, double ulTotal, double ulNow)
{
    return static_cast<CUrlCommand*>(command)->progressCalled(dlTotal, dlNow, ulTotal, ulNow);
}

// Takes libcurl's own remarks away from standard error. Bodies pass here too and may hold passwords: nothing is kept.
int debugFunction(CURL*, curl_infotype, char*, std::size_t, void*)
{
    return 0;
}

void initializeLibraryOnce()
{
    // Without signals the library leaves SIGPIPE to the program, and a peer that hangs up would end it.
    [[maybe_unused]] static const auto previous = std::signal(SIGPIPE, SIG_IGN);
    static const CURLcode outcome = curl_global_init(CURL_GLOBAL_DEFAULT);
    if (outcome != CURLE_OK)
        Log::error("cURL error code = {}", static_cast<int>(outcome));
}

} // namespace

void CUrlCommand::HandleDeleter::operator()(void* handle) const
{
    curl_easy_cleanup(handle);
}

CUrlCommand::CUrlCommand(QString url) : m_url(std::move(url))
{
    setDefaults();
}

CUrlCommand::~CUrlCommand()
{
    m_curlObject.reset(); // Closes its sockets through closeSocket(), which needs the members.
}

void CUrlCommand::setDefaults()
{
    setNumber(1, CURLOPT_FOLLOWLOCATION);
    setNumber(1, CURLOPT_FAILONERROR);
    setPointer(PointerHolder::pointerHolderWithPtr(&writeFunction), CURLOPT_WRITEFUNCTION);
    setPointer(PointerHolder::pointerHolderWithPtr(this), CURLOPT_WRITEDATA);
    setPointer(PointerHolder::pointerHolderWithPtr(&progressFunction), CURLOPT_PROGRESSFUNCTION);
    setPointer(PointerHolder::pointerHolderWithPtr(this), CURLOPT_PROGRESSDATA);
    setPointer(PointerHolder::pointerHolderWithPtr(&debugFunction), CURLOPT_DEBUGFUNCTION);
    setPointer(PointerHolder::pointerHolderWithPtr(this), CURLOPT_DEBUGDATA);
    setNumber(0, CURLOPT_SSL_VERIFYHOST);
    setNumber(0, CURLOPT_SSL_VERIFYPEER);
    setNumber(1, CURLOPT_NOSIGNAL);
}

void CUrlCommand::setString(const QString& value, int option)
{
    m_options[option] = value.toUtf8();
}

void CUrlCommand::setNumber(int value, int option)
{
    m_options[option] = value;
}

void CUrlCommand::setPointer(PointerHolder value, int option)
{
    m_options[option] = value;
}

void CUrlCommand::setObject(const OptionValue& value, int option)
{
    const auto curlOption = static_cast<CURLoption>(option);
    CURL* const handle = m_curlObject.get();
    // The parentheses keep libcurl's type-checking macro away: the value's class decides here, not the option.
    if (const auto* text = std::get_if<QByteArray>(&value))
        m_result = (curl_easy_setopt)(handle, curlOption, text->constData());
    else if (const auto* number = std::get_if<int>(&value))
        m_result = (curl_easy_setopt)(handle, curlOption, static_cast<long>(*number));
    else if (const auto* holder = std::get_if<PointerHolder>(&value))
        m_result = (curl_easy_setopt)(handle, curlOption, holder->pointer());
    else
        Assertion::failed("unknown object class");
}

void CUrlCommand::execute()
{
    initializeLibraryOnce();
    m_curlObject.reset(curl_easy_init());
    if (!m_curlObject) {
        m_result = CURLE_FAILED_INIT;
        return;
    }
    m_result = curl_easy_setopt(m_curlObject.get(), CURLOPT_ERRORBUFFER, m_errorBuffer);
    if (m_result != 0)
        return;
    m_result = curl_easy_setopt(m_curlObject.get(), CURLOPT_URL, url().toUtf8().constData());
    handleErrorIfAny();
    curl_easy_setopt(m_curlObject.get(), CURLOPT_UPLOAD_BUFFERSIZE, uploadBufferSize);
    // A library that cannot choose keeps its own order.
    curl_easy_setopt(m_curlObject.get(), CURLOPT_TLS13_CIPHERS, cipherOrder);
    if (m_isVerbose)
        curl_easy_setopt(m_curlObject.get(), CURLOPT_VERBOSE, 1L);
    watchSockets();
    applyOptions();
    m_result = m_isCancelled ? CURLE_ABORTED_BY_CALLBACK : curl_easy_perform(m_curlObject.get());
    handleErrorIfAny();
}

void CUrlCommand::applyOptions()
{
    for (const CURLoption option : callbackOptions) {
        if (const auto callback = m_options.find(option); callback != m_options.end() && m_result == 0)
            setObject(callback->second, option);
    }
    for (const auto& [option, value] : m_options) {
        if (m_result != 0)
            return;
        setObject(value, option);
    }
}

void CUrlCommand::watchSockets()
{
    CURL* const handle = m_curlObject.get();
    curl_easy_setopt(handle, CURLOPT_MAXREDIRS, maximumRedirections);
    const curl_opensocket_callback open = [](void* command, curlsocktype purpose, curl_sockaddr* address) {
        return static_cast<curl_socket_t>(openSocket(command, purpose, address));
    };
    const curl_closesocket_callback close = [](void* command, curl_socket_t socket) {
        return closeSocket(command, socket);
    };
    curl_easy_setopt(handle, CURLOPT_OPENSOCKETFUNCTION, open);
    curl_easy_setopt(handle, CURLOPT_OPENSOCKETDATA, this);
    curl_easy_setopt(handle, CURLOPT_CLOSESOCKETFUNCTION, close);
    curl_easy_setopt(handle, CURLOPT_CLOSESOCKETDATA, this);
}

int CUrlCommand::openSocket(void* command, int /*purpose*/, void* address)
{
    auto* const self = static_cast<CUrlCommand*>(command);
    const auto* const where = static_cast<const curl_sockaddr*>(address);
    const std::scoped_lock lock(self->m_mutex);
    if (self->m_isCancelled)
        return CURL_SOCKET_BAD;
    const int descriptor = ::socket(where->family, where->socktype | SOCK_CLOEXEC, where->protocol);
    if (descriptor >= 0)
        self->m_sockets.push_back(descriptor);
    return descriptor;
}

int CUrlCommand::closeSocket(void* command, int socket)
{
    auto* const self = static_cast<CUrlCommand*>(command);
    const std::scoped_lock lock(self->m_mutex);
    std::erase(self->m_sockets, socket);
    return ::close(socket);
}

void CUrlCommand::cancel()
{
    const std::scoped_lock lock(m_mutex);
    m_isCancelled = true;
    for (const int socket : m_sockets)
        ::shutdown(socket, SHUT_RDWR);
}

QString CUrlCommand::url() const
{
    const std::scoped_lock lock(m_mutex);
    return m_url;
}

void CUrlCommand::setUrl(const QString& url)
{
    const std::scoped_lock lock(m_mutex);
    m_url = url;
}

QByteArray CUrlCommand::data() const
{
    const std::scoped_lock lock(m_mutex);
    return m_data.value_or(QByteArray());
}

void CUrlCommand::setData(const QByteArray& data)
{
    const std::scoped_lock lock(m_mutex);
    m_data = data;
}

QString CUrlCommand::dataAsString() const
{
    const QByteArray bytes = data();
    QStringDecoder utf8(QStringDecoder::Utf8,
                        QStringConverter::Flag::Stateless | QStringConverter::Flag::ConvertInitialBom);
    const QString text = utf8.decode(bytes);
    return utf8.hasError() ? QString::fromLatin1(bytes) : text;
}

Error CUrlCommand::error() const
{
    const char* const description = curl_easy_strerror(static_cast<CURLcode>(result()));
    if (!description) {
        Log::error("cURL error: Unable to get curl error description");
        return {ErrorDomain::SyncBase, 0, QStringLiteral("General error")};
    }
    return {ErrorDomain::SyncBase, 1, Text::format("cURL error( {}, {} )", result(), description)};
}

void CUrlCommand::handleErrorIfAny() const
{
    if (m_result != 0)
        Log::error("cURL error code = {}", m_result.load());
}

std::size_t CUrlCommand::selfBodyFunction(const char* bytes, std::size_t size, std::size_t number)
{
    setData(QByteArray(bytes, static_cast<qsizetype>(size * number)));
    return size * number;
}

int CUrlCommand::progressCalled(double dlTotal, double dlNow, double ulTotal, double ulNow)
{
    const Progress progress{dlTotal, dlNow, ulTotal, ulNow};
    if (std::exchange(m_lastProgress, progress) == progress)
        return 0;
    return progressCallbackDLTotal(dlTotal, dlNow, ulTotal, ulNow);
}

int CUrlCommand::progressCallbackDLTotal(double dlTotal, double dlNow, double ulTotal, double ulNow)
{
    const Progress progress{dlTotal, dlNow, ulTotal, ulNow};
    MainThread::runAndWait([this, progress] { notifyObserverProgressFromMainThread(progress); });
    return 0;
}

void CUrlCommand::notifyObserverProgressFromMainThread(const Progress& progress)
{
    if (CUrlCommandResultObserver* const toTell = observer())
        toTell->curlCommandProgress(*this, progress.dlNow, progress.dlTotal, progress.ulNow, progress.ulTotal);
}
