#include "commands/MiscStuffCommand.h"

#include "foundation/Text.h"

#include <curl/curl.h>

MiscStuffCommand::MiscStuffCommand(const ServiceHosts& hosts, const QString& user, const QString& password, int depoNum,
                                   const QString& extraFormData)
    : CUrlCommand(hosts.secureUrl(QStringLiteral("/saltine/miscstuff.php")))
{
    setString(Text::format("user={}&pass={}&depo={}&{}", user, password, depoNum, extraFormData), CURLOPT_POSTFIELDS);
}

std::shared_ptr<MiscStuffCommand> MiscStuffCommand::miscStuffCommandWithUser(const ServiceHosts& hosts,
                                                                             const QString& user,
                                                                             const QString& password, int depoNum,
                                                                             const QString& extraFormData)
{
    return std::make_shared<MiscStuffCommand>(hosts, user, password, depoNum, extraFormData);
}
