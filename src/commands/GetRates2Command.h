#pragma once

#include "commands/CUrlCommand.h"
#include "settings/ServiceHosts.h"

// Asks for the user's prices and product codes.
class GetRates2Command : public CUrlCommand
{
public:
    GetRates2Command(const ServiceHosts& hosts, const QString& user, const QString& password);
    [[nodiscard]] static std::shared_ptr<GetRates2Command>
    getRates2CommandWithUser(const ServiceHosts& hosts, const QString& user, const QString& password);
};
