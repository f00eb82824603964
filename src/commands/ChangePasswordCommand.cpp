#include "commands/ChangePasswordCommand.h"

#include "foundation/Text.h"

#include <curl/curl.h>

ChangePasswordCommand::ChangePasswordCommand(const ServiceHosts& hosts, const QString& user, const QString& oldPassword,
                                             const QString& newPassword)
    : CUrlCommand(hosts.secureUrl(QStringLiteral("/saltine/CUpdate.php")))
{
    setString(Text::format("user={}&pass={}&npass={}", user, oldPassword, newPassword), CURLOPT_POSTFIELDS);
}

std::shared_ptr<ChangePasswordCommand> ChangePasswordCommand::changePasswordCommandWithUser(const ServiceHosts& hosts,
                                                                                            const QString& user,
                                                                                            const QString& oldPassword,
                                                                                            const QString& newPassword)
{
    return std::make_shared<ChangePasswordCommand>(hosts, user, oldPassword, newPassword);
}
