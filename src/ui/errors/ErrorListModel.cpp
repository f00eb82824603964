#include "ui/errors/ErrorListModel.h"

#include "ui/controls/PlainText.h"
#include "ui/errors/SyncErrorList.h"

using namespace Qt::StringLiterals;

namespace {

// What fits a line; a reply of the service may be a whole page.
constexpr qsizetype displayedLength = 400;

QString oneLine(const QString& text)
{
    QString line = text.first(qMin(text.size(), 2 * displayedLength)).simplified();
    if (line.size() > displayedLength || text.size() > 2 * displayedLength)
        line = line.first(qMin(line.size(), displayedLength)) + QChar(0x2026);
    return line;
}

QVariant alignment(ErrorListModel::Column column)
{
    return QVariant::fromValue(Qt::Alignment(Qt::AlignVCenter) |
                               (column == ErrorListModel::Column::Count ? Qt::AlignRight : Qt::AlignLeft));
}

} // namespace

ErrorListModel::ErrorListModel(const SyncErrorList& list, Clock clock) : m_list(list), m_clock(std::move(clock))
{
    for (const Error& error : m_list.errorList()) {
        m_times.append(m_clock());
        addToRuns(error);
    }
    connect(&list, &SyncErrorList::errorInserted, this, &ErrorListModel::errorInserted);
    connect(&list, &SyncErrorList::errorRemoved, this, &ErrorListModel::errorRemoved);
}

int ErrorListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_runs.size());
}

int ErrorListModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : columnNumber;
}

void ErrorListModel::addToRuns(const Error& error)
{
    if (!m_runs.isEmpty() && m_runs.constLast().error == error) {
        ++m_runs.last().count;
        return;
    }
    const qsizetype first = m_runs.isEmpty() ? 0 : m_runs.constLast().first + m_runs.constLast().count;
    m_runs.append({error, first, 1});
}

void ErrorListModel::errorInserted(qsizetype index)
{
    if (index >= m_times.size()) {
        append(m_list.errorList().at(index));
        return;
    }
    beginResetModel();
    m_times.insert(index, m_clock());
    rebuild();
    endResetModel();
}

void ErrorListModel::errorRemoved(qsizetype index)
{
    if (index == m_times.size() - 1) {
        removeLast();
        return;
    }
    beginResetModel();
    m_times.removeAt(index);
    rebuild();
    endResetModel();
}

void ErrorListModel::append(const Error& error)
{
    const int last = static_cast<int>(m_runs.size()) - 1;
    if (last >= 0 && m_runs.at(last).error == error) {
        m_times.append(m_clock());
        addToRuns(error);
        Q_EMIT dataChanged(index(last, 0), index(last, columnNumber - 1));
        return;
    }
    beginInsertRows({}, last + 1, last + 1);
    m_times.append(m_clock());
    addToRuns(error);
    endInsertRows();
}

void ErrorListModel::removeLast()
{
    const int last = static_cast<int>(m_runs.size()) - 1;
    if (m_runs.at(last).count > 1) {
        m_times.removeLast();
        --m_runs.last().count;
        Q_EMIT dataChanged(index(last, 0), index(last, columnNumber - 1));
        return;
    }
    beginRemoveRows({}, last, last);
    m_times.removeLast();
    m_runs.removeLast();
    endRemoveRows();
}

// In the middle of the list runs may split or join; nobody but a test goes there.
void ErrorListModel::rebuild()
{
    m_runs.clear();
    for (const Error& error : m_list.errorList())
        addToRuns(error);
}

QString ErrorListModel::timeText(const Run& run) const
{
    const QDateTime& first = m_times.at(run.first);
    const QDateTime& last = m_times.at(run.first + run.count - 1);
    // A program left open over night still tells yesterday's errors from today's.
    const bool isToday = first.date() == m_clock().date();
    const QString pattern = isToday ? u"HH:mm:ss"_s : u"yyyy-MM-dd HH:mm:ss"_s;
    const QString from = first.toString(pattern);
    const QString to = last.toString(pattern);
    return from == to ? from : from + u" – "_s + to;
}

QVariant ErrorListModel::displayText(const Run& run, Column column) const
{
    switch (column) {
    case Column::Time:
        return timeText(run);
    case Column::Text:
        return oneLine(run.error.localizedDescription);
    case Column::Count:
        return static_cast<qlonglong>(run.count);
    }
    return {};
}

QVariant ErrorListModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const Run& run = m_runs.at(index.row());
    const auto column = static_cast<Column>(index.column());
    switch (role) {
    case Qt::DisplayRole:
        return displayText(run, column);
    case textRole:
        return run.error.localizedDescription;
    case Qt::ToolTipRole:
        return column == Column::Time ? QVariant(timeText(run))
                                      : QVariant(PlainText::toolTip(run.error.localizedDescription.first(
                                            qMin(run.error.localizedDescription.size(), 2 * displayedLength))));
    case Qt::TextAlignmentRole:
        return alignment(column);
    default:
        return {};
    }
}

QVariant ErrorListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal && role == Qt::TextAlignmentRole)
        return alignment(static_cast<Column>(section));
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (static_cast<Column>(section)) {
    case Column::Time:
        return tr("Time");
    case Column::Text:
        return tr("Error");
    case Column::Count:
        return tr("Count");
    }
    return {};
}

QString ErrorListModel::textOfRow(int row) const
{
    if (row < 0 || row >= m_runs.size())
        return {};
    const Run& run = m_runs.at(row);
    QString text = timeText(run) + u"  "_s + run.error.localizedDescription;
    if (run.count > 1)
        text += u"  ("_s + tr("%L1 times").arg(run.count) + u')';
    return text;
}
