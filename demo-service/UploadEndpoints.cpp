#include "demo-service/Endpoints.h"
#include "demo-service/UploadName.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <string_view>

namespace DemoService {
namespace {

constexpr std::array<std::string_view, 5> partNames{"user", "pass", "file_size", "file", "submit"};

// File names travel inside quotes, where a quote and a line's end are written as form data writes them.
std::string sentFileName(std::string name)
{
    constexpr std::array<std::pair<std::string_view, char>, 3> escapes{{{"%22", '"'}, {"%0D", '\r'}, {"%0A", '\n'}}};
    for (const auto& [escape, character] : escapes)
        for (std::size_t place = name.find(escape); place != std::string::npos; place = name.find(escape, place))
            name.replace(place, escape.size(), 1, character);
    return name;
}

std::string partsFault(const std::vector<Part>& parts)
{
    for (std::size_t index = 0; index < partNames.size(); ++index) {
        if (index < parts.size() && parts[index].name == partNames[index])
            continue;
        const bool elsewhere = std::ranges::find(parts, partNames[index], &Part::name) != parts.end();
        return fmt::format("part {} is {}", partNames[index], elsewhere ? "out of order" : "missing");
    }
    if (parts.size() != partNames.size())
        return "something unknown follows part submit";
    return {};
}

} // namespace

std::optional<Answer> Endpoints::uploadFault(const Request& request) const
{
    if (!valueOf(request.headers, "Content-Type").starts_with("multipart/form-data"))
        return refusal("the content type is not multipart/form-data");
    if (const std::string fault = partsFault(request.parts); !fault.empty())
        return refusal(fault);
    const Part& file = request.parts[3];
    if (file.contentType != "application/octet-stream")
        return refusal("the content type of part file is not application/octet-stream");
    if (request.parts[2].content != std::to_string(file.content.size()))
        return refusal(fmt::format("part file_size is not the {} bytes of part file", file.content.size()));
    if (request.parts[4].content != "Submit Query")
        return refusal("part submit is not the constant that it must be");
    return accountFault(request.parts[0].content, request.parts[1].content);
}

Answer Endpoints::upload(const Request& request, TimePoint now)
{
    if (const auto fault = uploadFault(request))
        return *fault;
    return takeUpload(request.parts[3], now);
}

Answer Endpoints::takeUpload(const Part& file, TimePoint now)
{
    const std::optional<UploadName> name = readUploadName(sentFileName(file.fileName));
    if (!name)
        return refusal("the file name names no upload of a job");
    const std::optional<Job> job = m_book.job(name->depoNumber, now, false);
    if (!job || job->orderNumber != name->orderNumber)
        return {.text = "Unknown order and deposition"};
    if (!name->segment) {
        if (name->sourceName != job->transcriptName)
            return refusal("the file name has another transcript than the job");
        m_book.takeTranscript(name->depoNumber, file.content, now);
    } else {
        Segment* segment = m_book.segment(name->depoNumber, *name->segment);
        if (segment == nullptr || !segment->announced)
            return refusal("the file name has a segment that was not announced");
        if (name->sourceName != segment->sourceName)
            return refusal("the file name has another recording than the segment");
        segment->uploadName = sentFileName(file.fileName);
        segment->uploadDurationMs = name->durationMs;
        m_book.takeAudio(name->depoNumber, *name->segment, file.content, now);
    }
    save(name->storedName, file.content);
    return {.text = "UPLOAD COMPLETE"};
}

Answer Endpoints::uploadLog(const Request& request)
{
    if (const auto fault = uploadFault(request))
        return *fault;
    const Part& file = request.parts[3];
    if (file.fileName.empty() || file.fileName.find_first_of("/\\") != std::string::npos)
        return refusal("the log has no file name");
    m_logs.push_back({file.fileName, file.content});
    save(fmt::format("log_{}.txt", m_logs.size()), file.content);
    return {.text = "UPLOAD COMPLETE"};
}

void Endpoints::save(const std::string& name, const std::string& bytes) const
{
    if (m_options.saveUploads.empty())
        return;
    std::error_code error;
    std::filesystem::create_directories(m_options.saveUploads, error);
    const std::filesystem::path place = std::filesystem::path(m_options.saveUploads) / name;
    std::ofstream file(place, std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file && m_options.log)
        m_options.log(fmt::format("cannot write {}", place.string()));
}

} // namespace DemoService
