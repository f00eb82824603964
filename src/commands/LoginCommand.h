#pragma once

#include "commands/CUrlCommand.h"
#include "settings/ServiceHosts.h"

// Checks a user name and password; the reply holds the contact ID (AccountReplies.h). Both go out as typed.
class LoginCommand : public CUrlCommand
{
public:
    LoginCommand(const ServiceHosts& hosts, const QString& user, const QString& password);
    [[nodiscard]] static std::shared_ptr<LoginCommand>
    loginCommandWithUser(const ServiceHosts& hosts, const QString& user, const QString& password);
};
