#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

// What the demo service hands out about itself: plain copies, safe to keep and to read on any thread.
namespace DemoService {

// Name and value in the order of the wire; names may repeat.
using Fields = std::vector<std::pair<std::string, std::string>>;

// The value of the first field of that name, "" when there is none.
[[nodiscard]] std::string valueOf(const Fields& fields, const std::string& name);

// One part of a multipart form, as it came.
struct Part
{
    std::string name;
    std::string fileName;
    std::string contentType;
    std::string content;
};

// One request that reached the service, whatever became of it.
struct Request
{
    std::string method;
    std::string path;     // "/saltine/checkstatus.php"
    std::string endpoint; // the last component of the path: "checkstatus.php"
    Fields headers;
    std::string body;        // the raw bytes of a form; empty for a multipart form
    std::vector<Part> parts; // of a multipart form, in order
    std::chrono::system_clock::time_point time;
    bool onFileHost = false;
    // The service's answer, filled in when it is known: the status, the reply's text, and whether the request broke
    // the rules of the wire ("Bad request: …"). An answer that an override gave is not judged.
    int status = 0;
    std::string reply;
    bool refused = false;
};

// How an endpoint answers instead of, or on top of, what it would do. A request answered with `status`, `reply`,
// `pieces`, `location`, `reset` or `resetRequestAt` changes nothing in the service; `pieceSize`, `delay`, `hang`,
// `cutAt` and `resetAt` alone do their harm around the answer that the service gives anyhow. Fit for designated
// initialisers: {.status = 503, .times = 1}.
struct Override
{
    // Only for requests with this text in their form, or in the name of the file that they send.
    std::string where = {};
    std::optional<int> status = std::nullopt;        // with `reply` as its text
    std::optional<std::string> reply = std::nullopt; // raw bytes
    std::vector<std::string> pieces = {};            // the reply, sent piece by piece with `pause` between them
    std::size_t pieceSize = 0;                       // the answer in pieces of so many bytes, with `pause` between them
    std::chrono::milliseconds pause{100};
    std::optional<std::string> location = std::nullopt; // a redirect (302, or `status`) to this place
    std::chrono::milliseconds delay{0};                 // before the answer
    bool hang = false;                                  // until releaseHangs(), clearOverrides() or stop()
    // Declare the whole reply, send so many bytes of it, close the connection.
    std::optional<std::size_t> cutAt = std::nullopt;
    // Declare the whole reply, send so many bytes of it, reset the connection; a number beyond its end resets it behind
    // the whole reply.
    std::optional<std::size_t> resetAt = std::nullopt;
    // The connection is reset once so many bytes of the request's body are read, or before the reply to a shorter one.
    std::optional<std::size_t> resetRequestAt = std::nullopt;
    bool reset = false;                      // the connection is reset before a byte of the reply
    std::optional<int> times = std::nullopt; // how many requests it is good for; empty is for ever
};

struct Segment
{
    int number = 0; // from 1
    bool announced = false;
    std::string sourceName;      // as announced
    std::int64_t durationMs = 0; // as announced
    std::int64_t size = 0;       // of the source file, as announced
    std::string modified;        // as announced
    std::string product;         // as announced
    std::string format;          // the streams description, decoded
    bool uploaded = false;
    int uploads = 0;        // how often its audio came
    std::string uploadName; // the destination name of the latest upload
    std::int64_t uploadDurationMs = 0;
    std::string audio; // the bytes of the latest upload
    std::string word;  // its status as the status reply gives it
    int score = -1;
};

struct Job
{
    int orderNumber = 0;
    int depoNumber = 0;
    Fields details; // the registration, values decoded
    std::vector<Segment> segments;
    std::string transcriptName;
    std::optional<std::string> transcript = std::nullopt;
    std::string word; // "Uploading", "Splitting", "SplitDone", "Joining", "Joined", "Done", "VOID"
    bool delivered = false;
    bool serverOnly = false;
    std::map<std::string, std::string> deliverables; // listed name and bytes; empty before "Joined"
};

// An uploaded log.
struct UploadedLog
{
    std::string name;
    std::string content;
};

} // namespace DemoService
