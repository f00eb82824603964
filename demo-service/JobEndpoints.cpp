#include "demo-service/Deliverables.h"
#include "demo-service/Endpoints.h"
#include "demo-service/FormBody.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

namespace DemoService {
namespace {

const std::vector<FieldRule>& registrationRules()
{
    static const std::vector<FieldRule> rules{
        {"user", FieldKind::Raw},
        {"pass", FieldKind::Raw},
        {"enteredBy", FieldKind::Raw, "MacQPT*"},
        {"totalSegmentCount", FieldKind::Number},
        {"deponentLast", FieldKind::QueryEncoded},
        {"deponentFirst", FieldKind::QueryEncoded},
        {"depoDate", FieldKind::Date},
        {"transcriptSourceFormat", FieldKind::Raw},
        {"transcriptDestinationFormat", FieldKind::Word},
        {"shortCaption", FieldKind::QueryEncoded},
        {"originalTranscriptName", FieldKind::QueryEncoded},
        {"autoSyncOnly", FieldKind::Flag},
        {"serviceLevel", FieldKind::Integer},
        {"rush", FieldKind::Flag},
        {"translation", FieldKind::Flag},
        {"groupBy", FieldKind::Raw, "Deposition"},
        {"comp", FieldKind::Word},
    };
    return rules;
}

std::int64_t longIn(const Fields& fields, const std::string& name)
{
    const std::string text = valueOf(fields, name);
    std::int64_t value = -1;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

std::string registrationFault(const Fields& fields)
{
    constexpr int mostSegments = 1000;
    const int segments = numberIn(fields, "totalSegmentCount");
    if (segments < 1 || segments > mostSegments)
        return fmt::format("field totalSegmentCount is not between 1 and {}", mostSegments);
    if (valueOf(fields, "deponentFirst").find('.') != std::string::npos)
        return "field deponentFirst has a dot in it";
    if (std::ranges::find(deliveryFormats(), valueOf(fields, "transcriptDestinationFormat")) == deliveryFormats().end())
        return "field transcriptDestinationFormat names no format";
    const std::string transcript = valueOf(fields, "originalTranscriptName");
    if (transcript.empty() || transcript.find('/') != std::string::npos)
        return "field originalTranscriptName is not a file name";
    const std::size_t dot = transcript.rfind('.');
    const std::string extension = dot == std::string::npos ? "" : transcript.substr(dot + 1);
    if (valueOf(fields, "transcriptSourceFormat") != extension)
        return "field transcriptSourceFormat is not the transcript's extension";
    return {};
}

} // namespace

Answer Endpoints::registerJob(const Request& request)
{
    const FormReading form = readForm(request.body, registrationRules());
    if (!form.fault.empty())
        return refusal(form.fault);
    if (const std::string fault = registrationFault(form.fields); !fault.empty())
        return refusal(fault);
    if (const auto fault = accountFault(valueOf(form.fields, "user"), valueOf(form.fields, "pass")))
        return *fault;
    // The job's record tells of the order, not of the account.
    const Fields details(form.fields.begin() + 2, form.fields.end());
    const int depoNumber = m_book.add(details, numberIn(form.fields, "totalSegmentCount"), m_options.again);
    const std::optional<Job> job = m_book.job(depoNumber, {}, false);
    return {.text = fmt::format("{} {}", job ? job->orderNumber : 0, depoNumber)};
}

Answer Endpoints::addSegment(const Request& request)
{
    const FormReading form = readForm(request.body, {{"user", FieldKind::Raw},
                                                     {"pass", FieldKind::Raw},
                                                     {"depo", FieldKind::Number},
                                                     {"segment", FieldKind::Number},
                                                     {"src_name", FieldKind::Raw},
                                                     {"duration", FieldKind::Number},
                                                     {"prod", FieldKind::Integer},
                                                     {"size", FieldKind::Number},
                                                     {"mod", FieldKind::DateTime}});
    if (!form.fault.empty())
        return refusal(form.fault);
    if (const auto fault = accountFault(valueOf(form.fields, "user"), valueOf(form.fields, "pass")))
        return *fault;
    const int depoNumber = numberIn(form.fields, "depo");
    if (!m_book.has(depoNumber))
        return {.text = "Unknown deposition"};
    Segment* segment = m_book.segment(depoNumber, numberIn(form.fields, "segment"));
    if (segment == nullptr)
        return refusal("field segment is not one of the job's segments");
    const std::string sourceName = valueOf(form.fields, "src_name");
    if (sourceName.empty() || sourceName.find('/') != std::string::npos)
        return refusal("field src_name is not a file name");
    segment->announced = true;
    segment->sourceName = sourceName;
    segment->durationMs = longIn(form.fields, "duration");
    segment->product = valueOf(form.fields, "prod");
    segment->size = longIn(form.fields, "size");
    segment->modified = valueOf(form.fields, "mod");
    return {};
}

Answer Endpoints::setMediaFormat(const Request& request)
{
    const FormReading form = readForm(request.body, {{"user", FieldKind::Raw},
                                                     {"pass", FieldKind::Raw},
                                                     {"depo", FieldKind::Number},
                                                     {"segment", FieldKind::Number},
                                                     {"format", FieldKind::FullyEncoded}});
    if (!form.fault.empty())
        return refusal(form.fault);
    if (const auto fault = accountFault(valueOf(form.fields, "user"), valueOf(form.fields, "pass")))
        return *fault;
    const int depoNumber = numberIn(form.fields, "depo");
    if (!m_book.has(depoNumber))
        return {.text = "Unknown deposition"};
    // It may overtake the announcement of its segment: the client sends both at once.
    Segment* segment = m_book.segment(depoNumber, numberIn(form.fields, "segment"));
    if (segment == nullptr)
        return refusal("field segment is not one of the job's segments");
    segment->format = valueOf(form.fields, "format");
    return {};
}

Answer Endpoints::checkStatus(const Request& request, TimePoint now)
{
    const FormReading form = readForm(request.body, {{"user", FieldKind::Raw},
                                                     {"pass", FieldKind::Raw},
                                                     {"contactID", FieldKind::Word},
                                                     {"comp", FieldKind::Word, {}, true}});
    if (!form.fault.empty())
        return refusal(form.fault);
    if (const auto fault = accountFault(valueOf(form.fields, "user"), valueOf(form.fields, "pass")))
        return *fault;
    if (valueOf(form.fields, "contactID") != m_options.contactID)
        return {.text = "Unknown contact"};
    const bool oneMachine = form.fields.size() == 4;
    return {.text = m_book.statusReply(oneMachine ? std::optional(valueOf(form.fields, "comp")) : std::nullopt, now)};
}

Answer Endpoints::download(const Request& request, TimePoint now)
{
    const std::vector<FieldRule> nameRules{{"user", FieldKind::Raw},
                                           {"pass", FieldKind::Raw},
                                           {"depo", FieldKind::Number},
                                           {"file_num", FieldKind::Number},
                                           {"just_get_name", FieldKind::Raw, "1"}};
    const std::vector<FieldRule> contentsRules{{"user", FieldKind::Raw},
                                               {"pass", FieldKind::Raw},
                                               {"depo", FieldKind::Number},
                                               {"starting_point", FieldKind::Raw, "0"},
                                               {"file_num", FieldKind::Number}};
    const bool nameOnly = request.body.find("&starting_point=") == std::string::npos;
    const FormReading form = readForm(request.body, nameOnly ? nameRules : contentsRules);
    if (!form.fault.empty())
        return refusal(form.fault);
    if (const auto fault = accountFault(valueOf(form.fields, "user"), valueOf(form.fields, "pass")))
        return *fault;
    const int depoNumber = numberIn(form.fields, "depo");
    if (!m_book.has(depoNumber))
        return {.text = "Unknown deposition"};
    const auto* files = m_book.files(depoNumber, now);
    const int number = numberIn(form.fields, "file_num");
    const int count = files == nullptr ? 0 : static_cast<int>(files->size());
    if (number >= 0 && number < count) {
        const auto& [name, bytes] = (*files)[static_cast<std::size_t>(number)];
        return {.text = nameOnly ? name : bytes};
    }
    if (nameOnly)
        return {};
    if (files == nullptr)
        return {.text = "This deposition is not ready"};
    if (number != count)
        return refusal("field file_num is beyond the job's files");
    // The number after the last file says that the client has them all.
    m_book.markDelivered(depoNumber);
    return {};
}

} // namespace DemoService
