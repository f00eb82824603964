#pragma once

#include "commands/CUrlCommand.h"
#include "settings/ServiceHosts.h"

// Asks whether the user may order the LOG delivery format.
class LogAvailabilityCommand : public CUrlCommand
{
public:
    LogAvailabilityCommand(const ServiceHosts& hosts, const QString& user, const QString& password,
                           const QString& contactID);
    [[nodiscard]] static std::shared_ptr<LogAvailabilityCommand>
    logAvailabilityCommandWithUser(const ServiceHosts& hosts, const QString& user, const QString& password,
                                   const QString& contactID);
};
