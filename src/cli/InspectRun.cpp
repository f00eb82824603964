#include "cli/InspectRun.h"

#include "cli/CliApplication.h"
#include "cli/JobTable.h"
#include "cli/Terminal.h"
#include "foundation/MainThread.h"
#include "foundation/PathText.h"
#include "foundation/Text.h"
#include "transcript/DepositionFileParser.h"
#include "transcript/TranscriptFileType.h"

#include <QFileInfo>

#include <cmath>

namespace {

QJsonValue textOrNull(const QString& text)
{
    return text.isEmpty() ? QJsonValue(QJsonValue::Null) : QJsonValue(text);
}

// ffmpeg tells hundredths; single precision would print more digits than that.
QJsonValue hundredthsOrNull(const std::optional<float>& seconds)
{
    return seconds ? QJsonValue(std::round(*seconds * 100.0) / 100.0) : QJsonValue(QJsonValue::Null);
}

QString textOrDash(const QString& text)
{
    return text.isEmpty() ? QStringLiteral("-") : text;
}

} // namespace

InspectRun::~InspectRun()
{
    const std::scoped_lock lock(m_extractorMutex);
    m_isEnding = true;
    if (m_extractor)
        m_extractor->terminate();
}

void InspectRun::start()
{
    m_threads.start("inspect", [this] { inspectAll(); });
}

void InspectRun::inspectAll()
{
    for (const QString& file : line().inspectFiles) {
        {
            const std::scoped_lock lock(m_extractorMutex);
            if (m_isEnding)
                return;
        }
        const Finding finding = inspect(file);
        if (!MainThread::runAndWait([&] { print(finding); }))
            return;
    }
    MainThread::post([this] { application().end(m_hasProblem ? ExitCode::Usage : ExitCode::Done); });
}

InspectRun::Finding InspectRun::inspect(const QString& file)
{
    const QString path = QFileInfo(file).absoluteFilePath();
    Finding finding = TranscriptFileType::isKnown(PathText::pathExtension(path)) ? inspectTranscript(file, path)
                                                                                 : inspectRecording(file, path);
    const QFileInfo info(path);
    if (!info.isFile() || !info.isReadable())
        finding.problem = Text::format("{} cannot be read.", file);
    return finding;
}

InspectRun::Finding InspectRun::inspectTranscript(const QString& file, const QString& path) const
{
    std::shared_ptr<DepositionFileParser> parser;
    if (TranscriptFileType::isParsed(PathText::pathExtension(path)) && QFileInfo(path).isFile()) {
        try {
            parser = DepositionFileParser::depositionFileParserWithFilePath(path);
        } catch (const DeponentNameOutOfRange&) {
            // Nothing is prefilled for such a transcript.
        }
    }
    const QString first = parser ? parser->deponentFirstName() : QString();
    const QString last = parser ? parser->deponentLastName() : QString();
    const QString date = parser ? parser->dateString() : QString();
    return {Text::format("{}: first {}, last {}, date {}", file, textOrDash(first), textOrDash(last), textOrDash(date)),
            {{QStringLiteral("file"), file},
             {QStringLiteral("first"), textOrNull(first)},
             {QStringLiteral("last"), textOrNull(last)},
             {QStringLiteral("date"), textOrNull(date)}},
            {}};
}

InspectRun::Finding InspectRun::inspectRecording(const QString& file, const QString& path)
{
    const auto mediaFile = MediaFile::mediaFileWithPath(path);
    QString problem;
    if (const auto extractor = AudioExtractor::audioExtractorWithInputMediaFile(mediaFile)) {
        {
            const std::scoped_lock lock(m_extractorMutex);
            if (m_isEnding)
                return {};
            m_extractor = extractor;
        }
        extractor->extractInfo();
        const std::scoped_lock lock(m_extractorMutex);
        m_extractor.reset();
    } else {
        problem = QStringLiteral("ffmpeg is not installed.");
    }
    // The stream lines are set on the main thread, after what it has queued.
    MainThread::runAndWait([] {});
    const auto duration = mediaFile->sourceDuration();
    const QString streams = mediaFile->streamsInfo();
    QString indented = streams;
    indented.replace(u'\n', QStringLiteral("\n  "));
    return {Text::format("{}: duration {}{}", file,
                         duration ? JobTable::hoursMinutesSeconds(*duration) : QStringLiteral("-"),
                         streams.isEmpty() ? QString() : QStringLiteral("\n  ") + indented),
            {{QStringLiteral("file"), file},
             {QStringLiteral("duration"), hundredthsOrNull(duration)},
             {QStringLiteral("streams"), textOrNull(streams)}},
            problem};
}

void InspectRun::print(const Finding& finding)
{
    if (application().hasEnded())
        return;
    application().reporter().result(finding.line, finding.object);
    if (finding.problem.isEmpty())
        return;
    m_hasProblem = true;
    Terminal::printError(finding.problem);
}
