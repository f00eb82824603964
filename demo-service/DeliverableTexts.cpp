#include "demo-service/DeliverableTexts.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>

namespace DemoService::DeliverableTexts {
namespace {

std::string clock(std::int64_t milliseconds)
{
    const std::int64_t seconds = milliseconds / 1000;
    return fmt::format("{:02}:{:02}:{:02}.{:03}", seconds / 3600, seconds / 60 % 60, seconds % 60, milliseconds % 1000);
}

std::string markup(std::string_view text)
{
    std::string escaped;
    for (const char character : text) {
        switch (character) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        default:
            escaped += character;
        }
    }
    return escaped;
}

std::string quoted(std::string_view text, std::string_view quoteInside)
{
    std::string result = "\"";
    for (const char character : text) {
        if (character == '"')
            result += quoteInside;
        else if (character == '\\' && quoteInside.front() == '\\')
            result += "\\\\";
        else
            result += character;
    }
    return result + "\"";
}

} // namespace

std::string ascii(const TimedTranscript& transcript)
{
    std::string text;
    for (const TimedLine& line : transcript.lines)
        text += fmt::format("{}  {}\r\n", clock(line.startMs), line.text);
    return text;
}

std::string xml(const TimedTranscript& transcript, const std::string& root)
{
    std::string text = fmt::format("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                   "<{} deponent=\"{}\" date=\"{}\" transcript=\"{}\" duration=\"{}\">\n",
                                   root, markup(transcript.deponent), markup(transcript.date), markup(transcript.name),
                                   clock(transcript.durationMs));
    for (const auto& [name, duration] : transcript.recordings)
        text += fmt::format("  <recording name=\"{}\" duration=\"{}\"/>\n", markup(name), clock(duration));
    for (const TimedLine& line : transcript.lines)
        text += fmt::format("  <line start=\"{}\" recording=\"{}\" at=\"{}\">{}</line>\n", clock(line.startMs),
                            line.segment, clock(line.segmentStartMs), markup(line.text));
    return text + fmt::format("</{}>\n", root);
}

std::string captions(const TimedTranscript& transcript)
{
    std::string text =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<tt xmlns=\"http://www.w3.org/ns/ttml\"><body><div>\n";
    for (std::size_t index = 0; index < transcript.lines.size(); ++index) {
        const TimedLine& line = transcript.lines[index];
        const std::int64_t end =
            index + 1 < transcript.lines.size() ? transcript.lines[index + 1].startMs : transcript.durationMs;
        text += fmt::format("<p begin=\"{}\" end=\"{}\">{}</p>\n", clock(line.startMs), clock(end), markup(line.text));
    }
    return text + "</div></body></tt>\n";
}

std::string tabTable(const TimedTranscript& transcript)
{
    std::string text = "Line\tRecording\tStart\tText\r\n";
    int number = 0;
    for (const TimedLine& line : transcript.lines)
        text += fmt::format("{}\t{}\t{}\t{}\r\n", ++number, line.segment, clock(line.segmentStartMs), line.text);
    return text;
}

std::string commaTable(const TimedTranscript& transcript)
{
    std::string text = "Line,Recording,StartMs,Text\r\n";
    int number = 0;
    for (const TimedLine& line : transcript.lines)
        text += fmt::format("{},{},{},{}\r\n", ++number, line.segment, line.segmentStartMs, quoted(line.text, "\"\""));
    return text;
}

std::string pagedText(const TimedTranscript& transcript)
{
    constexpr int linesOnPage = 25;
    std::string text;
    int number = 0;
    for (const TimedLine& line : transcript.lines) {
        text += fmt::format("{:04}:{:02} {}\r\n", number / linesOnPage + 1, number % linesOnPage + 1, line.text);
        ++number;
    }
    return text;
}

std::string videoIndex(const TimedTranscript& transcript)
{
    std::string text;
    int number = 0;
    for (const auto& [name, duration] : transcript.recordings)
        text += fmt::format("video {} {} {}\r\n", ++number, clock(duration), name);
    number = 0;
    for (const TimedLine& line : transcript.lines)
        text += fmt::format("line {} {} {}\r\n", ++number, line.segment, clock(line.segmentStartMs));
    return text;
}

std::string syncTable(const TimedTranscript& transcript)
{
    std::string text;
    int number = 0;
    for (const TimedLine& line : transcript.lines)
        text += fmt::format("{} {} {}\n", ++number, line.segment, line.segmentStartMs);
    return text;
}

std::string log(const TimedTranscript& transcript)
{
    std::string text =
        fmt::format("{}: {} lines over {}\r\n", transcript.name, transcript.lines.size(), clock(transcript.durationMs));
    for (const auto& [name, duration] : transcript.recordings)
        text += fmt::format("{}: {}\r\n", name, clock(duration));
    return text;
}

std::string json(const TimedTranscript& transcript)
{
    std::string text = fmt::format("{{\"transcript\":{},\"deponent\":{},\"date\":{},\"durationMs\":{},\"lines\":[",
                                   quoted(transcript.name, "\\\""), quoted(transcript.deponent, "\\\""),
                                   quoted(transcript.date, "\\\""), transcript.durationMs);
    bool first = true;
    for (const TimedLine& line : transcript.lines) {
        text += fmt::format("{}\n{{\"startMs\":{},\"recording\":{},\"text\":{}}}", first ? "" : ",", line.startMs,
                            line.segment, quoted(line.text, "\\\""));
        first = false;
    }
    return text + "\n]}\n";
}

std::string viewerPage(const TimedTranscript& transcript)
{
    std::string page = fmt::format("<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\"><title>{0}</title>"
                                   "</head><body>\n<h1>{0}</h1>\n<p>{1}, {2}</p>\n<table>\n",
                                   markup(transcript.name), markup(transcript.deponent), markup(transcript.date));
    for (const TimedLine& line : transcript.lines)
        page += fmt::format("<tr><td>{}</td><td>{}</td></tr>\n", clock(line.startMs), markup(line.text));
    return page + "</table>\n</body></html>\n";
}

} // namespace DemoService::DeliverableTexts
