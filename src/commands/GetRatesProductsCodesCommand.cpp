#include "commands/GetRatesProductsCodesCommand.h"

#include "foundation/Text.h"

#include <curl/curl.h>

GetRatesProductsCodesCommand::GetRatesProductsCodesCommand(const ServiceHosts& hosts, const QString& user,
                                                           const QString& password)
    : CUrlCommand(hosts.secureUrl(QStringLiteral("/saltine/get_rates.php")))
{
    setString(Text::format("user={}&pass={}", user, password), CURLOPT_POSTFIELDS);
}

std::shared_ptr<GetRatesProductsCodesCommand>
GetRatesProductsCodesCommand::getRatesProductsCodesCommandWithUser(const ServiceHosts& hosts, const QString& user,
                                                                   const QString& password)
{
    return std::make_shared<GetRatesProductsCodesCommand>(hosts, user, password);
}
