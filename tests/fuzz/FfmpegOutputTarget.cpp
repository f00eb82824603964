// What ffmpeg prints. The first byte says where the output is cut into pieces.
#include "FuzzTarget.h"

#include "foundation/MainThread.h"
#include "foundation/Text.h"
#include "media/AudioExtractor.h"
#include "media/FfmpegLines.h"

#include <QRegularExpression>

#include <cmath>

using FuzzTarget::require;

namespace {

// The rule of the lines in other words.
QStringList linesOf(QByteArray& unfinished, const QByteArray& piece)
{
    QByteArray text = unfinished + piece;
    for (const char newline : {'\v', '\f', '\r'})
        text.replace(newline, '\n');
    QList<QByteArray> parts = text.split('\n');
    if (!parts.last().isEmpty())
        unfinished = parts.takeLast().left(FfmpegLines::longestUnfinishedLine);
    QStringList lines;
    for (const QByteArray& part : parts)
        lines += QString::fromUtf8(part);
    return lines;
}

class Observer : public AudioExtractorErrorObserver
{
public:
    void audioExtractorHandleError(AudioExtractor& /*extractor*/, const Error& error) override
    {
        ++errors;
        require(error.code == 2 && error.localizedDescription == Text::format("FFMPEG error( {} )", line),
                "an error tells its line");
    }

    QString line;
    int errors = 0;
};

void requireSeconds(const std::optional<float>& seconds)
{
    require(!seconds || std::isfinite(*seconds), "a time is a number");
}

} // namespace

FUZZ_TARGET(FfmpegOutput)
{
    if (input.isEmpty())
        return;
    const qsizetype step = static_cast<unsigned char>(input.front()) + 1;
    const QByteArray output = input.sliced(1).toByteArray();
    const auto file = MediaFile::mediaFileWithPath(QStringLiteral("/no such file.mov"));
    const auto extractor = AudioExtractor::audioExtractorWithInputMediaFile(file, QStringLiteral("/no such program"));
    require(extractor != nullptr, "there is an extractor");
    Observer observer;
    extractor->setObserver(&observer);
    FfmpegLines reader;
    QByteArray unfinished;
    for (qsizetype at = 0; at < output.size(); at += step) {
        const QByteArray piece = output.mid(at, step);
        const QStringList lines = reader.add(piece);
        require(lines == linesOf(unfinished, piece), "lines are cut at newlines");
        for (const QString& line : lines) {
            observer.line = line;
            observer.errors = 0;
            extractor->processFFMPEGOutputString(line);
            extractor->processFFMPEGOutputStringForErrors(line);
            require(observer.errors <= 4, "a line is an error for each word at most");
        }
    }
    MainThread::drain();
    requireSeconds(file->sourceDuration());
    requireSeconds(file->durationProcessed());
    require(std::trunc(file->durationProcessed().value_or(0)) == file->durationProcessed().value_or(0),
            "the time processed is of whole seconds");
    const QString streams = file->streamsInfo();
    if (streams.isEmpty())
        return;
    for (const QString& line : streams.split(u'\n'))
        require(line.startsWith(u"Stream") && line == line.trimmed(), "a stream's line begins with its word");
}
