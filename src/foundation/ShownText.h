#pragma once

#include <QString>

// Words from outside, of the service or of a damaged file, as they can stand in a message to the user: as they are, but
// for control characters, which no window or terminal shows for what they are, and for what nobody would read to its
// end. Line ends and tabs stay.
namespace ShownText {

inline constexpr qsizetype longest = 1000;

[[nodiscard]] inline QString of(const QString& words)
{
    QString text = words.left(longest);
    if (!text.isEmpty() && text.back().isHighSurrogate())
        text.chop(1);
    for (QChar& character : text) {
        const bool isControl = character.category() == QChar::Other_Control;
        if (isControl && character != u'\n' && character != u'\r' && character != u'\t')
            character = QChar::ReplacementCharacter;
    }
    if (words.size() > longest)
        text += QStringLiteral("… (%1 characters)").arg(words.size());
    return text;
}

} // namespace ShownText
