#pragma once

#include <QDateTime>
#include <QString>

#include <optional>

// Dates as texts, with the patterns and calendar rules of the Unicode standard (so "YYYY" is the year of the week).
// The user's locale and time zone apply. Callable from every thread.
namespace DateText {

[[nodiscard]] QString format(const QDateTime& date, const QString& pattern);

// Reads a date as people write it: "2011-03-04", "03/04/2011" (month first), "4 march 2011", "March 4, 2011",
// "Mar. 4 2011", with or without a time after it. Noon of that day where no time is given; nothing when unreadable.
[[nodiscard]] std::optional<QDateTime> readLeniently(const QString& text);

} // namespace DateText
