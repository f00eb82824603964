#include "ui/main/JobListSorting.h"

#include "model/Job.h"
#include "ui/main/JobListValues.h"
#include "ui/transformers/DeliveryFormatTitle.h"

#include <QCollator>

#include <algorithm>
#include <cmath>
#include <utility>

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

JobListSortValue ofText(QString text)
{
    return {0, std::move(text)};
}

template <typename Number>
JobListSortValue ofNumber(const std::optional<Number>& number)
{
    const double value = number ? static_cast<double>(*number) : NAN;
    return std::isnan(value) ? JobListSortValue() : JobListSortValue{value, {}};
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

// From so many rows on, the cost of a key for each is less than that of comparing their texts again and again.
constexpr std::size_t manyRows = 64;

void sortByKeys(JobListSorting::Rows& rows, Qt::SortOrder order)
{
    struct Keyed
    {
        double number;
        QCollatorSortKey text;
        std::unique_ptr<JobListNode> row;
    };
    std::vector<Keyed> keyed;
    keyed.reserve(rows.size());
    for (auto& row : rows) {
        const JobListSortValue& value = row->sortValue;
        keyed.push_back({value.number, collator().sortKey(value.text), std::move(row)});
    }
    std::sort(keyed.begin(), keyed.end(), [order](const Keyed& a, const Keyed& b) {
        if (a.number != b.number)
            return order == Qt::AscendingOrder ? a.number < b.number : a.number > b.number;
        if (const int texts = a.text.compare(b.text); texts != 0)
            return order == Qt::AscendingOrder ? texts < 0 : texts > 0;
        return a.row->engineOrder < b.row->engineOrder;
    });
    std::transform(keyed.begin(), keyed.end(), rows.begin(), [](Keyed& entry) { return std::move(entry.row); });
}

} // namespace

// Thousands of them are asked for in a row, so nothing goes through a variant here.
JobListSortValue JobListSorting::sortValue(const MediaObject& object, JobListColumn column)
{
    const auto* const job = qobject_cast<const Job*>(&object);
    switch (column) {
    case JobListColumn::Name:
        return ofText(object.name());
    case JobListColumn::Status:
        // On the server, the words differ while the status does not.
        return {static_cast<double>(object.status()), jobStatusText(object)};
    case JobListColumn::Progress:
        return JobListValues::isProgressVisible(object) ? ofNumber(std::optional(JobListValues::fractionDone(object)))
                                                        : JobListSortValue();
    case JobListColumn::Accuracy:
        return ofNumber(object.scoreValue());
    case JobListColumn::JobNumber:
        return job != nullptr ? ofNumber(job->depoNum()) : JobListSortValue();
    case JobListColumn::Duration:
        return ofNumber(JobListValues::duration(object));
    case JobListColumn::DeliveryFormat:
        return job != nullptr ? ofText(deliveryFormatTitle(job->deliveryFormat())) : JobListSortValue();
    }
    return {};
}

bool JobListSorting::areInOrder(const Rows& rows, int column, Qt::SortOrder order)
{
    return std::is_sorted(rows.begin(), rows.end(), inOrder(column, order));
}

void JobListSorting::sort(Rows& rows, int column, Qt::SortOrder order)
{
    if (column >= 0 && rows.size() >= manyRows)
        sortByKeys(rows, order);
    else
        std::sort(rows.begin(), rows.end(), inOrder(column, order));
    number(rows);
}

void JobListSorting::number(Rows& rows, std::size_t from)
{
    for (std::size_t i = from; i < rows.size(); ++i)
        rows[i]->row = static_cast<int>(i);
}
