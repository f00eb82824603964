#include "foundation/DateText.h"

#include <QRegularExpression>
#include <unicode/smpdtfmt.h>

#include <array>
#include <memory>

namespace {

int monthNumber(const QString& word)
{
    static constexpr std::array<const char16_t*, 12> names{u"january",   u"february", u"march",    u"april",
                                                           u"may",       u"june",     u"july",     u"august",
                                                           u"september", u"october",  u"november", u"december"};
    const QString lower = word.toLower();
    if (lower.size() < 3)
        return 0;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (QString::fromUtf16(names[i]).startsWith(lower) || (lower == u"sept" && i == 8))
            return static_cast<int>(i) + 1;
    }
    return 0;
}

int fullYear(const QString& digits)
{
    const int year = digits.toInt();
    if (digits.size() > 2)
        return year;
    return year < 70 ? 2000 + year : 1900 + year;
}

QDate dateIn(const QString& text)
{
    static const QRegularExpression yearFirst(QStringLiteral(R"((\d{4})[-/.](\d{1,2})[-/.](\d{1,2}))"));
    static const QRegularExpression monthFirst(QStringLiteral(R"((\d{1,2})[-/.](\d{1,2})[-/.](\d{4}|\d{2})(?!\d))"));
    static const QRegularExpression compact(QStringLiteral(R"(^\s*(\d{4})(\d{2})(\d{2})(?!\d))"));
    static const QRegularExpression dayMonthYear(
        QStringLiteral(R"((\d{1,2})(?:st|nd|rd|th)?[\s,.-]+(?:of\s+)?([A-Za-z]{3,})[\s,.-]+(\d{4}))"));
    static const QRegularExpression monthDayYear(
        QStringLiteral(R"(([A-Za-z]{3,})[\s,.-]+(\d{1,2})(?:st|nd|rd|th)?[\s,.-]+(\d{4}))"));

    if (const auto m = yearFirst.match(text); m.hasMatch())
        return {m.captured(1).toInt(), m.captured(2).toInt(), m.captured(3).toInt()};
    if (const auto m = compact.match(text); m.hasMatch())
        return {m.captured(1).toInt(), m.captured(2).toInt(), m.captured(3).toInt()};
    for (auto matches = dayMonthYear.globalMatch(text); matches.hasNext();) {
        const auto m = matches.next();
        if (const int month = monthNumber(m.captured(2)))
            return {fullYear(m.captured(3)), month, m.captured(1).toInt()};
    }
    for (auto matches = monthDayYear.globalMatch(text); matches.hasNext();) {
        const auto m = matches.next();
        if (const int month = monthNumber(m.captured(1)))
            return {fullYear(m.captured(3)), month, m.captured(2).toInt()};
    }
    if (const auto m = monthFirst.match(text); m.hasMatch())
        return {fullYear(m.captured(3)), m.captured(1).toInt(), m.captured(2).toInt()};
    return {};
}

QTime timeIn(const QString& text)
{
    static const QRegularExpression clock(
        QStringLiteral(R"((?<!\d)(\d{1,2}):(\d{2})(?::(\d{2}))?(?:\.\d+)?\s*([AaPp][Mm])?)"));
    const auto m = clock.match(text);
    if (!m.hasMatch())
        return {12, 0};
    int hour = m.captured(1).toInt();
    if (const QString half = m.captured(4).toLower(); !half.isEmpty())
        hour = hour % 12 + (half == u"pm" ? 12 : 0);
    const QTime time(hour, m.captured(2).toInt(), m.captured(3).toInt());
    return time.isValid() ? time : QTime(12, 0);
}

} // namespace

QString DateText::format(const QDateTime& date, const QString& pattern)
{
    UErrorCode status = U_ZERO_ERROR;
    const std::u16string utf16Pattern = pattern.toStdU16String();
    const icu::SimpleDateFormat formatter(
        icu::UnicodeString(utf16Pattern.data(), static_cast<int32_t>(utf16Pattern.size())), status);
    if (U_FAILURE(status))
        return {};
    icu::UnicodeString text;
    formatter.format(static_cast<UDate>(date.toMSecsSinceEpoch()), text);
    return QString(reinterpret_cast<const QChar*>(text.getBuffer()), text.length());
}

std::optional<QDateTime> DateText::readLeniently(const QString& text)
{
    const QDate date = dateIn(text);
    if (!date.isValid())
        return std::nullopt;
    return QDateTime(date, timeIn(text));
}
