#include "commands/AccountReplies.h"

#include "foundation/TextScanner.h"

#include <unicode/coll.h>

#include <memory>

namespace {

bool equalIgnoringCaseInLocale(const QString& a, const QString& b)
{
    // First without the locale: the order of the "C" locale tells letter case apart whatever its strength.
    if (a.compare(b, Qt::CaseInsensitive) == 0)
        return true;
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::Collator> collator(icu::Collator::createInstance(status));
    if (U_FAILURE(status) || !collator)
        return false;
    collator->setStrength(icu::Collator::SECONDARY); // Letters and accents count, case does not.
    const auto text = [](const QString& from) {
        return icu::UnicodeString(reinterpret_cast<const char16_t*>(from.utf16()), static_cast<int32_t>(from.size()));
    };
    return collator->compare(text(a), text(b), status) == UCOL_EQUAL && U_SUCCESS(status);
}

} // namespace

AccountReplies::Login AccountReplies::readLogin(const QString& reply)
{
    if (reply == QStringLiteral("Change"))
        return {LoginOutcome::MustChangePassword, {}};
    TextScanner scanner(reply);
    if (scanner.scanString(u"OK: "))
        return {LoginOutcome::LoggedIn, scanner.rest()};
    return {LoginOutcome::Refused, reply};
}

bool AccountReplies::isPasswordChanged(const QString& reply)
{
    return reply == QStringLiteral("CP");
}

std::optional<QString> AccountReplies::refusalOfNewPassword(const QString& newPassword, const QString& confirmation,
                                                            const QString& oldPassword)
{
    if (newPassword != confirmation)
        return QStringLiteral("Passwords do not match");
    for (const QString& refused : {QStringLiteral("password"), QStringLiteral("secret"), oldPassword}) {
        if (equalIgnoringCaseInLocale(newPassword, refused))
            return QStringLiteral("Invalid Password");
    }
    return std::nullopt;
}
