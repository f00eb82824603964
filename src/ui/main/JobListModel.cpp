#include "ui/main/JobListModel.h"

#include "engine/JobModel.h"
#include "ui/main/JobListNode.h"
#include "ui/main/JobListSorting.h"
#include "ui/main/JobListValues.h"

#include <algorithm>

namespace {

// Its values are about as long as each other.
bool isShort(JobListColumn column)
{
    return column == JobListColumn::Progress || column == JobListColumn::Accuracy ||
           column == JobListColumn::JobNumber || column == JobListColumn::Duration;
}

QVariant orNull(const QString& text)
{
    return text.isEmpty() ? QVariant() : QVariant(text);
}

template <typename Value>
QVariant orNull(const std::optional<Value>& value)
{
    return value ? QVariant(*value) : QVariant();
}

} // namespace

JobListModel::JobListModel(JobModel& jobModel) : m_jobModel(jobModel)
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &JobListModel::announceInTurns);
    m_changes->setWake([this] { scheduleAnnouncement(); });
    connect(&jobModel, &JobModel::jobAdded, this, &JobListModel::jobArrives);
    connect(&jobModel, &JobModel::jobRemoved, this, [this] {
        m_haveJobsChanged = true;
        scheduleAnnouncement();
    });
    m_haveJobsChanged = true;
    announceChanges();
}

JobListModel::~JobListModel()
{
    m_changes->setWake(nullptr);
}

JobListModel::Node* JobListModel::nodeOf(const QModelIndex& index)
{
    return static_cast<Node*>(index.internalPointer());
}

QModelIndex JobListModel::indexOf(const Node* node, int column) const
{
    return node == nullptr ? QModelIndex() : createIndex(node->row, column, node);
}

JobListModel::Nodes& JobListModel::rowsBelow(Node* parent)
{
    return parent == nullptr ? m_jobs : parent->rows;
}

std::shared_ptr<MediaObject> JobListModel::mediaObject(const QModelIndex& index) const
{
    return index.isValid() ? nodeOf(index)->object : nullptr;
}

std::shared_ptr<Job> JobListModel::arrangedJob(int row) const
{
    if (row < 0 || row >= rowCount())
        return nullptr;
    return std::static_pointer_cast<Job>(m_jobs[static_cast<std::size_t>(row)]->object);
}

QVariantList JobListModel::jobStatuses() const
{
    QVariantList statuses(static_cast<qsizetype>(m_jobs.size()));
    for (const auto& node : m_jobs)
        statuses[node->engineOrder] = node->object->status();
    return statuses;
}

QModelIndex JobListModel::index(int row, int column, const QModelIndex& parent) const
{
    if (row < 0 || column < 0 || column >= jobListColumnCount || row >= rowCount(parent))
        return {};
    const Nodes& rows = parent.isValid() ? nodeOf(parent)->rows : m_jobs;
    return createIndex(row, column, rows[static_cast<std::size_t>(row)].get());
}

QModelIndex JobListModel::parent(const QModelIndex& child) const
{
    return child.isValid() ? indexOf(nodeOf(child)->parent) : QModelIndex();
}

int JobListModel::rowCount(const QModelIndex& parent) const
{
    if (!parent.isValid())
        return static_cast<int>(m_jobs.size());
    return parent.column() == 0 ? static_cast<int>(nodeOf(parent)->rows.size()) : 0;
}

int JobListModel::columnCount(const QModelIndex& /*parent*/) const
{
    return jobListColumnCount;
}

QVariant JobListModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    const std::shared_ptr<MediaObject>& object = nodeOf(index)->object;
    const auto column = static_cast<JobListColumn>(index.column());
    switch (role) {
    case Qt::DisplayRole:
        return JobListValues::display(object, column);
    case Qt::ToolTipRole:
        return orNull(JobListValues::toolTip(object, column));
    case Qt::AccessibleTextRole:
        return orNull(JobListValues::accessibleText(object, column));
    case Qt::TextAlignmentRole:
        return isShort(column) ? QVariant(Qt::AlignCenter) : QVariant();
    case SortRole:
        return JobListValues::underlying(object, column);
    case TotalValueRole:
        return orNull(object->totalValue());
    case ProcessedValueRole:
        return orNull(object->processedValue());
    case ProgressVisibleRole:
        return JobListValues::isProgressVisible(*object);
    default:
        return {};
    }
}

QVariant JobListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= jobListColumnCount)
        return {};
    const auto column = static_cast<JobListColumn>(section);
    if (role == Qt::DisplayRole)
        return JobListValues::columnTitle(column);
    if (role == Qt::TextAlignmentRole)
        return QVariant((isShort(column) ? Qt::AlignHCenter : Qt::AlignLeft) | Qt::AlignVCenter);
    return {};
}

Qt::ItemFlags JobListModel::flags(const QModelIndex& index) const
{
    Qt::ItemFlags flags = QAbstractItemModel::flags(index);
    if (index.isValid() && nodeOf(index)->parent != nullptr)
        flags |= Qt::ItemNeverHasChildren;
    return flags;
}

// Sorting

void JobListModel::sort(int column, Qt::SortOrder order)
{
    // The values of a column that is sorted by are always those that were announced last.
    if (const int before = std::exchange(m_sortColumn, column < jobListColumnCount ? column : -1);
        before != m_sortColumn) {
        for (const auto& job : m_jobs) {
            renewSortValue(*job);
            for (const auto& mediaFile : job->rows)
                renewSortValue(*mediaFile);
        }
    }
    m_sortOrder = order;
    m_isOrderInDoubt = true;
    sortIfNeeded();
}

void JobListModel::renewSortValue(Node& node)
{
    if (m_sortColumn < 0)
        return;
    JobListSortValue value = JobListSorting::sortValue(*node.object, static_cast<JobListColumn>(m_sortColumn));
    if (value == node.sortValue)
        return;
    node.sortValue = std::move(value);
    m_isOrderInDoubt = true;
}

void JobListModel::sortIfNeeded()
{
    if (!std::exchange(m_isOrderInDoubt, false))
        return;
    const auto isSorted = [this](const Nodes& rows) {
        return JobListSorting::areInOrder(rows, m_sortColumn, m_sortOrder);
    };
    std::vector<Nodes*> unsorted;
    if (!isSorted(m_jobs))
        unsorted.push_back(&m_jobs);
    for (const auto& job : m_jobs) {
        if (!isSorted(job->rows))
            unsorted.push_back(&job->rows);
    }
    if (unsorted.empty())
        return;
    rearrange([&] {
        for (Nodes* const rows : unsorted)
            JobListSorting::sort(*rows, m_sortColumn, m_sortOrder);
    });
}

void JobListModel::rearrange(const std::function<void()>& move)
{
    Q_EMIT layoutAboutToBeChanged({}, VerticalSortHint);
    const QModelIndexList kept = persistentIndexList();
    move();
    QModelIndexList moved;
    moved.reserve(kept.size());
    for (const QModelIndex& index : kept)
        moved.append(indexOf(nodeOf(index), index.column()));
    changePersistentIndexList(kept, moved);
    Q_EMIT layoutChanged({}, VerticalSortHint);
}
