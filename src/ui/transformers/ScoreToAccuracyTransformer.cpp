#include "ui/transformers/ScoreToAccuracyTransformer.h"

#include "ui/transformers/TransformedValues.h"

namespace {

constexpr int scoresPerStep = 20;

} // namespace

QVariant ScoreToAccuracyTransformer::transformedValue(const QVariant& value) const
{
    const auto score = TransformedValues::integerValue(value);
    return score ? QVariant(*score / scoresPerStep + 1) : QVariant();
}
