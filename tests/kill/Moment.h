#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// When a run of the program is killed. A moment is drawn before the run, as a share of what an undisturbed run does, so
// that a seed gives the same plan on every machine.
struct Moment
{
    enum class Aim {
        Time,
        RequestBody, // while the service reads it
        RequestReceived,
        BeforeReply, // the service has done its part
        MiddleOfReply,
        AfterReply,
        SavedJobs, // the file of the unfinished jobs is written
        Audio,     // ffmpeg writes
        Delivery   // delivered files are written or unpacked
    };

    Aim aim = Aim::Time;
    double share = 0; // of the time, the requests or the changes of files
    std::chrono::microseconds delay{0};

    [[nodiscard]] bool isAtRequest() const;
    [[nodiscard]] std::string text() const;
};

[[nodiscard]] const char* nameOf(Moment::Aim aim);

// What an undisturbed run did.
struct Road
{
    struct Request
    {
        std::string endpoint;
        int number = 0; // of those to the endpoint, from 0
    };

    std::chrono::microseconds duration{0};
    std::vector<Request> requests;
    int savedJobs = 0; // changes of files
    int audio = 0;
    int delivery = 0;

    // Only the first of the requests that are sent again and again.
    void addRequest(const std::string& endpoint, int number);
};

// One scenario: what is ordered, and when its runs are killed.
struct Plan
{
    Plan(std::uint64_t seed, int scenario);

    std::uint64_t seed;
    int scenario;
    int orders = 1;
    bool again = false; // the service asks for a segment once more
    std::vector<Moment> ofSubmissions;
    std::vector<Moment> ofResumes;
    // As a file system may leave it after a power cut: the newest file of the saved jobs is cut here.
    std::optional<double> savedJobsCutAt;

    [[nodiscard]] std::string text() const;
};
