#include "cli/ChangePasswordRun.h"

#include "cli/CliApplication.h"
#include "cli/Terminal.h"
#include "commands/AccountReplies.h"
#include "commands/ChangePasswordCommand.h"
#include "foundation/Text.h"

namespace {

constexpr qsizetype shortestPassword = 4;

} // namespace

void ChangePasswordRun::start()
{
    if (!application().prepareForService() || !askNewPassword()) {
        application().end(ExitCode::Usage);
        return;
    }
    send();
}

bool ChangePasswordRun::askNewPassword()
{
    const auto newPassword =
        application().secret(CliApplication::Secret::NewPassword, QStringLiteral("New password: "));
    if (!newPassword)
        return false;
    QString confirmation = *newPassword;
    if (!application().isNewPasswordInEnvironment())
        confirmation = Terminal::askSecret(QStringLiteral("New password again: ")).value_or(QString());
    if (const auto refusal =
            AccountReplies::refusalOfNewPassword(*newPassword, confirmation, application().password())) {
        application().reporter().error(*refusal);
        return false;
    }
    if (newPassword->size() < shortestPassword) {
        application().reporter().error(
            Text::format("A password has at least {} characters.", static_cast<int>(shortestPassword)));
        return false;
    }
    m_newPassword = *newPassword;
    return true;
}

void ChangePasswordRun::send()
{
    CliApplication& app = application();
    app.request(
        ChangePasswordCommand::changePasswordCommandWithUser(app.hosts(), app.user(), app.password(), m_newPassword),
        [this, &app](CUrlCommand& command, bool succeeded) {
            if (!succeeded) {
                app.presentFailure(command, QStringLiteral("The password cannot be changed"));
                app.end(ExitCode::ServiceError);
            } else if (!AccountReplies::isPasswordChanged(command.dataAsString())) {
                app.reporter().error(command.dataAsString());
                app.end(ExitCode::LoginRefused);
            } else {
                checkNewPassword();
            }
        });
}

void ChangePasswordRun::checkNewPassword()
{
    application().setPassword(m_newPassword);
    application().login([this](const QString& contactID) {
        application().reporter().result(
            QStringLiteral("The password is changed."),
            {{QStringLiteral("event"), QStringLiteral("passwordChanged")}, {QStringLiteral("contactID"), contactID}});
        application().end(ExitCode::Done);
    });
}
