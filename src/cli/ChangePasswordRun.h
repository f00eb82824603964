#pragma once

#include "cli/Runs.h"

#include <QString>

// Replaces the account's password, then logs in with the new one.
class ChangePasswordRun : public Run
{
    Q_OBJECT
public:
    using Run::Run;
    void start() override;

private:
    [[nodiscard]] bool askNewPassword();
    void send();
    void checkNewPassword();

    QString m_newPassword;
};
