#include "engine/DestinationFileName.h"

#include "foundation/Assertion.h"
#include "foundation/NumberReading.h"
#include "foundation/PathText.h"
#include "foundation/Text.h"

#include <cstdint>
#include <optional>

namespace {

struct SplitName
{
    QString base;
    QString extension;
};

std::optional<SplitName> splitAtLastPoint(const QString& path)
{
    const QString name = PathText::lastPathComponent(path);
    const qsizetype point = name.lastIndexOf(u'.');
    if (point < 0)
        return std::nullopt;
    return SplitName{name.left(point), name.mid(point + 1)};
}

std::int64_t wholeSeconds(const std::optional<float>& duration)
{
    return NumberReading::intValue(QVariant(duration.value_or(0.0F)));
}

} // namespace

QString DestinationFileName::ofTranscript(const Job& job)
{
    const auto name = splitAtLastPoint(job.transcriptFile());
    if (!name)
        return {};
    return Text::format("{}_{}.{}[{}.{},-1]", NumberReading::valueOrZero(job.orderNum()),
                        NumberReading::valueOrZero(job.depoNum()), name->extension, name->base, name->extension);
}

QString DestinationFileName::ofSegment(const Job& job, int segment)
{
    const auto files = job.mediaFiles();
    if (!Assertion::check(segment >= 1 && segment <= files.size(), "Invalid segment number"))
        return {};
    const auto& file = files.at(segment - 1);
    const auto name = splitAtLastPoint(file->sourceFilePath());
    if (!name)
        return {};
    return Text::format("{}_{}_{}.mp3[{}.{},{}]", NumberReading::valueOrZero(job.orderNum()),
                        NumberReading::valueOrZero(job.depoNum()), segment, name->base, name->extension,
                        wholeSeconds(file->mp3Duration()) * 1000);
}
