#include "commands/CheckStatusCommand.h"

#include "foundation/Text.h"

#include <curl/curl.h>

CheckStatusCommand::CheckStatusCommand(const ServiceHosts& hosts, const QString& user, const QString& password,
                                       const QString& contactID, const std::optional<QString>& machineID)
    : CUrlCommand(hosts.secureUrl(QStringLiteral("/saltine/checkstatus.php")))
{
    QString body = Text::format("user={}&pass={}&contactID={}", user, password, contactID);
    if (machineID)
        body += Text::format("&comp={}", *machineID);
    setString(body, CURLOPT_POSTFIELDS);
}

std::shared_ptr<CheckStatusCommand>
CheckStatusCommand::checkStatusCommandWithUser(const ServiceHosts& hosts, const QString& user, const QString& password,
                                               const QString& contactID, const std::optional<QString>& machineID)
{
    return std::make_shared<CheckStatusCommand>(hosts, user, password, contactID, machineID);
}
