#include "cli/PlainReporter.h"

#include "cli/RowText.h"
#include "cli/Terminal.h"

namespace {

int tenthsOf(const ProgressRow& row)
{
    return static_cast<int>(row.fraction().value_or(0) * 10.0);
}

} // namespace

void PlainReporter::print(const ProgressRow& row)
{
    m_told[{row.depoNum.value_or(0), row.segment}] = {row.statusText, tenthsOf(row)};
    Terminal::printOut(RowText::plain(row));
}

void PlainReporter::rowChanged(const ProgressRow& row)
{
    // On the service, the words come a moment after the state.
    if (row.statusText.isEmpty())
        return;
    // Neighbouring states share their words; a line for each would say the same twice.
    const auto told = m_told.find({row.depoNum.value_or(0), row.segment});
    if (told == m_told.end() || told->second.statusText != row.statusText)
        print(row);
}

void PlainReporter::rowsAre(const std::vector<ProgressRow>& rows)
{
    for (const ProgressRow& row : rows) {
        if (!RowText::isMoving(row))
            continue;
        if (tenthsOf(row) > m_told[{row.depoNum.value_or(0), row.segment}].tenths)
            print(row);
    }
}

void PlainReporter::showNote(const QString& words)
{
    Terminal::printError(words);
}

void PlainReporter::showError(const QString& words)
{
    Terminal::printError(words);
}

void PlainReporter::result(const QString& line, const QJsonObject& /*object*/)
{
    Terminal::printOut(line);
}
