#pragma once

#include "demo-service/Records.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace DemoService {

// A segment that the service asks for again.
enum class Channels { Stereo, Mono };

struct Again
{
    int segment = 1; // from 1
    Channels channels = Channels::Stereo;
};

// How far a request has come: some of its body is read, all of it is, and its answer is worked out but not sent.
enum class Stage { Body, Received, Answered };

struct Rate
{
    double rate = 0;
    int productCode = 0;
};

struct Rates
{
    Rate man24{95.0, 24};
    Rate man48{75.0, 48};
    Rate man72{60.0, 72};
    Rate unattended{45.0, 10};
    Rate autoSync{30.0, 11};
    double rushMultiplier = 1.5;
};

struct Options
{
    std::string bindAddress = "127.0.0.1";
    int securePort = 0; // 0 is any free port
    int filePort = 0;

    std::string user = "demo";
    std::string password = "demo1234";
    std::string contactID = "4711";
    bool demandPasswordChange = false;

    int firstOrderNumber = 5120;
    int firstDepoNumber = 883;
    // From the last upload of a job to "Joined".
    std::chrono::milliseconds turnaround{0};
    // Asked again, once each, of every job that has such a segment.
    std::vector<Again> again;

    bool sendLogs = false;                     // asks for the log once
    bool logFormat = true;                     // whether the LOG delivery format is available
    std::string deliveryOption = "Deposition"; // "ShortCaption" or "" are the others
    Rates rates;

    // Received files are written here when it is not empty; the folder is made when missing.
    std::string saveUploads;
    // Told how far each request has come, on the thread that answers it; it may call the service, and holds the request
    // up for as long as it takes.
    std::function<void(Stage, const Request&)> watch;
    // One line for each request, on the thread that answers it, one call at a time; never with a password in it. It
    // must not call the service.
    std::function<void(const std::string&)> log;
};

// The stand-in for the sync service: a TLS host for everything below "/saltine/" and a plain-HTTP file host, both on
// threads of their own. Every request is checked against the wire; one that breaks it is answered with status 200 and
// a text that begins with "Bad request: ". Every operation may be called on any thread, also while requests run.
class Service
{
public:
    // Listens at once. Throws std::runtime_error when a port cannot be had.
    explicit Service(Options options = {});
    ~Service();
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;

    // Ends both hosts, with requests that hang or wait; what the service holds stays readable. Repeatable.
    void stop();

    [[nodiscard]] int securePort() const;
    [[nodiscard]] int filePort() const;
    [[nodiscard]] std::string secureHost() const; // "https://127.0.0.1:PORT"
    [[nodiscard]] std::string fileHost() const;   // "http://127.0.0.1:PORT"

    // What it was asked, in order of arrival. The endpoint is a path's last component, as in "checkstatus.php".
    [[nodiscard]] std::vector<Request> requests() const;
    [[nodiscard]] std::vector<Request> requests(const std::string& endpoint) const;
    [[nodiscard]] int count(const std::string& endpoint) const;
    // The texts of every refusal so far, so that a test can assert that there was none.
    [[nodiscard]] std::vector<std::string> refusals() const;
    void clearRequests();

    // The overrides of an endpoint answer one after the other, each as often as its `times` says.
    void addOverride(const std::string& endpoint, Override replacement);
    // Drops every override and lets go of what hangs.
    void clearOverrides();
    // How many requests an override has met.
    [[nodiscard]] int overriddenCount() const;
    // Requests that hang now go on to their answer.
    void releaseHangs();
    // How many requests hang at the moment.
    [[nodiscard]] int hanging() const;

    // What it does from now on.
    void setTurnaround(std::chrono::milliseconds turnaround);
    void setDemandPasswordChange(bool demand);
    void setSendLogs(); // the next request for instructions is answered with "OK SendLogs", once
    void setLogFormat(bool available);
    void setDeliveryOption(const std::string& option);
    void setRates(const Rates& rates);
    void setPassword(const std::string& password);

    // What it holds.
    [[nodiscard]] std::vector<Job> jobs() const;
    [[nodiscard]] std::optional<Job> job(int depoNumber) const;
    [[nodiscard]] std::vector<UploadedLog> logs() const;
    [[nodiscard]] std::string password() const;

    // A job that no client sent: its recordings and transcript are there, and its turnaround starts now.
    int addServerJob(const std::string& transcriptName, int segments = 1, const std::string& machine = "elsewhere");
    // False when there is no such job (or segment), or it was delivered already.
    bool askAgain(int depoNumber, Again again);
    bool voidJob(int depoNumber);
    // The job is as if it had never been; false when there is none.
    bool forgetJob(int depoNumber);
    // Keeps a job's word at this text, whatever it is; an empty one lets it go on as it would.
    bool holdWord(int depoNumber, const std::string& word);
    // More, or other, result files of a job: they replace those made from the transcript once it is "Joined".
    bool setDeliverables(int depoNumber, std::vector<std::pair<std::string, std::string>> nameAndBytes);

private:
    class Implementation;
    std::unique_ptr<Implementation> m_implementation;
};

} // namespace DemoService
