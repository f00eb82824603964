#include "ui/transformers/ValueTransformers.h"

#include "ui/transformers/HasUncompletedLocalJobsToStringTransformer.h"
#include "ui/transformers/JobStatusToStringTransformer.h"
#include "ui/transformers/MediaObjectToDepoNumTransformer.h"
#include "ui/transformers/ProcessingLevelToTagTransformer.h"
#include "ui/transformers/ScoreToAccuracyTransformer.h"
#include "ui/transformers/SecondsNumberToHHMMSSStringTransformer.h"
#include "ui/transformers/StatusToProgressVisibilityTransformer.h"

#include <map>
#include <utility>

namespace {

std::map<QString, std::unique_ptr<const ValueTransformer>>& table()
{
    static std::map<QString, std::unique_ptr<const ValueTransformer>> transformers;
    return transformers;
}

} // namespace

void ValueTransformers::registerTransformer(const QString& name, std::unique_ptr<const ValueTransformer> transformer)
{
    table().try_emplace(name, std::move(transformer));
}

const ValueTransformer* ValueTransformers::named(const QString& name)
{
    const auto found = table().find(name);
    return found == table().end() ? nullptr : found->second.get();
}

void ValueTransformers::registerMainWindowTransformers()
{
    registerTransformer(QStringLiteral("JobStatusToStringTransformer"),
                        std::make_unique<JobStatusToStringTransformer>());
    registerTransformer(QStringLiteral("StatusToProgressVisibilityTransformer"),
                        std::make_unique<StatusToProgressVisibilityTransformer>());
    registerTransformer(QStringLiteral("ScoreToAccuracyTransformer"), std::make_unique<ScoreToAccuracyTransformer>());
    registerTransformer(QStringLiteral("HasUncompletedLocalJobsToStringTransformer"),
                        std::make_unique<HasUncompletedLocalJobsToStringTransformer>());
    registerTransformer(QStringLiteral("MediaObjectToDepoNumTransformer"),
                        std::make_unique<MediaObjectToDepoNumTransformer>());
}

void ValueTransformers::registerSubmitJobWindowTransformers()
{
    registerTransformer(QStringLiteral("ProcessingLevelToTagTransformer"),
                        std::make_unique<ProcessingLevelToTagTransformer>());
    registerTransformer(QStringLiteral("SecondsNumberToHHMMSSStringTransformer"),
                        std::make_unique<SecondsNumberToHHMMSSStringTransformer>());
}
