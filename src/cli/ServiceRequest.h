#pragma once

#include "commands/CUrlCommand.h"
#include "commands/CUrlCommandProcessor.h"

#include <functional>
#include <memory>

// One command whose end is handled by a function, for requests that are not the engine's. Main thread. The request must
// live until the function was called; the function gets whether the transfer succeeded.
class ServiceRequest : public CUrlCommandResultObserver
{
public:
    using Ended = std::function<void(CUrlCommand& command, bool succeeded)>;

    ServiceRequest(CUrlCommandProcessor& processor, const std::shared_ptr<CUrlCommand>& command, Ended ended);

    void curlCommandDone(CUrlCommand& command) override { m_ended(command, /*succeeded=*/true); }
    void curlCommandFailed(CUrlCommand& command) override { m_ended(command, /*succeeded=*/false); }
    void curlCommandProgress(CUrlCommand&, double, double, double, double) override {}

private:
    Ended m_ended;
};
