#pragma once

#include "commands/CUrlCommand.h"
#include "settings/ServiceHosts.h"

// Asks for one fact of a job. The extra form data ends the body as it stands, and may be empty.
class MiscStuffCommand : public CUrlCommand
{
public:
    MiscStuffCommand(const ServiceHosts& hosts, const QString& user, const QString& password, int depoNum,
                     const QString& extraFormData);
    [[nodiscard]] static std::shared_ptr<MiscStuffCommand>
    miscStuffCommandWithUser(const ServiceHosts& hosts, const QString& user, const QString& password, int depoNum,
                             const QString& extraFormData);
};
