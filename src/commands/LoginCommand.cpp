#include "commands/LoginCommand.h"

#include "foundation/Text.h"

#include <curl/curl.h>

LoginCommand::LoginCommand(const ServiceHosts& hosts, const QString& user, const QString& password)
    : CUrlCommand(hosts.secureUrl(QStringLiteral("/saltine/cauthorize2.php")))
{
    setString(Text::format("user={}&pass={}", user, password), CURLOPT_POSTFIELDS);
}

std::shared_ptr<LoginCommand> LoginCommand::loginCommandWithUser(const ServiceHosts& hosts, const QString& user,
                                                                 const QString& password)
{
    return std::make_shared<LoginCommand>(hosts, user, password);
}
