#pragma once

#include <QString>

#include <optional>

// The rules that make a deponent's name of what follows the phrase "deposition of". They are lopsided in places; each
// decides what the user sees prefilled. Pure; linear in the length of the text.
namespace DeponentName {

struct Names
{
    QString first;
    QString last;
    bool operator==(const Names&) const = default;
};

// `line` without the numbers in its margin. A line that begins with two or more numbers collapses to the empty text.
[[nodiscard]] QString withoutMarginNumbers(const QString& line);
// The name at the front of `text`, which goes on after it: "JOHN A. SMITH taken on behalf" gives "JOHN A. SMITH".
[[nodiscard]] QString candidate(QString text);
// Nothing when the last name, to which the mark of a corporate witness is added, is not to be found in the candidate,
// so that there is no telling where the first name ends.
[[nodiscard]] std::optional<Names> split(const QString& candidate, bool corporateWitness);

// `text` without the characters of `characters` at both ends.
[[nodiscard]] QString trimmed(const QString& text, QStringView characters);

// White space within a line: the tab and Unicode's space separators.
[[nodiscard]] bool isHorizontalSpace(QChar c);

} // namespace DeponentName
