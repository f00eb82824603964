#include "ui/submit/RateTexts.h"

#include "foundation/NumberReading.h"
#include "ui/transformers/ValueTransformers.h"

#include <QCoreApplication>

#include <algorithm>

namespace {

// Its tr() is found by the tools that collect the texts to translate.
struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(RateTexts)
};

bool isKnown(const QVariant& rate)
{
    return NumberReading::doubleValue(rate) != 0;
}

} // namespace

QVariant RateTexts::rateInEffect(const Job& job, int processingLevel)
{
    switch (processingLevel) {
    case ProcessingLevelAutoSync:
        return job.autoSyncRushRate();
    case ProcessingLevelMan24:
        return job.man24RushRate();
    case ProcessingLevelMan48:
        return job.man48Rate();
    case ProcessingLevelMan72:
        return job.man72Rate();
    case ProcessingLevelUnattended:
        return job.unattendedRate();
    default:
        return {};
    }
}

QString RateTexts::hourly(const QVariant& rate)
{
    if (!isKnown(rate))
        return unknown;
    return Texts::tr("%1 per hour").arg(QString::number(NumberReading::doubleValue(rate), 'f', 2));
}

QString RateTexts::multiplier(const QVariant& multiplier)
{
    if (!isKnown(multiplier))
        return {};
    return QStringLiteral("× ") + QString::number(NumberReading::doubleValue(multiplier), 'g', 6);
}

QString RateTexts::total(const Job& job)
{
    const QString amount = job.jobTotal();
    const auto files = job.mediaFiles();
    const bool areAllKnown =
        std::all_of(files.begin(), files.end(), [](const auto& file) { return file->sourceDuration().has_value(); });
    if (!amount.isEmpty())
        return (areAllKnown ? Texts::tr("%1 for %2 of recordings") : Texts::tr("At least %1, for %2 of recordings"))
            .arg(amount, duration(job.totalMediaDuration()));
    if (files.isEmpty())
        return unknown;
    if (!isKnown(rateInEffect(job, job.processingLevel())))
        return Texts::tr("— (price not known)");
    return Texts::tr("— (length of the recordings not known)");
}

QString RateTexts::duration(std::optional<float> seconds)
{
    const auto* const transformer = ValueTransformers::named(QStringLiteral("SecondsNumberToHHMMSSStringTransformer"));
    const QVariant text =
        seconds && transformer ? transformer->transformedValue(QVariant::fromValue(*seconds)) : QVariant();
    return text.isValid() ? text.toString() : unknown;
}
