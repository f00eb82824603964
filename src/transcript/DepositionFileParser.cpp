#include "transcript/DepositionFileParser.h"

#include "foundation/Log.h"
#include "foundation/NumberReading.h"
#include "foundation/Text.h"
#include "transcript/DeponentName.h"
#include "transcript/LineWords.h"
#include "transcript/PhraseSearch.h"
#include "transcript/TranscriptText.h"

#include <algorithm>
#include <array>
#include <new>
#include <optional>

namespace {

// How far from the deponent's line the date is looked for first.
constexpr qsizetype linesAround = 8;

struct Month
{
    QStringView name;
    QStringView abbreviation;
};

// "sept." alone has four letters, and "may" is an English word too.
constexpr std::array<Month, 12> months{{{u"january", u"jan."},
                                        {u"february", u"feb."},
                                        {u"march", u"mar."},
                                        {u"april", u"apr."},
                                        {u"may", u"may"},
                                        {u"june", u"jun."},
                                        {u"july", u"jul."},
                                        {u"august", u"aug."},
                                        {u"september", u"sept."},
                                        {u"october", u"oct."},
                                        {u"november", u"nov."},
                                        {u"december", u"dec."}}};

struct FoundDate
{
    int day = 0;
    const Month* month = nullptr;
    int year = 0;
};

// Of all letters, only the ASCII ones lowercase to those of the months' names, so the others need not be looked up.
char16_t lowercase(QChar c)
{
    const char16_t unit = c.unicode();
    return unit >= u'A' && unit <= u'Z' ? unit | 0x20 : unit;
}

bool lowercasesTo(QStringView word, QStringView name)
{
    return word.size() == name.size() && std::equal(word.begin(), word.end(), name.begin(),
                                                    [](QChar a, QChar b) { return lowercase(a) == b.unicode(); });
}

const Month* monthOfWord(QStringView word)
{
    if (word.size() < 3 || word.size() > 9)
        return nullptr;
    const char16_t first = lowercase(word.front());
    for (const Month& month : months) {
        if (first == month.name.front().unicode() &&
            (lowercasesTo(word, month.name) || lowercasesTo(word, month.abbreviation)))
            return &month;
    }
    return nullptr;
}

int number(QStringView word)
{
    return NumberReading::intValue(word.toString());
}

// The year of a month that ends its line: the first or second word of the line below, with its comma.
int yearBelow(const QStringList& lines, qsizetype line)
{
    qsizetype below = line + 1;
    if (below < lines.size() && lines.at(below).isEmpty())
        ++below;
    if (below >= lines.size())
        return 0;
    LineWords words(lines.at(below));
    for (qsizetype w = 0; w < 2; ++w) {
        const QStringView word = words.word(w);
        if (word.endsWith(u',') && number(word) != 0)
            return number(word);
    }
    return 0;
}

FoundDate dateOnLine(const QStringList& lines, qsizetype line)
{
    FoundDate found;
    LineWords words(lines.at(line));
    const qsizetype count = words.count();
    for (qsizetype w = 0; w < count; ++w) {
        const Month* const month = monthOfWord(words.word(w));
        if (month == nullptr)
            continue;
        // A later month on the line replaces an earlier one.
        found.month = month;
        found.day = number(words.word(w + 1));
        found.year = w < count - 1 ? number(words.word(w + 2)) : yearBelow(lines, line);
    }
    return found;
}

FoundDate dateOnLines(const QStringList& lines, qsizetype startLine, qsizetype endLine)
{
    FoundDate found;
    for (qsizetype i = std::max<qsizetype>(startLine, 0); i < std::min(endLine, lines.size()); ++i) {
        found = dateOnLine(lines, i);
        if (found.month != nullptr)
            break;
    }
    return found;
}

// What the deponent's line says after the phrase; nothing where the line is not of that kind.
std::optional<QString> nameAfterPhrase(const QString& line)
{
    static const QString phrase = QStringLiteral("deposition of");
    static const PhraseSearch search(phrase, PhraseSearch::Letters::Lowercase);
    // Few lines are worth a lowercase form: of all letters, only the ASCII ones lowercase to those of the phrase.
    if (!search.isIn(line))
        return std::nullopt;
    const QString lower = line.toLower();
    qsizetype position = lower.indexOf(phrase);
    if (position < 0)
        return std::nullopt;
    position += phrase.size();
    if (position < lower.size()) {
        const QChar next = lower.at(position);
        if (next == u':')
            ++position;
        // The line as written may be shorter than its lowercase form.
        if (line.size() - position < 2 || (next != u':' && next != u' '))
            return std::nullopt;
    }
    const QString name = line.mid(position);
    return name.left(name.indexOf(u','));
}

// The line below the deponent's, or the one after an empty line, without the number in its margin.
QString continuation(const QStringList& lines, qsizetype line)
{
    QString next = DeponentName::trimmed(lines.at(line + 1), u" \t");
    if (next.isEmpty() && line + 2 < lines.size())
        next = lines.at(line + 2);
    return DeponentName::withoutMarginNumbers(next);
}

// The text cut at each "\r\n". The lines are views of the text, which outlives them: a copy of each would take as much
// memory again as all of it.
QStringList linesOf(const QString& text)
{
    const QStringView view(text);
    QStringList lines;
    qsizetype begin = 0;
    for (qsizetype at = view.indexOf(u'\r'); at >= 0 && at + 1 < view.size(); at = view.indexOf(u'\r', at)) {
        if (view.at(at + 1) == u'\n') {
            lines << QString::fromRawData(text.constData() + begin, at - begin);
            begin = at + 2;
        }
        at = std::max(at + 1, begin);
    }
    lines << QString::fromRawData(text.constData() + begin, text.size() - begin);
    return lines;
}

} // namespace

