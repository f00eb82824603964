#pragma once

#include "commands/CUrlCommand.h"
#include "settings/ServiceHosts.h"

// Asks for the status of the user's jobs: all of them, or those of one machine.
class CheckStatusCommand : public CUrlCommand
{
public:
    CheckStatusCommand(const ServiceHosts& hosts, const QString& user, const QString& password,
                       const QString& contactID, const std::optional<QString>& machineID);
    [[nodiscard]] static std::shared_ptr<CheckStatusCommand>
    checkStatusCommandWithUser(const ServiceHosts& hosts, const QString& user, const QString& password,
                               const QString& contactID, const std::optional<QString>& machineID);
};
