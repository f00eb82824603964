#include "commands/GetRates2Command.h"

#include "foundation/Text.h"

#include <curl/curl.h>

GetRates2Command::GetRates2Command(const ServiceHosts& hosts, const QString& user, const QString& password)
    : CUrlCommand(hosts.secureUrl(QStringLiteral("/saltine/get_rates2.php")))
{
    setString(Text::format("user={}&pass={}", user, password), CURLOPT_POSTFIELDS);
}

std::shared_ptr<GetRates2Command>
GetRates2Command::getRates2CommandWithUser(const ServiceHosts& hosts, const QString& user, const QString& password)
{
    return std::make_shared<GetRates2Command>(hosts, user, password);
}
