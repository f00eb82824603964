#include "cli/ServiceRequest.h"

ServiceRequest::ServiceRequest(CUrlCommandProcessor& processor, const std::shared_ptr<CUrlCommand>& command,
                               Ended ended)
    : m_ended(std::move(ended))
{
    command->setObserver(this);
    processor.postCommand(command);
}
