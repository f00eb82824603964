#include "transcript/LineWords.h"

#include <algorithm>

qsizetype LineWords::count() const
{
    if (m_count < 0)
        m_count = WordCountWalk(m_text).startsBefore(m_text.size());
    return m_count;
}

QStringView LineWords::word(qsizetype k)
{
    k = std::max<qsizetype>(k, 0);
    while (m_words.size() <= k && m_walked < m_text.size()) {
        while (m_walked < m_text.size() && isWordSeparator(m_text.at(m_walked)))
            ++m_walked;
        const qsizetype start = m_walked;
        while (m_walked < m_text.size() && !isWordSeparator(m_text.at(m_walked)))
            ++m_walked;
        if (m_walked > start)
            m_words.push_back({.start = start, .length = m_walked - start});
    }
    if (k < m_words.size()) {
        const Range& range = m_words[k];
        return m_text.sliced(range.start, range.length);
    }
    if (m_words.empty() || isWordSeparator(m_text.back()))
        return {};
    return m_text.sliced(m_words.back().start, m_words.back().length);
}

qsizetype LineWords::position(qsizetype k) const
{
    if (k < 0 || k + 1 > count())
        return m_text.size();
    qsizetype at = 0;
    for (qsizetype seen = 0; at < m_text.size(); ++seen) {
        while (at < m_text.size() && isPositionSeparator(m_text.at(at)))
            ++at;
        if (seen == k)
            break;
        while (at < m_text.size() && !isPositionSeparator(m_text.at(at)))
            ++at;
    }
    return at;
}

qsizetype WordCountWalk::startsBefore(qsizetype end)
{
    for (; m_walked < end; ++m_walked) {
        const QChar c = m_text.at(m_walked);
        if (m_inWord) {
            m_inWord = !LineWords::isWordSeparator(c);
        } else if (!LineWords::isWordSeparator(c) && c != u'\f') {
            m_inWord = true;
            ++m_starts;
        }
    }
    return m_starts;
}
