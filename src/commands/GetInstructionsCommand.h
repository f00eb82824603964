#pragma once

#include "commands/CUrlCommand.h"
#include "settings/ServiceHosts.h"

// Asks whether the service wants something of this program. The one query whose user and password are encoded.
class GetInstructionsCommand : public CUrlCommand
{
public:
    GetInstructionsCommand(const ServiceHosts& hosts, const QString& user, const QString& password);
    [[nodiscard]] static std::shared_ptr<GetInstructionsCommand>
    getInstructionsCommandWithUser(const ServiceHosts& hosts, const QString& user, const QString& password);
};
