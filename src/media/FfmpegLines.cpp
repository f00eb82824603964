#include "media/FfmpegLines.h"

#include <algorithm>

namespace {

// Line feed to carriage return. The line separators beyond ASCII cannot come: the lines are cut before the bytes of a
// file's name or title are decoded.
bool isNewline(char byte)
{
    return byte >= '\n' && byte <= '\r';
}

} // namespace

QStringList FfmpegLines::add(QByteArrayView piece)
{
    const QByteArray text = m_unfinishedLine + piece.toByteArray();
    QStringList lines;
    const char* start = text.cbegin();
    for (;;) {
        const char* const end = std::find_if(start, text.cend(), isNewline);
        if (end == text.cend())
            break;
        lines.append(QString::fromUtf8(start, end - start));
        start = end + 1;
    }
    if (start == text.cend())
        lines.append(QString());
    else
        m_unfinishedLine = QByteArray(start, std::min<qsizetype>(text.cend() - start, longestUnfinishedLine));
    return lines;
}
