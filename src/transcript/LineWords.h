#pragma once

#include <QStringView>
#include <QVarLengthArray>

// The words of one line, as the deposition rules count them: on UTF-16 code units, with separator sets that differ
// slightly from one operation to the next. A view: the text must outlive it. One thread at a time.
class LineWords
{
public:
    explicit LineWords(QStringView text) : m_text(text) {}

    // A form feed never starts a word here, but it does not end one either.
    [[nodiscard]] qsizetype count() const;
    // Word k from 0. Past the last word: the last word again, or the empty text where the line ends in a separator.
    // A form feed is an ordinary character here. Words already passed are remembered, so that asking for one word
    // after the other is one walk over the line.
    [[nodiscard]] QStringView word(qsizetype k);
    // Where word k begins. Carriage returns and form feeds are ordinary characters here, so this may disagree with the
    // other two. The length of the text where the count says, or the walk finds, that there is no word k.
    [[nodiscard]] qsizetype position(qsizetype k) const;

    // Separators of word().
    [[nodiscard]] static bool isWordSeparator(QChar c) { return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r'; }
    // Separators of position().
    [[nodiscard]] static bool isPositionSeparator(QChar c) { return c == u' ' || c == u'\t' || c == u'\n'; }

private:
    struct Range
    {
        qsizetype start;
        qsizetype length;
    };

    QStringView m_text;
    QVarLengthArray<Range, 32> m_words; // more than most lines have
    qsizetype m_walked = 0;
    mutable qsizetype m_count = -1;
};

// Counts the starts of words from front to back, stopping anywhere on the way.
class WordCountWalk
{
public:
    explicit WordCountWalk(QStringView text) : m_text(text) {}

    // How many words start before `end`. `end` must not go back from one call to the next.
    qsizetype startsBefore(qsizetype end);

private:
    QStringView m_text;
    qsizetype m_walked = 0;
    qsizetype m_starts = 0;
    bool m_inWord = false;
};
