// The date of a deposition, as the service or a transcript writes it.
#include "FuzzTarget.h"

#include "foundation/DateText.h"

#include <QRegularExpression>

using FuzzTarget::require;

FUZZ_TARGET(ServiceDates)
{
    const QString text = QString::fromUtf8(input);
    const auto date = DateText::readLeniently(text);
    require(date == DateText::readLeniently(text), "reading twice gives the same");
    if (!date)
        return;
    require(date->isValid(), "a date that is read is one");
    static const QRegularExpression sixDigits(QStringLiteral("^[0-9]{6}$"));
    require(sixDigits.match(DateText::format(*date, QStringLiteral("MMddyy"))).hasMatch(),
            "a date in a folder's name is six digits");
    const auto again = DateText::readLeniently(DateText::format(*date, QStringLiteral("yyyy-MM-dd")));
    // Before, the calendars of Qt and of ICU differ.
    require(!again || again->date() == date->date() || date->date().year() < 1583 || date->date().year() > 9999,
            "a date is read as it was written");
}
