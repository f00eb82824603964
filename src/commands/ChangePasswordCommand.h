#pragma once

#include "commands/CUrlCommand.h"
#include "settings/ServiceHosts.h"

// Replaces the account's password. All three values go out as typed.
class ChangePasswordCommand : public CUrlCommand
{
public:
    ChangePasswordCommand(const ServiceHosts& hosts, const QString& user, const QString& oldPassword,
                          const QString& newPassword);
    [[nodiscard]] static std::shared_ptr<ChangePasswordCommand>
    changePasswordCommandWithUser(const ServiceHosts& hosts, const QString& user, const QString& oldPassword,
                                  const QString& newPassword);
};
