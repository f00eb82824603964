#include "demo-service/JobBook.h"

#include "demo-service/Deliverables.h"

#include <fmt/format.h>

#include <algorithm>

namespace DemoService {
namespace {

// Alignment scores of a joined segment: high, and different from one segment to the next.
int scoreOf(int depoNumber, int segment)
{
    return 90 + (depoNumber * 7 + segment * 3) % 11;
}

// A name as it can stand in a line of the status reply.
std::string onOneLine(std::string name)
{
    std::ranges::replace_if(
        name, [](char character) { return character == '\n' || character == '\r'; }, ' ');
    return name;
}

std::string demoTranscript()
{
    std::string text;
    for (int line = 1; line <= 20; ++line)
        text += fmt::format("{:2}  {}  Line {} of the demo deposition.\r\n", line, line % 2 == 1 ? "Q." : "A.", line);
    return text;
}

} // namespace

JobBook::JobBook(int firstOrderNumber, int firstDepoNumber, std::chrono::milliseconds turnaround)
    : m_nextOrderNumber(firstOrderNumber), m_nextDepoNumber(firstDepoNumber), m_turnaround(turnaround)
{}

int JobBook::add(const Fields& details, int segments, const std::vector<Again>& again)
{
    const int depoNumber = m_nextDepoNumber++;
    Entry& entry = m_entries[depoNumber];
    entry.job.orderNumber = m_nextOrderNumber++;
    entry.job.depoNumber = depoNumber;
    entry.job.details = details;
    entry.job.transcriptName = valueOf(details, "originalTranscriptName");
    entry.machine = valueOf(details, "comp");
    for (int number = 1; number <= segments; ++number)
        entry.job.segments.emplace_back().number = number;
    for (const Again& wanted : again)
        if (wanted.segment >= 1 && wanted.segment <= segments)
            entry.again[wanted.segment] = wanted.channels;
    return depoNumber;
}

int JobBook::addServerJob(const std::string& transcriptName, int segments, const std::string& machine, TimePoint now)
{
    constexpr std::int64_t durationMs = 247000;
    const Fields details{{"deponentLast", "Server"}, {"deponentFirst", "Sam"},
                         {"depoDate", "2011-03-04"}, {"transcriptDestinationFormat", "all"},
                         {"shortCaption", ""},       {"originalTranscriptName", transcriptName},
                         {"comp", machine}};
    const int depoNumber = add(details, segments, {});
    Entry& entry = m_entries[depoNumber];
    entry.job.serverOnly = true;
    entry.job.transcript = demoTranscript();
    for (Segment& segment : entry.job.segments) {
        segment.announced = true;
        segment.uploaded = true;
        segment.sourceName = fmt::format("Segment {}.mp4", segment.number);
        segment.durationMs = durationMs;
    }
    arrived(entry, true, now);
    return depoNumber;
}

JobBook::Entry* JobBook::find(int depoNumber)
{
    const auto found = m_entries.find(depoNumber);
    return found == m_entries.end() ? nullptr : &found->second;
}

Segment* JobBook::segment(int depoNumber, int number)
{
    Entry* entry = find(depoNumber);
    if (entry == nullptr || number < 1 || number > static_cast<int>(entry->job.segments.size()))
        return nullptr;
    return &entry->job.segments[static_cast<std::size_t>(number) - 1];
}

bool JobBook::isComplete(const Entry& entry)
{
    return entry.job.transcript.has_value() && std::ranges::all_of(entry.job.segments, &Segment::uploaded);
}

void JobBook::arrived(Entry& entry, bool restart, TimePoint now)
{
    if (isComplete(entry) && (restart || !entry.complete))
        entry.complete = now;
    advance(entry, now);
}

void JobBook::takeAudio(int depoNumber, int number, std::string audio, TimePoint now)
{
    Entry* entry = find(depoNumber);
    Segment* taken = segment(depoNumber, number);
    if (entry == nullptr || taken == nullptr)
        return;
    // Only audio that comes after the service could ask for it is an answer to the question.
    const bool answersAgain = entry->complete.has_value() && entry->again.erase(number) > 0;
    taken->uploaded = true;
    ++taken->uploads;
    taken->audio = std::move(audio);
    arrived(*entry, answersAgain, now);
}

void JobBook::takeTranscript(int depoNumber, std::string transcript, TimePoint now)
{
    if (Entry* entry = find(depoNumber)) {
        entry->job.transcript = std::move(transcript);
        arrived(*entry, false, now);
    }
}

void JobBook::advance(Entry& entry, TimePoint now) const
{
    if (!entry.complete)
        return;
    Stage stage = Stage::Splitting;
    const auto spent = now - *entry.complete;
    if (!entry.again.empty())
        stage = Stage::Splitting;
    else if (spent >= m_turnaround)
        stage = Stage::Joined;
    else if (spent >= m_turnaround * 3 / 4)
        stage = Stage::Joining;
    else if (spent >= m_turnaround / 2)
        stage = Stage::SplitDone;
    // Words do not run backwards when the turnaround is changed.
    entry.stage = std::max(entry.stage, stage);
    if (entry.stage == Stage::Joined && !entry.files)
        entry.files = deliverablesOf(entry.job, valueOf(entry.job.details, "transcriptDestinationFormat"));
}

std::string JobBook::wordOf(const Entry& entry)
{
    if (!entry.heldWord.empty())
        return entry.heldWord;
    if (entry.isVoid)
        return "VOID";
    if (entry.job.delivered)
        return "Done";
    switch (entry.stage) {
    case Stage::Uploading:
        return "Uploading";
    case Stage::Splitting:
        return "Splitting";
    case Stage::SplitDone:
        return "SplitDone";
    case Stage::Joining:
        return "Joining";
    case Stage::Joined:
        return "Joined";
    }
    return {};
}

std::string JobBook::segmentWordOf(const Entry& entry, const Segment& segment)
{
    if (!segment.uploaded)
        return "Uploading";
    if (!entry.complete)
        return "Uploaded";
    if (const auto asked = entry.again.find(segment.number); asked != entry.again.end())
        return asked->second == Channels::Stereo ? "Processing_Media_Stereo" : "Processing_Media_Mono";
    if (entry.stage == Stage::Joined)
        return "Joined";
    return entry.stage == Stage::Joining ? "Joining" : entry.stage == Stage::SplitDone ? "SplitDone" : "Splitting";
}

Job JobBook::snapshot(const Entry& entry, bool withBytes)
{
    Job copy;
    if (withBytes) {
        copy = entry.job;
        if (entry.stage == Stage::Joined && entry.files)
            copy.deliverables = {entry.files->begin(), entry.files->end()};
    } else {
        copy.orderNumber = entry.job.orderNumber;
        copy.depoNumber = entry.job.depoNumber;
        copy.details = entry.job.details;
        copy.transcriptName = entry.job.transcriptName;
        copy.delivered = entry.job.delivered;
        copy.serverOnly = entry.job.serverOnly;
        for (const Segment& segment : entry.job.segments) {
            Segment& slim = copy.segments.emplace_back();
            slim.number = segment.number;
            slim.announced = segment.announced;
            slim.sourceName = segment.sourceName;
            slim.durationMs = segment.durationMs;
            slim.uploaded = segment.uploaded;
            slim.uploadDurationMs = segment.uploadDurationMs;
        }
    }
    copy.word = wordOf(entry);
    for (Segment& segment : copy.segments) {
        segment.word = segmentWordOf(entry, segment);
        segment.score = segment.word == "Joined" ? scoreOf(copy.depoNumber, segment.number) : -1;
    }
    return copy;
}

std::optional<Job> JobBook::job(int depoNumber, TimePoint now, bool withBytes)
{
    Entry* entry = find(depoNumber);
    if (entry == nullptr)
        return std::nullopt;
    advance(*entry, now);
    return snapshot(*entry, withBytes);
}

std::vector<Job> JobBook::jobs(TimePoint now)
{
    std::vector<Job> copies;
    for (auto& [number, entry] : m_entries) {
        advance(entry, now);
        copies.push_back(snapshot(entry, true));
    }
    return copies;
}

std::string JobBook::statusReply(const std::optional<std::string>& machine, TimePoint now)
{
    std::string depositions;
    std::string segments;
    for (auto& [number, entry] : m_entries) {
        if (machine && entry.machine != *machine)
            continue;
        advance(entry, now);
        const Job job = snapshot(entry, false);
        depositions += fmt::format("Depo: {} {} {}\n", number, onOneLine(job.transcriptName), job.word);
        for (const Segment& segment : job.segments) {
            if (!segment.announced)
                continue;
            const std::int64_t duration = segment.uploadDurationMs > 0 ? segment.uploadDurationMs : segment.durationMs;
            segments +=
                fmt::format("Segment: {} {} {} {} {}\n", number, segment.number, segment.word, duration, segment.score);
        }
    }
    return depositions + segments;
}

const std::vector<std::pair<std::string, std::string>>* JobBook::files(int depoNumber, TimePoint now)
{
    Entry* entry = find(depoNumber);
    if (entry == nullptr)
        return nullptr;
    advance(*entry, now);
    // A job whose word is held at "Joined" is one that the client will come for.
    if (!entry->files && entry->heldWord == "Joined")
        entry->files = deliverablesOf(entry->job, valueOf(entry->job.details, "transcriptDestinationFormat"));
    const bool ready = entry->stage == Stage::Joined || entry->heldWord == "Joined";
    return ready && entry->files ? &*entry->files : nullptr;
}

void JobBook::markDelivered(int depoNumber)
{
    if (Entry* entry = find(depoNumber))
        entry->job.delivered = true;
}

void JobBook::setTurnaround(std::chrono::milliseconds turnaround, TimePoint now)
{
    for (auto& [number, entry] : m_entries)
        advance(entry, now);
    m_turnaround = turnaround;
}

bool JobBook::askAgain(int depoNumber, Again again)
{
    Entry* entry = find(depoNumber);
    if (entry == nullptr || entry->job.delivered || segment(depoNumber, again.segment) == nullptr)
        return false;
    entry->again[again.segment] = again.channels;
    if (entry->complete)
        entry->stage = Stage::Splitting;
    entry->files.reset();
    return true;
}

bool JobBook::voidJob(int depoNumber)
{
    Entry* entry = find(depoNumber);
    if (entry == nullptr || entry->job.delivered)
        return false;
    entry->isVoid = true;
    return true;
}

bool JobBook::holdWord(int depoNumber, const std::string& word)
{
    Entry* entry = find(depoNumber);
    if (entry == nullptr || entry->job.delivered)
        return false;
    entry->heldWord = word;
    return true;
}

bool JobBook::setDeliverables(int depoNumber, std::vector<std::pair<std::string, std::string>> files)
{
    Entry* entry = find(depoNumber);
    if (entry == nullptr || entry->job.delivered)
        return false;
    entry->files = std::move(files);
    return true;
}

} // namespace DemoService
