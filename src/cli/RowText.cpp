#include "cli/RowText.h"

#include "cli/Terminal.h"
#include "foundation/Text.h"
#include "model/JobStatus.h"

#include <algorithm>

namespace {

constexpr int barWidth = 20;
constexpr int stateWidth = 24;

int percent(const ProgressRow& row)
{
    return static_cast<int>(row.fraction().value_or(0) * 100.0);
}

QString title(const ProgressRow& row)
{
    if (row.segment != 0)
        return Text::format("  {}. {}", row.segment, row.name);
    return row.depoNum.value_or(0) == 0 ? row.name : Text::format("{} {}", *row.depoNum, row.name);
}

QString fitted(const QString& words, int columns)
{
    QString text = Terminal::withoutControls(words);
    text.replace(u'\n', u' ');
    if (text.size() <= columns)
        return text.leftJustified(columns);
    return text.left(std::max(0, columns - 1)) + QChar(0x2026);
}

} // namespace

bool RowText::isMoving(const ProgressRow& row)
{
    return row.status == JobStatusConverting || row.status == JobStatusUploading ||
           row.status == JobStatusReprocessing || row.status == JobStatusDownloading;
}

QString RowText::plain(const ProgressRow& row)
{
    QString line = Text::format("{}: {}", title(row), row.statusText);
    if (isMoving(row) && row.fraction())
        line += Text::format(" {} %", percent(row));
    return line;
}

QString RowText::live(const ProgressRow& row, int columns)
{
    QString end;
    if (isMoving(row) && row.fraction()) {
        const int full = static_cast<int>(*row.fraction() * barWidth);
        end = Text::format("[{}{}] {:3} %", QString(full, u'#'), QString(barWidth - full, u'.'), percent(row));
    } else if (row.score) {
        end = Text::format("score {}", *row.score);
    }
    const int titleWidth = std::max(10, columns - stateWidth - barWidth - 12);
    return (fitted(title(row), titleWidth) + u' ' + fitted(row.statusText, stateWidth) + u' ' + end).left(columns - 1);
}
