#include "demo-service/TimedTranscript.h"

#include <string_view>

namespace DemoService {
namespace {

// The length of the UTF-8 sequence that the text begins with; 0 when it is none.
std::size_t sequenceLength(std::string_view text)
{
    const auto first = static_cast<unsigned char>(text.front());
    const std::size_t length = first < 0x80 ? 1 : first < 0xc2 ? 0 : first < 0xe0 ? 2 : first < 0xf0 ? 3 : 4;
    if (length == 0 || first > 0xf4 || text.size() < length)
        return 0;
    for (std::size_t index = 1; index < length; ++index)
        if ((static_cast<unsigned char>(text[index]) & 0xc0) != 0x80)
            return 0;
    return length;
}

// Transcripts come in any encoding: what is no UTF-8 is read as Latin-1, and control characters become blanks.
std::string readable(std::string_view line)
{
    std::string text;
    while (!line.empty()) {
        const std::size_t length = sequenceLength(line);
        const auto first = static_cast<unsigned char>(line.front());
        if (length > 1) {
            text += line.substr(0, length);
        } else if (length == 0) {
            text += static_cast<char>(0xc0 | (first >> 6));
            text += static_cast<char>(0x80 | (first & 0x3f));
        } else {
            text += first < 0x20 || first == 0x7f ? ' ' : line.front();
        }
        line.remove_prefix(length == 0 ? 1 : length);
    }
    return text;
}

std::vector<std::string> linesOf(std::string_view transcript)
{
    std::vector<std::string> lines;
    while (!transcript.empty()) {
        const std::size_t end = transcript.find('\n');
        std::string_view line = transcript.substr(0, end);
        transcript.remove_prefix(end == std::string_view::npos ? transcript.size() : end + 1);
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        lines.push_back(readable(line));
    }
    return lines;
}

std::string baseNameOf(const std::string& path)
{
    const std::string name = path.substr(path.find_last_of("/\\") + 1);
    return name.substr(0, name.rfind('.'));
}

// Sets the recording in which the line begins and the place within it.
void placeLine(TimedLine& line, const TimedTranscript& transcript)
{
    std::int64_t start = 0;
    int number = 1;
    for (const auto& [name, duration] : transcript.recordings) {
        if (line.startMs < start + duration || number == static_cast<int>(transcript.recordings.size())) {
            line.segment = number;
            line.segmentStartMs = line.startMs - start;
            return;
        }
        start += duration;
        ++number;
    }
}

} // namespace

TimedTranscript timedTranscript(const Job& job)
{
    TimedTranscript transcript;
    transcript.name = job.transcriptName;
    transcript.baseName = baseNameOf(job.transcriptName);
    transcript.deponent = valueOf(job.details, "deponentFirst") + " " + valueOf(job.details, "deponentLast");
    transcript.date = valueOf(job.details, "depoDate");
    for (const Segment& segment : job.segments) {
        const std::int64_t duration = segment.uploadDurationMs > 0 ? segment.uploadDurationMs : segment.durationMs;
        transcript.recordings.emplace_back(segment.sourceName, duration);
        transcript.durationMs += duration;
    }
    const std::vector<std::string> lines = linesOf(job.transcript.value_or(""));
    for (std::size_t index = 0; index < lines.size(); ++index) {
        TimedLine line;
        line.text = lines[index];
        line.startMs =
            transcript.durationMs * static_cast<std::int64_t>(index) / static_cast<std::int64_t>(lines.size());
        placeLine(line, transcript);
        transcript.lines.push_back(std::move(line));
    }
    return transcript;
}

} // namespace DemoService
