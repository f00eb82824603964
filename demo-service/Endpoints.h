#pragma once

#include "demo-service/JobBook.h"
#include "demo-service/Records.h"
#include "demo-service/Service.h"

#include <optional>
#include <string>
#include <vector>

namespace DemoService {

struct Answer
{
    int status = 200;
    std::string text;
    bool refused = false; // the request broke the rules of the wire
};

// What the service answers, without its transport: a request in, an answer out, the account, jobs and logs kept here.
// Not locked: its owner does that.
class Endpoints
{
public:
    using TimePoint = JobBook::TimePoint;

    explicit Endpoints(Options& options);

    [[nodiscard]] Answer answer(const Request& request, TimePoint now);

    [[nodiscard]] JobBook& book() { return m_book; }
    [[nodiscard]] const std::vector<UploadedLog>& logs() const { return m_logs; }

private:
    // Account and questions.
    Answer login(const Request& request);
    Answer changePassword(const Request& request);
    Answer instructions(const Request& request);
    Answer logAvailability(const Request& request);
    Answer ratesTable(const Request& request);
    Answer rates(const Request& request);
    Answer miscellaneous(const Request& request, TimePoint now);
    // Jobs (JobEndpoints.cpp).
    Answer registerJob(const Request& request);
    Answer addSegment(const Request& request);
    Answer setMediaFormat(const Request& request);
    Answer checkStatus(const Request& request, TimePoint now);
    Answer download(const Request& request, TimePoint now);
    // Uploads (UploadEndpoints.cpp).
    Answer upload(const Request& request, TimePoint now);
    Answer uploadLog(const Request& request);
    [[nodiscard]] std::optional<Answer> uploadFault(const Request& request) const;
    Answer takeUpload(const Part& file, TimePoint now);

    // What is wrong with a user name and password, if anything.
    [[nodiscard]] std::optional<Answer> accountFault(const std::string& user, const std::string& password) const;
    [[nodiscard]] Answer page(const Request& request) const;
    [[nodiscard]] Answer hostedFile(const Request& request) const;
    // Writes what was uploaded into the folder of the options.
    void save(const std::string& name, const std::string& bytes) const;

    Options& m_options; // belongs to the owner, who changes it under its lock
    JobBook m_book;
    std::vector<UploadedLog> m_logs;
};

// Shared by the files of the endpoints.
[[nodiscard]] Answer refusal(const std::string& fault);
[[nodiscard]] int numberIn(const Fields& fields, const std::string& name);

} // namespace DemoService
