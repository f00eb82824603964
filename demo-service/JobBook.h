#pragma once

#include "demo-service/Records.h"
#include "demo-service/Service.h"

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace DemoService {

// The jobs and the words that they go through. Every operation that depends on time is told the time, so that a test
// can turn the clock itself. Not locked: its owner does that.
class JobBook
{
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    JobBook(int firstOrderNumber, int firstDepoNumber, std::chrono::milliseconds turnaround);

    // A job as its registration describes it; `again` names the segments to ask for once more. Returns its number.
    int add(const Fields& details, int segments, const std::vector<Again>& again);
    int addServerJob(const std::string& transcriptName, int segments, const std::string& machine, TimePoint now);

    [[nodiscard]] bool has(int depoNumber) const { return m_entries.contains(depoNumber); }
    // The segment, when the job announced that many; null otherwise. Good until the next change of the book.
    [[nodiscard]] Segment* segment(int depoNumber, int number);
    void takeAudio(int depoNumber, int number, std::string audio, TimePoint now);
    void takeTranscript(int depoNumber, std::string transcript, TimePoint now);

    // Copies, with words and deliverables as they are now. `withBytes` false leaves out audio, transcripts and
    // deliverables, which may be large.
    [[nodiscard]] std::optional<Job> job(int depoNumber, TimePoint now, bool withBytes = true);
    [[nodiscard]] std::vector<Job> jobs(TimePoint now);
    // The lines of the status reply, of one machine's jobs when one is named.
    [[nodiscard]] std::string statusReply(const std::optional<std::string>& machine, TimePoint now);

    // The result files in the order of their numbers; null before there are any.
    [[nodiscard]] const std::vector<std::pair<std::string, std::string>>* files(int depoNumber, TimePoint now);
    void markDelivered(int depoNumber);

    void setTurnaround(std::chrono::milliseconds turnaround, TimePoint now);
    bool askAgain(int depoNumber, Again again);
    bool voidJob(int depoNumber);
    bool forget(int depoNumber) { return m_entries.erase(depoNumber) > 0; }
    bool holdWord(int depoNumber, const std::string& word);
    bool setDeliverables(int depoNumber, std::vector<std::pair<std::string, std::string>> files);

private:
    enum class Stage { Uploading, Splitting, SplitDone, Joining, Joined };

    struct Entry
    {
        Job job; // without words and deliverables, which are worked out when asked for
        std::string machine;
        std::optional<TimePoint> complete; // since when everything is there
        Stage stage = Stage::Uploading;    // the furthest so far
        std::map<int, Channels> again;
        bool isVoid = false;
        std::string heldWord;
        std::optional<std::vector<std::pair<std::string, std::string>>> files;
    };

    [[nodiscard]] static bool isComplete(const Entry& entry);
    [[nodiscard]] Entry* find(int depoNumber);
    void arrived(Entry& entry, bool restart, TimePoint now);
    void advance(Entry& entry, TimePoint now) const;
    [[nodiscard]] static std::string wordOf(const Entry& entry);
    [[nodiscard]] static std::string segmentWordOf(const Entry& entry, const Segment& segment);
    [[nodiscard]] static Job snapshot(const Entry& entry, bool withBytes);

    std::map<int, Entry> m_entries; // by deposition number
    int m_nextOrderNumber;
    int m_nextDepoNumber;
    std::chrono::milliseconds m_turnaround;
};

} // namespace DemoService
