#pragma once

#include "commands/CUrlCommand.h"
#include "settings/ServiceHosts.h"

// Asks for the price of one product.
class GetRateForProductCodeCommand : public CUrlCommand
{
public:
    GetRateForProductCodeCommand(const ServiceHosts& hosts, const QString& user, const QString& password,
                                 const QString& productCode);
    [[nodiscard]] static std::shared_ptr<GetRateForProductCodeCommand>
    getRateForProductCodeCommandWithUser(const ServiceHosts& hosts, const QString& user, const QString& password,
                                         const QString& productCode);
    [[nodiscard]] QString productCode() const { return m_productCode; }
    void setProductCode(const QString& productCode) { m_productCode = productCode; }

private:
    QString m_productCode;
};
