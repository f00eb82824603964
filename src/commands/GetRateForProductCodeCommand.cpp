#include "commands/GetRateForProductCodeCommand.h"

#include "foundation/Text.h"

#include <curl/curl.h>

GetRateForProductCodeCommand::GetRateForProductCodeCommand(const ServiceHosts& hosts, const QString& user,
                                                           const QString& password, const QString& productCode)
    : CUrlCommand(hosts.secureUrl(QStringLiteral("/saltine/get_rates.php"))), m_productCode(productCode)
{
    setString(Text::format("user={}&pass={}&prod={}", user, password, productCode), CURLOPT_POSTFIELDS);
}

std::shared_ptr<GetRateForProductCodeCommand>
GetRateForProductCodeCommand::getRateForProductCodeCommandWithUser(const ServiceHosts& hosts, const QString& user,
                                                                   const QString& password, const QString& productCode)
{
    return std::make_shared<GetRateForProductCodeCommand>(hosts, user, password, productCode);
}
