#include "commands/LogAvailabilityCommand.h"

#include "foundation/Text.h"

#include <curl/curl.h>

LogAvailabilityCommand::LogAvailabilityCommand(const ServiceHosts& hosts, const QString& user, const QString& password,
                                               const QString& contactID)
    : CUrlCommand(hosts.secureUrl(QStringLiteral("/saltine/is_fti.php")))
{
    setString(Text::format("user={}&pass={}&contactID={}", user, password, contactID), CURLOPT_POSTFIELDS);
}

std::shared_ptr<LogAvailabilityCommand>
LogAvailabilityCommand::logAvailabilityCommandWithUser(const ServiceHosts& hosts, const QString& user,
                                                       const QString& password, const QString& contactID)
{
    return std::make_shared<LogAvailabilityCommand>(hosts, user, password, contactID);
}
