#include "transcript/PhraseSearch.h"

PhraseSearch::PhraseSearch(QStringView phrase, Letters letters) : m_phrase(phrase.toString()), m_letters(letters)
{
    m_steps.fill(static_cast<std::uint8_t>(phrase.size()));
    for (qsizetype i = 0; i + 1 < phrase.size(); ++i)
        m_steps.at(phrase.at(i).unicode()) = static_cast<std::uint8_t>(phrase.size() - 1 - i);
}

char16_t PhraseSearch::folded(QChar c) const
{
    const char16_t unit = c.unicode();
    return m_letters == Letters::Lowercase && unit >= u'A' && unit <= u'Z' ? unit | 0x20 : unit;
}

bool PhraseSearch::isIn(QStringView text) const
{
    const QStringView phrase(m_phrase);
    for (qsizetype end = phrase.size(); end <= text.size();) {
        const char16_t last = folded(text.at(end - 1));
        qsizetype matched = 0;
        while (matched < phrase.size() &&
               folded(text.at(end - 1 - matched)) == phrase.at(phrase.size() - 1 - matched).unicode())
            ++matched;
        if (matched == phrase.size())
            return true;
        end += last < m_steps.size() ? m_steps[last] : phrase.size();
    }
    return false;
}
