#pragma once

#include "demo-service/Records.h"

#include <QString>

#include <string>
#include <vector>

namespace DemoService {
class Service;
}

// What goes wrong with one request.
enum class FaultKind {
    Refused,
    ResetBeforeReply,
    ResetInReply,
    ResetBehindReply,
    ResetInRequest,
    Status500,
    Status404,
    EmptyReply,
    WrongWords,
    OtherWords,
    Garbage,
    NulBytes,
    SingleBytes,
    Silence,
    RedirectLoop,
};

// One of the service's answers to the client, and how a request for it is told from its neighbours.
struct Request
{
    std::string endpoint;
    std::string where = {};
    int passes = 0;                             // so many requests are answered before the one that is meant
    std::string otherWords = "UPLOAD COMPLETE"; // a good reply, to another request
    bool isEmptyGood = false;                   // an empty reply is the good one; the service has done what it says
};

namespace Faults {

enum class Often { Once, ForGood };

[[nodiscard]] const std::vector<FaultKind>& all();
// Those that this run meets the request of that title with: all of them, but under a sanitizer, where each costs many
// times as much, a third that QUILLPOST_FAULTS_SEED draws.
[[nodiscard]] std::vector<FaultKind> triedFor(const QString& title);
// As the table calls it.
[[nodiscard]] QString nameOf(FaultKind kind);
// From now on the request meets the fault.
void install(DemoService::Service& service, const Request& request, FaultKind kind, Often often);
// The reply that a fault gives, or nothing where it gives none of its own.
[[nodiscard]] std::optional<std::string> replyOf(FaultKind kind, const Request& request);

// A port of this machine where nobody listens, nor will while the process lives.
[[nodiscard]] int closedPort();

} // namespace Faults
