#include "foundation/NumberReading.h"

#include <QMetaType>

#include <cmath>
#include <limits>

namespace {

qsizetype skipWhiteSpace(const QString& text)
{
    qsizetype at = 0;
    while (at < text.size() && text.at(at).isSpace())
        ++at;
    return at;
}

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

int clampedInt(double number)
{
    if (std::isnan(number))
        return 0;
    if (number >= static_cast<double>(std::numeric_limits<int>::max()))
        return std::numeric_limits<int>::max();
    if (number <= static_cast<double>(std::numeric_limits<int>::min()))
        return std::numeric_limits<int>::min();
    return static_cast<int>(number);
}

} // namespace

int NumberReading::intValue(const QString& text)
{
    qsizetype at = skipWhiteSpace(text);
    bool negative = false;
    if (at < text.size() && (text.at(at) == u'-' || text.at(at) == u'+')) {
        negative = text.at(at) == u'-';
        ++at;
    }
    std::int64_t number = 0;
    for (; at < text.size() && isDigit(text.at(at)); ++at) {
        number = number * 10 + (text.at(at).unicode() - u'0');
        if (number > std::int64_t{std::numeric_limits<int>::max()} + 1)
            number = std::int64_t{std::numeric_limits<int>::max()} + 1;
    }
    return clampedInt(static_cast<double>(negative ? -number : number));
}

double NumberReading::doubleValue(const QString& text)
{
    const qsizetype start = skipWhiteSpace(text);
    qsizetype end = start;
    if (end < text.size() && (text.at(end) == u'-' || text.at(end) == u'+'))
        ++end;
    const qsizetype firstDigit = end;
    while (end < text.size() && isDigit(text.at(end)))
        ++end;
    qsizetype digits = end - firstDigit;
    if (end < text.size() && text.at(end) == u'.') {
        const qsizetype point = end++;
        while (end < text.size() && isDigit(text.at(end)))
            ++end;
        digits += end - point - 1;
    }
    if (digits == 0)
        return 0;
    if (end < text.size() && (text.at(end) == u'e' || text.at(end) == u'E')) {
        qsizetype exponent = end + 1;
        if (exponent < text.size() && (text.at(exponent) == u'-' || text.at(exponent) == u'+'))
            ++exponent;
        if (exponent < text.size() && isDigit(text.at(exponent))) {
            while (exponent < text.size() && isDigit(text.at(exponent)))
                ++exponent;
            end = exponent;
        }
    }
    return text.mid(start, end - start).toDouble(); // QString reads in the C locale, whatever the user's is.
}

float NumberReading::floatValue(const QString& text)
{
    return static_cast<float>(doubleValue(text));
}

int NumberReading::intValue(const QVariant& value)
{
    if (value.typeId() == QMetaType::QString)
        return intValue(value.toString());
    return clampedInt(doubleValue(value));
}

double NumberReading::doubleValue(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::QString:
        return doubleValue(value.toString());
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Float:
    case QMetaType::Double:
        return value.toDouble();
    default:
        return 0;
    }
}

float NumberReading::floatValue(const QVariant& value)
{
    return static_cast<float>(doubleValue(value));
}