std::shared_ptr<DepositionFileParser> DepositionFileParser::depositionFileParserWithFilePath(const QString& path)
try {
    const TranscriptText::Reading reading = TranscriptText::read(path);
    if (!reading.text) {
        Log::error("Error {}", reading.error);
        return nullptr;
    }
    const QStringList lines = linesOf(*reading.text);
    auto parser = std::make_shared<DepositionFileParser>();
    const qsizetype deponentLine = parser->findDeponent(lines);
    parser->findDepoDate(lines, std::max<qsizetype>(deponentLine - linesAround, 0),
                         std::min(deponentLine + linesAround, lines.size() - 1));
    return parser;
} catch (const std::bad_alloc&) {
    Log::error("Error \"{}\": memory does not suffice for it", path);
    return nullptr;
}

qsizetype DepositionFileParser::getNumWords(const QString& text)
{
    return LineWords(text).count();
}

QString DepositionFileParser::getWord(const QString& text, qsizetype num)
{
    return LineWords(text).word(num).toString();
}

qsizetype DepositionFileParser::getWordPos(const QString& text, qsizetype num)
{
    return LineWords(text).position(num);
}

QStringList DepositionFileParser::wordArray(const QString& text)
{
    QStringList words;
    QString word;
    for (const QChar c : text) {
        if (!DeponentName::isHorizontalSpace(c)) {
            word += c;
        } else if (!word.isEmpty()) {
            words += word;
            word.clear();
        }
    }
    if (!word.isEmpty())
        words += word;
    return words;
}

int DepositionFileParser::findDeponent(const QStringList& lines)
{
    static const PhraseSearch mark(u"30(b)(6)", PhraseSearch::Letters::AsWritten);
    bool corporateWitness = false;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        corporateWitness = corporateWitness || mark.isIn(lines.at(i));
        std::optional<QString> name = nameAfterPhrase(lines.at(i));
        if (!name)
            continue;
        if (i + 1 < lines.size())
            *name += u' ' + continuation(lines, i);
        const auto names = DeponentName::split(DeponentName::candidate(*std::move(name)), corporateWitness);
        if (!names)
            throw DeponentNameOutOfRange();
        setDeponentLastName(names->last);
        setDeponentFirstName(names->first);
        return static_cast<int>(i);
    }
    return 0;
}

void DepositionFileParser::findDepoDate(const QStringList& lines, qsizetype startLine, qsizetype endLine)
{
    const auto isComplete = [](const FoundDate& date) {
        return date.month != nullptr && date.day != 0 && date.year != 0;
    };
    FoundDate date = dateOnLines(lines, startLine, endLine);
    const qsizetype lastLine = lines.size() - 1;
    if (!isComplete(date) && (startLine != 0 || endLine != lastLine))
        date = dateOnLines(lines, 0, lastLine);
    if (!isComplete(date)) {
        setDateString({});
        return;
    }
    setDateString(Text::format("{} {} {}", QString::number(date.day).rightJustified(2, u'0'),
                               date.month->name.toString(), date.year));
}
