#include "cli/Order.h"

#include "foundation/PathText.h"
#include "foundation/Text.h"
#include "model/ProcessingLevel.h"
#include "transcript/TranscriptFileType.h"
#include "transcript/TranscriptPrefill.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace {

std::optional<QString> problemOfFile(const QString& path, const QString& what)
{
    const QFileInfo file(path);
    if (!file.exists())
        return Text::format("The {} {} does not exist.", what, path);
    if (!file.isFile())
        return Text::format("The {} {} is not a file.", what, path);
    if (!file.isReadable())
        return Text::format("The {} {} cannot be read.", what, path);
    return std::nullopt;
}

std::optional<QString> problemOfTranscript(const QString& path)
{
    if (auto problem = problemOfFile(path, QStringLiteral("transcript")))
        return problem;
    if (PathText::pathExtension(path).isEmpty())
        return TranscriptFileType::missingExtensionWarning;
    return std::nullopt;
}

std::optional<QString> problemOfRecording(const QString& path)
{
    if (auto problem = problemOfFile(path, QStringLiteral("recording")))
        return problem;
    if (TranscriptFileType::isKnown(PathText::pathExtension(path)))
        return Text::format("{} is a transcript, not a recording.", path);
    if (!PathText::lastPathComponent(path).contains(u'.'))
        return Text::format("The recording {} needs an extension: the service knows files by their names.", path);
    return std::nullopt;
}

// Whether one of the recordings has this one's path in other letters, and is not this very file.
bool isAnotherFile(const QString& path, const QStringList& media)
{
    const QFileInfo file(path);
    return std::any_of(media.begin(), media.end(), [&](const QString& other) {
        const QFileInfo otherFile(other);
        return file.absoluteFilePath().compare(otherFile.absoluteFilePath(), Qt::CaseInsensitive) == 0 &&
               file.canonicalFilePath() != otherFile.canonicalFilePath();
    });
}

void prefill(const QString& transcript, const SubmitOptions& options, Order::Prepared& prepared)
{
    Job& job = *prepared.job;
    const auto reading = TranscriptPrefill::read(transcript);
    if (!reading)
        return;
    if (reading->isOutOfRange) {
        prepared.remarks << QStringLiteral("No name or date is taken from a corporate witness's transcript.");
        return;
    }
    if (!options.firstName)
        job.setDeponentFirstName(reading->firstName);
    if (!options.lastName)
        job.setDeponentLastName(reading->lastName);
    if (!options.date && reading->date)
        job.setDepositionDate(*reading->date);
}

QString levelName(const Job& job)
{
    return processingLevelName(job.processingLevel());
}

} // namespace

std::variant<Order::Prepared, QString> Order::prepare(const SubmitOptions& options)
{
    const QString transcript = QFileInfo(options.transcript).absoluteFilePath();
    if (const auto problem = problemOfTranscript(transcript))
        return *problem;
    for (const QString& path : options.media) {
        if (const auto problem = problemOfRecording(QFileInfo(path).absoluteFilePath()))
            return *problem;
    }

    Prepared prepared{Job::job(), {}};
    Job& job = *prepared.job;
    if (!TranscriptFileType::isKnown(PathText::pathExtension(transcript)))
        prepared.remarks << TranscriptFileType::unknownTypeWarning;
    job.setTranscriptFile(transcript);
    job.setShortCaption(options.caption);
    job.setDeliveryFormat(options.deliveryFormat);
    if (options.firstName)
        job.setDeponentFirstName(*options.firstName);
    if (options.lastName)
        job.setDeponentLastName(*options.lastName);
    if (options.date)
        job.setDepositionDate(QDateTime(*options.date, QTime(12, 0)));
    prefill(transcript, options, prepared);

    for (const QString& path : options.media) {
        const auto count = job.mediaFiles().size();
        job.addMediaFilesObject(MediaFile::mediaFileWithPath(QFileInfo(path).absoluteFilePath()));
        if (job.mediaFiles().size() > count)
            continue;
        if (isAnotherFile(path, options.media))
            return Text::format("The recordings' names must differ in more than letter case: {}", path);
        prepared.remarks << Text::format("{} was given twice; it is taken once.", path);
    }
    auto files = job.mediaFiles();
    std::stable_sort(files.begin(), files.end(),
                     [](const auto& a, const auto& b) { return a->caseInsensitiveCompareByFileName(*b) < 0; });
    job.setMediaFiles(files);
    return prepared;
}

QStringList Order::applyServiceOptions(const SubmitOptions& options, Job& job)
{
    // The order matters: rush and interpreter each move the level away from what is not offered with them.
    const int wanted = options.processingLevel.value_or(ProcessingLevelAutoSync);
    job.setProcessingLevel(wanted);
    if (options.rush)
        job.setRush(true);
    if (options.viaInterpreter)
        job.setViaInterpreter(true);
    QStringList remarks;
    if (job.processingLevel() != wanted) {
        remarks << Text::format("{} is not offered with {}: {} is ordered.", processingLevelName(wanted),
                                options.viaInterpreter && wanted == ProcessingLevelAutoSync
                                    ? QStringLiteral("an interpreter")
                                    : QStringLiteral("rush service"),
                                levelName(job));
    }
    return remarks;
}
