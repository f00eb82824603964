#pragma once

#include "model/Job.h"

#include <QString>

// The service's prices and product codes, for the job that is being ordered.
namespace RatesReply {

// Sets the job's rates, product IDs and rush multiplier from a JSON object; what the object lacks is unset. A reply
// that is no JSON object sets nothing. False in that case.
bool apply(const QString& reply, Job& job);

// Whether the LOG delivery format may be ordered: the reply holds "yes", as written.
[[nodiscard]] bool isLogFormatAvailable(const QString& reply);

// A level is offered unless it is Unattended and has no price.
[[nodiscard]] bool isUnattendedOffered(const Job& job);

} // namespace RatesReply
