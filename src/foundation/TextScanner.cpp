#include "foundation/TextScanner.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace {

bool isLineEnd(QChar c)
{
    return (c >= u'\n' && c <= u'\r') || c == QChar(0x0085) || c == QChar(0x2028) || c == QChar(0x2029);
}

bool isWhite(QChar c)
{
    return c.isSpace() || isLineEnd(c);
}

} // namespace

TextScanner::TextScanner(QString text, Qt::CaseSensitivity caseSensitivity)
    : m_text(std::move(text)), m_caseSensitivity(caseSensitivity)
{}

qsizetype TextScanner::afterWhiteSpace() const
{
    qsizetype at = m_location;
    while (at < m_text.size() && isWhite(m_text.at(at)))
        ++at;
    return at;
}

bool TextScanner::isAtEnd() const
{
    return afterWhiteSpace() >= m_text.size();
}

void TextScanner::setLocation(qsizetype location)
{
    m_location = std::clamp<qsizetype>(location, 0, m_text.size());
}

bool TextScanner::scanString(QStringView word)
{
    const qsizetype start = afterWhiteSpace();
    if (!QStringView(m_text).mid(start).startsWith(word, m_caseSensitivity))
        return false;
    m_location = start + word.size();
    return true;
}

std::optional<int> TextScanner::scanInt()
{
    qsizetype at = afterWhiteSpace();
    bool negative = false;
    if (at < m_text.size() && (m_text.at(at) == u'-' || m_text.at(at) == u'+')) {
        negative = m_text.at(at) == u'-';
        ++at;
    }
    const qsizetype firstDigit = at;
    constexpr std::int64_t limit = std::int64_t{std::numeric_limits<int>::max()} + 1;
    std::int64_t number = 0;
    for (; at < m_text.size() && m_text.at(at) >= u'0' && m_text.at(at) <= u'9'; ++at)
        number = std::min(limit, number * 10 + (m_text.at(at).unicode() - u'0'));
    if (at == firstDigit)
        return std::nullopt;
    m_location = at;
    return static_cast<int>(negative ? -number : std::min(number, limit - 1));
}

std::optional<QString> TextScanner::scanUpToString(QStringView word)
{
    const qsizetype start = afterWhiteSpace();
    qsizetype end = QStringView(m_text).indexOf(word, start, m_caseSensitivity);
    if (end < 0)
        end = m_text.size();
    if (end == start)
        return std::nullopt;
    m_location = end;
    return m_text.mid(start, end - start);
}

std::optional<QString> TextScanner::scanWord()
{
    const qsizetype start = afterWhiteSpace();
    qsizetype end = start;
    while (end < m_text.size() && !isWhite(m_text.at(end)))
        ++end;
    if (end == start)
        return std::nullopt;
    m_location = end;
    return m_text.mid(start, end - start);
}

std::optional<QString> TextScanner::scanLine()
{
    const qsizetype start = afterWhiteSpace();
    qsizetype end = start;
    while (end < m_text.size() && !isLineEnd(m_text.at(end)))
        ++end;
    if (end == start)
        return std::nullopt;
    m_location = end;
    return m_text.mid(start, end - start);
}

QString TextScanner::rest() const
{
    return m_text.mid(m_location);
}
