#include "ui/log/LogSearch.h"

#include <QTextBlock>
#include <QTextDocument>

namespace {

// Calls `visit` with each match of a line until it returns false.
template <typename Visit>
void eachMatch(const QTextBlock& line, const QString& text, Visit visit)
{
    const QString words = line.text();
    for (qsizetype at = words.indexOf(text, 0, Qt::CaseInsensitive); at >= 0;
         at = words.indexOf(text, at + text.size(), Qt::CaseInsensitive)) {
        if (!visit(LogSearch::Match{line.position() + static_cast<int>(at), static_cast<int>(text.size())}))
            return;
    }
}

} // namespace

qsizetype LogSearch::count(const QString& text) const
{
    qsizetype number = 0;
    for (QTextBlock line = m_document.begin(); line.isValid() && !text.isEmpty(); line = line.next())
        eachMatch(line, text, [&number](const Match&) { return ++number > 0; });
    return number;
}

QList<LogSearch::Match> LogSearch::matchesOf(const QTextBlock& line, const QString& text, qsizetype atMost)
{
    QList<Match> matches;
    if (text.isEmpty())
        return matches;
    eachMatch(line, text, [&](const Match& each) {
        matches.append(each);
        return matches.size() < atMost;
    });
    return matches;
}

qsizetype LogSearch::numberOf(const QString& text, const Match& match) const
{
    qsizetype number = 0;
    for (QTextBlock line = m_document.begin(); line.isValid() && !text.isEmpty(); line = line.next()) {
        qsizetype found = 0;
        eachMatch(line, text, [&](const Match& each) {
            ++number;
            if (each == match)
                found = number;
            return each.position < match.position;
        });
        if (found > 0)
            return found;
        if (line.position() > match.position)
            break;
    }
    return 0;
}

std::optional<LogSearch::Match> LogSearch::next(const QString& text, int from) const
{
    std::optional<Match> found;
    const auto firstFrom = [&](QTextBlock line, int least) {
        for (; line.isValid() && !found; line = line.next()) {
            eachMatch(line, text, [&](const Match& each) {
                if (each.position < least)
                    return true;
                found = each;
                return false;
            });
        }
    };
    if (text.isEmpty())
        return found;
    if (const QTextBlock line = m_document.findBlock(from); line.isValid())
        firstFrom(line, from);
    firstFrom(m_document.begin(), 0);
    return found;
}

std::optional<LogSearch::Match> LogSearch::previous(const QString& text, int before) const
{
    std::optional<Match> found;
    const auto lastBefore = [&](QTextBlock line, int end) {
        for (; line.isValid() && !found; line = line.previous()) {
            eachMatch(line, text, [&](const Match& each) {
                if (each.position + each.length <= end)
                    found = each;
                return true;
            });
        }
    };
    if (text.isEmpty())
        return found;
    if (const QTextBlock line = m_document.findBlock(before); line.isValid())
        lastBefore(line, before);
    lastBefore(m_document.lastBlock(), m_document.characterCount());
    return found;
}
