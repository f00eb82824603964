#pragma once

#include "ui/main/JobListColumn.h"
#include "ui/main/JobListNode.h"

#include <Qt>

// The order of the job list's rows. Texts compare as people expect: letter case last, numbers in them by value.
namespace JobListSorting {

// By the value below what is displayed (see JobListValues::underlying).
[[nodiscard]] JobListSortValue sortValue(const MediaObject& object, JobListColumn column);

using Rows = std::vector<std::unique_ptr<JobListNode>>;
// Rows of equal value stay in the engine's order, whatever the order asked for. Column -1 is the engine's order.
[[nodiscard]] bool areInOrder(const Rows& rows, int column, Qt::SortOrder order);
void sort(Rows& rows, int column, Qt::SortOrder order);
// After rows have moved.
void number(Rows& rows, std::size_t from = 0);

} // namespace JobListSorting
