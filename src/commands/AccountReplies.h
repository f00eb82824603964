#pragma once

#include <QString>

#include <optional>

// What the replies to the account commands mean, and which new passwords may be asked for.
namespace AccountReplies {

enum class LoginOutcome { LoggedIn, MustChangePassword, Refused };

struct Login
{
    LoginOutcome outcome = LoginOutcome::Refused;
    // LoggedIn: the contact ID, everything after "OK: " as it stands. Refused: the service's words.
    QString text;
};

[[nodiscard]] Login readLogin(const QString& reply);

// Only the exact reply is an acceptance; any other is the service's words to the user.
[[nodiscard]] bool isPasswordChanged(const QString& reply);

// The words for a new password that must not be sent, or nothing. The words that everybody tries and the old password
// are refused in any letter case, by the user's locale.
[[nodiscard]] std::optional<QString> refusalOfNewPassword(const QString& newPassword, const QString& confirmation,
                                                          const QString& oldPassword);

} // namespace AccountReplies
