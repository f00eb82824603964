#include "Faults.h"

#include "demo-service/Service.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <arpa/inet.h>
#include <iterator>
#include <limits>
#include <netinet/in.h>
#include <random>
#include <sys/socket.h>

using namespace Qt::StringLiterals;

namespace {

constexpr std::size_t garbageSize = 10'000'000;

const std::string& garbage()
{
    static const std::string bytes = [] {
        std::string made(garbageSize, ' ');
        unsigned state = 1;
        for (char& byte : made) {
            state = state * 1664525U + 1013904223U;
            byte = static_cast<char>(state >> 24);
        }
        return made;
    }();
    return bytes;
}

std::string nulBytes()
{
    std::string bytes(3000, '\0');
    bytes.replace(0, 8, std::string("no\0words", 8));
    return bytes;
}

DemoService::Override overrideOf(const DemoService::Service& service, FaultKind kind, const Request& request)
{
    using namespace std::chrono_literals;
    constexpr int keepMethod = 307;
    switch (kind) {
    case FaultKind::Refused:
        return {.status = keepMethod, .location = fmt::format("https://127.0.0.1:{}/", Faults::closedPort())};
    case FaultKind::ResetBeforeReply:
        return {.reset = true};
    case FaultKind::ResetInReply:
        return {.cutAt = 3, .resetAt = 3};
    case FaultKind::ResetBehindReply:
        return {.resetAt = std::numeric_limits<std::size_t>::max()};
    case FaultKind::ResetInRequest:
        return {.resetRequestAt = 20};
    case FaultKind::Status500:
        return {.status = 500, .reply = "Internal Server Error"};
    case FaultKind::Status404:
        return {.status = 404, .reply = "Not Found"};
    case FaultKind::EmptyReply:
        if (request.isEmptyGood)
            return {};
        [[fallthrough]];
    case FaultKind::WrongWords:
    case FaultKind::OtherWords:
    case FaultKind::Garbage:
    case FaultKind::NulBytes:
        return {.reply = Faults::replyOf(kind, request)};
    case FaultKind::SingleBytes:
        return {.pieceSize = 1, .pause = 0ms};
    case FaultKind::Silence:
        return {.delay = 300ms};
    case FaultKind::RedirectLoop:
        return {.location = service.secureHost() + "/saltine/loop.php"};
    }
    return {};
}

} // namespace

const std::vector<FaultKind>& Faults::all()
{
    static const std::vector<FaultKind> kinds{
        FaultKind::Refused,        FaultKind::ResetBeforeReply, FaultKind::ResetInReply, FaultKind::ResetBehindReply,
        FaultKind::ResetInRequest, FaultKind::Status500,        FaultKind::Status404,    FaultKind::EmptyReply,
        FaultKind::WrongWords,     FaultKind::OtherWords,       FaultKind::Garbage,      FaultKind::NulBytes,
        FaultKind::SingleBytes,    FaultKind::Silence,          FaultKind::RedirectLoop};
    return kinds;
}

std::vector<FaultKind> Faults::triedFor(const QString& title)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    constexpr bool isSanitized = true;
#else
    constexpr bool isSanitized = false;
#endif
    if (!isSanitized || !qEnvironmentVariableIsEmpty("QUILLPOST_WRITE_FAULTS"))
        return all();
    auto seed = static_cast<unsigned>(qEnvironmentVariableIntValue("QUILLPOST_FAULTS_SEED"));
    for (const char byte : title.toUtf8())
        seed = seed * 31U + static_cast<unsigned char>(byte);
    std::vector<FaultKind> drawn;
    std::ranges::sample(all(), std::back_inserter(drawn), static_cast<std::ptrdiff_t>(all().size() / 3),
                        std::mt19937(seed));
    return drawn;
}

QString Faults::nameOf(FaultKind kind)
{
    switch (kind) {
    case FaultKind::Refused:
        return u"connection refused"_s;
    case FaultKind::ResetBeforeReply:
        return u"reset before the reply"_s;
    case FaultKind::ResetInReply:
        return u"reset inside the reply"_s;
    case FaultKind::ResetBehindReply:
        return u"reset behind the reply"_s;
    case FaultKind::ResetInRequest:
        return u"reset inside the request"_s;
    case FaultKind::Status500:
        return u"status 500"_s;
    case FaultKind::Status404:
        return u"status 404"_s;
    case FaultKind::EmptyReply:
        return u"empty reply"_s;
    case FaultKind::WrongWords:
        return u"the word ERROR"_s;
    case FaultKind::OtherWords:
        return u"a good reply to another request"_s;
    case FaultKind::Garbage:
        return u"10 MB of garbage"_s;
    case FaultKind::NulBytes:
        return u"NUL bytes"_s;
    case FaultKind::SingleBytes:
        return u"the reply byte by byte"_s;
    case FaultKind::Silence:
        return u"silence"_s;
    case FaultKind::RedirectLoop:
        return u"a loop of redirects"_s;
    }
    return {};
}

std::optional<std::string> Faults::replyOf(FaultKind kind, const Request& request)
{
    switch (kind) {
    case FaultKind::EmptyReply:
        return "";
    case FaultKind::WrongWords:
        return "ERROR";
    case FaultKind::OtherWords:
        return request.otherWords;
    case FaultKind::Garbage:
        return garbage();
    case FaultKind::NulBytes:
        return nulBytes();
    default:
        return std::nullopt;
    }
}

void Faults::install(DemoService::Service& service, const Request& request, FaultKind kind, Often often)
{
    service.addOverride("loop.php", {.location = "/saltine/loop.php"});
    if (request.passes > 0)
        service.addOverride(request.endpoint, {.where = request.where, .times = request.passes});
    DemoService::Override fault = overrideOf(service, kind, request);
    fault.where = request.where;
    if (often == Often::Once)
        fault.times = 1;
    else if (kind == FaultKind::Silence)
        fault.hang = true;
    service.addOverride(request.endpoint, fault);
}

int Faults::closedPort()
{
    // Bound, so that nobody else gets it, and not listening.
    static const int number = [] {
        const int descriptor = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        EXPECT_EQ(::bind(descriptor, reinterpret_cast<const sockaddr*>(&address), size), 0);
        EXPECT_EQ(::getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &size), 0);
        return static_cast<int>(ntohs(address.sin_port));
    }();
    return number;
}
