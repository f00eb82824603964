#pragma once

#include "commands/CUrlCommand.h"
#include "settings/ServiceHosts.h"

// Asks for the product codes alone.
class GetRatesProductsCodesCommand : public CUrlCommand
{
public:
    GetRatesProductsCodesCommand(const ServiceHosts& hosts, const QString& user, const QString& password);
    [[nodiscard]] static std::shared_ptr<GetRatesProductsCodesCommand>
    getRatesProductsCodesCommandWithUser(const ServiceHosts& hosts, const QString& user, const QString& password);
};
