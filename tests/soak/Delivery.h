#pragma once

#include "model/Job.h"

#include <QString>

// What a completed job left in the delivery folder.
namespace Delivery {

// Looks for what is wrong with it, "" when nothing is, and takes it away: `files` is how many there have to be, 0 on
// the first job, of which it is then learnt.
[[nodiscard]] QString check(const QString& deliveryFolder, const Job& job, int& files);

} // namespace Delivery
