#include "ui/main/JobListValues.h"

#include "foundation/Text.h"
#include "model/Job.h"
#include "ui/controls/PlainText.h"
#include "ui/transformers/DeliveryFormatTitle.h"
#include "ui/transformers/StatusToProgressVisibilityTransformer.h"
#include "ui/transformers/ValueTransformers.h"

#include <QCoreApplication>
#include <QStringList>

#include <algorithm>
#include <cmath>

namespace {

// Its tr() is found by the tools that collect the texts to translate.
struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(JobListValues)
};

template <typename Value>
QVariant variant(const std::optional<Value>& value)
{
    return value ? QVariant(*value) : QVariant();
}

// A transformer of the table, looked up once: a list asks for thousands of values in a row.
class Transformer
{
public:
    explicit constexpr Transformer(const char* name) : m_name(name) {}

    // Null while nobody has registered it.
    [[nodiscard]] QVariant operator()(const QVariant& value)
    {
        if (m_transformer == nullptr)
            m_transformer = ValueTransformers::named(QString::fromLatin1(m_name));
        return m_transformer != nullptr ? m_transformer->transformedValue(value) : QVariant();
    }

private:
    const char* m_name;
    const ValueTransformer* m_transformer = nullptr;
};

constinit Transformer jobStatusToString("JobStatusToStringTransformer");
constinit Transformer scoreToAccuracy("ScoreToAccuracyTransformer");
constinit Transformer mediaObjectToDepoNum("MediaObjectToDepoNumTransformer");
constinit Transformer secondsToHHMMSS("SecondsNumberToHHMMSSStringTransformer");

QVariant deliveryFormat(const MediaObject& object)
{
    const auto* job = qobject_cast<const Job*>(&object);
    return job ? QVariant(deliveryFormatTitle(job->deliveryFormat())) : QVariant();
}

// The file behind the row, where it is on this disk.
QString filePath(const MediaObject& object)
{
    if (const auto* job = qobject_cast<const Job*>(&object))
        return job->transcriptFile();
    const auto* mediaFile = qobject_cast<const MediaFile*>(&object);
    return mediaFile && !mediaFile->isServerMediaFile() ? mediaFile->sourceFilePath() : QString();
}

} // namespace

QString JobListValues::title(const MediaObject& object)
{
    const auto* job = qobject_cast<const Job*>(&object);
    return job && job->rush() ? Text::format("(Rush) {}", object.name()) : object.name();
}

QString JobListValues::imageName(const MediaObject& object)
{
    return qobject_cast<const Job*>(&object) ? QStringLiteral("TextIcon") : QStringLiteral("SoundIcon");
}

bool JobListValues::isProgressVisible(const MediaObject& object)
{
    return StatusToProgressVisibilityTransformer::isProgressVisible(object.status());
}

double JobListValues::fractionDone(const MediaObject& object)
{
    const double total = object.totalValue().value_or(0);
    const double fraction = object.processedValue().value_or(0) / total;
    return std::isfinite(fraction) ? std::clamp(fraction, 0.0, 1.0) : 0.0;
}

std::optional<float> JobListValues::duration(const MediaObject& object)
{
    if (const auto* job = qobject_cast<const Job*>(&object))
        return job->totalMediaDuration();
    if (const auto* mediaFile = qobject_cast<const MediaFile*>(&object))
        return mediaFile->sourceDuration();
    return std::nullopt;
}

QVariant JobListValues::display(const std::shared_ptr<MediaObject>& object, JobListColumn column)
{
    switch (column) {
    case JobListColumn::Name:
        return title(*object);
    case JobListColumn::Status:
        return jobStatusToString(QVariant::fromValue(object));
    case JobListColumn::Progress:
        return isProgressVisible(*object) ? variant(object->processedValue()) : QVariant();
    case JobListColumn::Accuracy:
        return scoreToAccuracy(variant(object->scoreValue()));
    case JobListColumn::JobNumber:
        return mediaObjectToDepoNum(QVariant::fromValue(object));
    case JobListColumn::Duration:
        return secondsToHHMMSS(variant(duration(*object)));
    case JobListColumn::DeliveryFormat:
        return deliveryFormat(*object);
    }
    return {};
}

QVariant JobListValues::underlying(const std::shared_ptr<MediaObject>& object, JobListColumn column)
{
    switch (column) {
    case JobListColumn::Name:
        return object->name();
    case JobListColumn::Status:
        return object->status();
    case JobListColumn::Progress:
        return isProgressVisible(*object) ? QVariant(fractionDone(*object)) : QVariant();
    case JobListColumn::Accuracy:
        return variant(object->scoreValue());
    case JobListColumn::JobNumber:
        return display(object, column);
    case JobListColumn::Duration:
        return variant(duration(*object));
    case JobListColumn::DeliveryFormat:
        return deliveryFormat(*object);
    }
    return {};
}

QString JobListValues::accessibleText(const std::shared_ptr<MediaObject>& object, JobListColumn column)
{
    const QString shown = display(object, column).toString();
    switch (column) {
    case JobListColumn::Progress:
        return isProgressVisible(*object)
                   ? Texts::tr("%1 %").arg(static_cast<int>(std::floor(fractionDone(*object) * 100)))
                   : QString();
    case JobListColumn::Accuracy:
        return shown.isEmpty() ? QString() : Texts::tr("Accuracy %1").arg(shown);
    case JobListColumn::JobNumber:
        return shown.isEmpty() ? QString() : Texts::tr("Job number %1").arg(shown);
    case JobListColumn::Name:
    case JobListColumn::Status:
    case JobListColumn::Duration:
    case JobListColumn::DeliveryFormat:
        return shown;
    }
    return {};
}

QString JobListValues::toolTip(const std::shared_ptr<MediaObject>& object, JobListColumn column)
{
    QString text = accessibleText(object, column);
    if (column == JobListColumn::Name) {
        if (const QString path = filePath(*object); !path.isEmpty())
            text += u'\n' + path;
    } else if (column == JobListColumn::Accuracy && !text.isEmpty()) {
        text = Texts::tr("%1 (score %2)").arg(text).arg(object->scoreValue().value_or(0));
    }
    return text.isEmpty() ? QString() : PlainText::toolTip(text);
}

QString JobListValues::columnTitle(JobListColumn column)
{
    switch (column) {
    case JobListColumn::Name:
        return Texts::tr("Name");
    case JobListColumn::Status:
        return Texts::tr("Status");
    case JobListColumn::Progress:
        return Texts::tr("Progress");
    case JobListColumn::Accuracy:
        return Texts::tr("Accuracy");
    case JobListColumn::JobNumber:
        return Texts::tr("Job Number");
    case JobListColumn::Duration:
        return Texts::tr("Duration");
    case JobListColumn::DeliveryFormat:
        return Texts::tr("Delivery Format");
    }
    return {};
}
