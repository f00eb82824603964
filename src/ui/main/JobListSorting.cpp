#include "ui/main/JobListSorting.h"

#include "ui/main/JobListValues.h"

#include <QCollator>

#include <algorithm>
#include <cmath>

namespace {

const QCollator& collator()
{
    static const QCollator theCollator = [] {
        // The C locale would compare character by character.
        QCollator made(QLocale().language() == QLocale::C ? QLocale(QLocale::English) : QLocale());
        made.setNumericMode(true);
        made.setCaseSensitivity(Qt::CaseInsensitive);
        return made;
    }();
    return theCollator;
}

// Below 0, 0 or above 0.
int compare(const JobListSortValue& a, const JobListSortValue& b)
{
    if (a.number != b.number)
        return a.number < b.number ? -1 : 1;
    return a.text == b.text ? 0 : collator().compare(a.text, b.text);
}

auto inOrder(int column, Qt::SortOrder order)
{
    return [column, order](const std::unique_ptr<JobListNode>& a, const std::unique_ptr<JobListNode>& b) {
        const int values = column < 0 ? 0 : compare(a->sortValue, b->sortValue);
        if (values != 0)
            return order == Qt::AscendingOrder ? values < 0 : values > 0;
        return a->engineOrder < b->engineOrder;
    };
}

} // namespace

JobListSortValue JobListSorting::sortValue(const std::shared_ptr<MediaObject>& object, JobListColumn column)
{
    JobListSortValue result;
    const QVariant value = JobListValues::underlying(object, column);
    if (value.typeId() == QMetaType::QString) {
        result.number = 0;
        result.text = value.toString();
    } else if (value.isValid() && !std::isnan(value.toDouble())) {
        result.number = value.toDouble();
    }
    // On the server, the words differ while the status does not.
    if (column == JobListColumn::Status)
        result.text = JobListValues::display(object, column).toString();
    return result;
}

bool JobListSorting::areInOrder(const Rows& rows, int column, Qt::SortOrder order)
{
    return std::is_sorted(rows.begin(), rows.end(), inOrder(column, order));
}

void JobListSorting::sort(Rows& rows, int column, Qt::SortOrder order)
{
    std::sort(rows.begin(), rows.end(), inOrder(column, order));
    number(rows);
}

void JobListSorting::number(Rows& rows, std::size_t from)
{
    for (std::size_t i = from; i < rows.size(); ++i)
        rows[i]->row = static_cast<int>(i);
}
