#include "ui/errors/ErrorWindowController.h"

#include "ui/ApplicationController.h"
#include "ui/errors/SyncErrorList.h"

#include <algorithm>

ErrorWindowController::ErrorWindowController(ApplicationController& application, ErrorListModel::Clock clock)
    : m_application(application), m_errors(application.syncErrorList(), std::move(clock))
{
    // After the model's own connections, so that whoever reads on the signal finds the rows as they are now.
    connect(&application.syncErrorList(), &SyncErrorList::errorInserted, this, &ErrorWindowController::summaryChanged);
    connect(&application.syncErrorList(), &SyncErrorList::errorRemoved, this, &ErrorWindowController::summaryChanged);
}

bool ErrorWindowController::hasErrors() const
{
    return !m_application.syncErrorList().errorList().isEmpty();
}

QString ErrorWindowController::summaryText() const
{
    const qsizetype number = m_application.syncErrorList().errorList().size();
    if (number == 0)
        return {};
    return number == 1 ? tr("1 error") : tr("%L1 errors").arg(number);
}

QString ErrorWindowController::emptyText() const
{
    return tr("No errors in this run.");
}

QString ErrorWindowController::detailsOfRows(const QList<int>& rows) const
{
    if (rows.isEmpty())
        return {};
    if (rows.size() > 1)
        return tr("%L1 rows are selected.").arg(rows.size());
    const QModelIndex index = m_errors.index(rows.constFirst(), static_cast<int>(ErrorListModel::Column::Text));
    return m_errors.data(index, ErrorListModel::textRole).toString();
}

QString ErrorWindowController::copiedText(QList<int> rows) const
{
    std::sort(rows.begin(), rows.end());
    QString text;
    for (const int row : rows)
        text += m_errors.textOfRow(row) + u'\n';
    text.chop(1);
    return text;
}

void ErrorWindowController::clearLogButtonPressed()
{
    m_application.syncErrorList().clear();
}
