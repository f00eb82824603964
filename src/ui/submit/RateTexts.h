#pragma once

#include "model/Job.h"

#include <QString>
#include <QVariant>

// Prices as the submit window shows them. The service tells amounts without their currency, so none is shown.
namespace RateTexts {

// Stands for a price that is not known.
inline const QString unknown = QStringLiteral("—");

// The price per hour that a job of this level is charged; invalid where it is not known. AutoSync and Man24 have the
// rush price while rush is ordered.
[[nodiscard]] QVariant rateInEffect(const Job& job, int processingLevel);

// "95.00 per hour"; the dash for a missing rate and for 0, which the service gives where there is no price.
[[nodiscard]] QString hourly(const QVariant& rate);
// "× 1.5"; empty where there is none.
[[nodiscard]] QString multiplier(const QVariant& multiplier);
// "135.00 for 1:30:00 of recordings", or the dash and what is not known.
[[nodiscard]] QString total(const Job& job);
// "1:02:05"; the dash for none.
[[nodiscard]] QString duration(std::optional<float> seconds);

} // namespace RateTexts
