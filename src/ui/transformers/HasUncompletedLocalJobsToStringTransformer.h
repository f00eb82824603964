#pragma once

#include "ui/transformers/ValueTransformer.h"

#include <QCoreApplication>

// The statuses of the listed jobs, in list order, as the line that tells whether the program may be closed. The first
// job that decides gives the line, whatever the jobs after it are doing.
class HasUncompletedLocalJobsToStringTransformer : public ValueTransformer
{
    Q_DECLARE_TR_FUNCTIONS(HasUncompletedLocalJobsToStringTransformer)
public:
    [[nodiscard]] QVariant transformedValue(const QVariant& value) const override;
};
