#pragma once

#include "ui/main/RowChanges.h"

#include <QString>

#include <limits>
#include <memory>
#include <vector>

class MediaObject;

// What a row is sorted by: a number, then a text. Rows without a value come before all others.
struct JobListSortValue
{
    double number = -std::numeric_limits<double>::infinity();
    QString text;

    bool operator==(const JobListSortValue&) const = default;
};

// One row of the job list: a job, or one of its media files. Its address is the internal pointer of its indexes.
struct JobListNode
{
    RowChanges::RowId id = 0;
    std::shared_ptr<MediaObject> object;
    JobListNode* parent = nullptr; // null for a job
    int row = 0;                   // as it is sorted
    int engineOrder = 0;           // as the engine, or the job, holds it
    bool isListed = false;         // the views know of it
    JobListSortValue sortValue;    // of the column that is sorted by
    std::vector<std::unique_ptr<JobListNode>> rows;
    std::vector<const MediaObject*> followed; // the objects of `rows`, in the engine's order
};
