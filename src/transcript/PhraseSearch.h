#pragma once

#include <QString>
#include <QStringView>

#include <array>
#include <cstdint>

// Looks for one ASCII phrase, which need not be at every character of the text: Horspool's search. Callable from every
// thread.
class PhraseSearch
{
public:
    enum class Letters {
        AsWritten,
        // ASCII letters count as their lowercase forms, of which the phrase is made; all others as they are.
        Lowercase
    };

    // The phrase is a constant of the program: of at least one character, all ASCII.
    PhraseSearch(QStringView phrase, Letters letters);

    [[nodiscard]] bool isIn(QStringView text) const;

private:
    [[nodiscard]] char16_t folded(QChar c) const;

    QString m_phrase;
    Letters m_letters;
    std::array<std::uint8_t, 128> m_steps{}; // by the text's character under the phrase's last
};
