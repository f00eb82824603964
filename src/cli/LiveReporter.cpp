#include "cli/LiveReporter.h"

#include "cli/RowText.h"
#include "cli/Terminal.h"

#include <cstdio>

namespace {

// A block taller than the terminal could not be drawn over itself.
constexpr qsizetype mostLines = 20;

} // namespace

LiveReporter::~LiveReporter()
{
    std::fflush(stdout);
}

void LiveReporter::erase()
{
    if (m_linesOnScreen > 0)
        std::printf("\x1b[%lldA\r\x1b[J", static_cast<long long>(m_linesOnScreen));
    m_linesOnScreen = 0;
}

void LiveReporter::draw()
{
    for (const QString& line : m_lines)
        std::printf("%s\n", line.toUtf8().constData());
    m_linesOnScreen = m_lines.size();
    std::fflush(stdout);
}

void LiveReporter::rowChanged(const ProgressRow& /*row*/)
{
    // The next drawing shows it.
}

void LiveReporter::rowsAre(const std::vector<ProgressRow>& rows)
{
    QStringList lines;
    const int columns = Terminal::width();
    for (const ProgressRow& row : rows) {
        if (lines.size() == mostLines - 1 && rows.size() > mostLines) {
            lines << QStringLiteral("  … and %1 more").arg(static_cast<qsizetype>(rows.size()) - lines.size());
            break;
        }
        lines << RowText::live(row, columns);
    }
    if (lines == m_lines)
        return;
    erase();
    m_lines = lines;
    draw();
}

void LiveReporter::showNote(const QString& words)
{
    erase();
    Terminal::printError(words);
    draw();
}

void LiveReporter::showError(const QString& words)
{
    showNote(words);
}

void LiveReporter::result(const QString& line, const QJsonObject& /*object*/)
{
    erase();
    std::printf("%s\n", Terminal::withoutControls(line).toUtf8().constData());
    draw();
}
