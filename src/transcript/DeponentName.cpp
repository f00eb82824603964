#include "transcript/DeponentName.h"

#include "transcript/LineWords.h"

#include <algorithm>
#include <vector>

namespace {

bool isSignificant(QStringView word)
{
    return !word.isEmpty() && (!word.endsWith(u'.') || word.size() >= 5);
}

bool isUpper(QStringView word)
{
    const QString text = word.toString();
    return text == text.toUpper();
}

bool isCapitalised(QStringView word)
{
    if (word.isEmpty() || isUpper(word))
        return false;
    const bool pair = word.size() > 1 && word.at(0).isHighSurrogate() && word.at(1).isLowSurrogate();
    return isUpper(word.first(pair ? 2 : 1));
}

qsizetype lowercaseCharacters(QStringView word)
{
    return std::count_if(word.begin(), word.end(), [](QChar c) { return c != c.toUpper(); });
}

bool beginsWithJuniorOrSenior(QStringView word)
{
    const QString lower = word.toString().toLower();
    return lower.startsWith(u"jr") || lower.startsWith(u"sr");
}

// Whether the C library's integer conversion of the word gives anything but 0. A word that is not ASCII is no number.
bool isNumber(QStringView word)
{
    if (std::any_of(word.begin(), word.end(), [](QChar c) { return c.unicode() >= 0x80; }))
        return false;
    auto at = std::find_if_not(word.begin(), word.end(), [](QChar c) { return c == u'\v' || c == u'\f'; });
    if (at != word.end() && (*at == u'+' || *at == u'-'))
        ++at;
    at = std::find_if_not(at, word.end(), [](QChar c) { return c == u'0'; });
    return at != word.end() && *at >= u'1' && *at <= u'9';
}

qsizetype skip(QStringView text, qsizetype at, bool separators)
{
    while (at < text.size() && LineWords::isPositionSeparator(text.at(at)) == separators)
        ++at;
    return at;
}

// How many words of the text belong to the name.
qsizetype wordsOfName(LineWords& words)
{
    qsizetype kept = 0;
    int significant = 0;
    do {
        if (isSignificant(words.word(kept)))
            ++significant;
        ++kept;
    } while (significant < 2 && kept <= words.count());

    // A capitalised word after a full one is taken for the last name after a middle name.
    const QStringView before = words.word(kept - 1);
    if (isCapitalised(words.word(kept)) && !before.isEmpty() && !before.endsWith(u'.'))
        ++kept;
    // "III" is left out on purpose: only split() knows it.
    if (beginsWithJuniorOrSenior(words.word(kept)))
        ++kept;

    // An all-capital heading ends where ordinary text or a short word follows.
    if (kept > 2 && isUpper(words.word(0))) {
        for (qsizetype k = 2; k < kept; ++k) {
            const QStringView word = words.word(k);
            if (word.size() < 5 || lowercaseCharacters(word) > 2)
                return k;
        }
    }
    return kept;
}

// Knuth, Morris and Pratt's search: linear whatever the texts hold.
qsizetype firstOccurrence(QStringView text, QStringView part)
{
    if (part.isEmpty())
        return 0;
    std::vector<qsizetype> border(static_cast<std::size_t>(part.size()), 0);
    const auto extend = [&](qsizetype matched, QChar c) {
        while (matched > 0 && part.at(matched) != c)
            matched = border[static_cast<std::size_t>(matched - 1)];
        return part.at(matched) == c ? matched + 1 : 0;
    };
    for (qsizetype i = 1; i < part.size(); ++i)
        border[static_cast<std::size_t>(i)] = extend(border[static_cast<std::size_t>(i - 1)], part.at(i));
    qsizetype matched = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        matched = extend(matched, text.at(i));
        if (matched == part.size())
            return i + 1 - matched;
    }
    return -1;
}

QStringView afterLastSpace(QStringView text)
{
    const auto space = std::find_if(text.rbegin(), text.rend(), DeponentName::isHorizontalSpace);
    return text.last(space - text.rbegin());
}

} // namespace

bool DeponentName::isHorizontalSpace(QChar c)
{
    return c == u'\t' || c.category() == QChar::Separator_Space;
}

QString DeponentName::trimmed(const QString& text, QStringView characters)
{
    qsizetype begin = 0;
    qsizetype end = text.size();
    while (begin < end && characters.contains(text.at(begin)))
        ++begin;
    while (end > begin && characters.contains(text.at(end - 1)))
        --end;
    return text.sliced(begin, end - begin);
}

QString DeponentName::withoutMarginNumbers(const QString& line)
{
    const QStringView text(line);
    const qsizetype total = LineWords(text).count();
    WordCountWalk counted(text);
    qsizetype begin = 0;     // where what is left of the line begins
    qsizetype wordBegin = 0; // its first word, which a carriage return may separate from `begin`
    qsizetype wordEnd = 0;
    bool number = false;
    qsizetype stripped = 0;
    qsizetype left = total;
    do {
        if (wordEnd == 0 || wordBegin < begin) {
            wordBegin = begin;
            while (wordBegin < text.size() && LineWords::isWordSeparator(text.at(wordBegin)))
                ++wordBegin;
            wordEnd = wordBegin;
            while (wordEnd < text.size() && !LineWords::isWordSeparator(text.at(wordEnd)))
                ++wordEnd;
            number = isNumber(text.sliced(wordBegin, wordEnd - wordBegin));
        }
        if (!number)
            break;
        // The count of words left is held against the count of words stripped, so a second number rarely survives.
        if (left <= stripped + 1)
            return {};
        begin = skip(text, skip(text, skip(text, begin, true), false), true);
        left = total - counted.startsBefore(begin);
        ++stripped;
    } while (stripped < left);
    return line.sliced(begin);
}

QString DeponentName::candidate(QString text)
{
    text.remove(u',');
    LineWords words(text);
    const qsizetype kept = wordsOfName(words);
    QString name = trimmed(text, u" \t");
    name.truncate(LineWords(name).position(kept));
    name = trimmed(name, u" .");
    // Names end up in file names.
    name.removeIf([](QChar c) { return QStringView(u"\\/:*?\"<>|").contains(c); });
    return name;
}

std::optional<DeponentName::Names> DeponentName::split(const QString& candidate, bool corporateWitness)
{
    const QStringView whole(candidate);
    QStringView piece = afterLastSpace(whole);
    const bool hasPieceBefore = piece.size() < whole.size();
    const bool suffix = beginsWithJuniorOrSenior(piece) || piece.toString().toLower().startsWith(u"iii");
    if (suffix && hasPieceBefore)
        piece = afterLastSpace(whole.chopped(piece.size() + 1));
    QString last = piece.toString();
    if (corporateWitness)
        last += u" 30(b)(6)";
    const qsizetype firstEnd = firstOccurrence(whole, last);
    if (firstEnd < 0)
        return std::nullopt;
    return Names{.first = candidate.first(firstEnd).trimmed(), .last = last.trimmed()};
}
