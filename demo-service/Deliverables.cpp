#include "demo-service/Deliverables.h"

#include "demo-service/DeliverableTexts.h"
#include "demo-service/Zip.h"

#include <algorithm>
#include <functional>
#include <string_view>

namespace DemoService {
namespace {

std::string viewerPackage(const TimedTranscript& transcript)
{
    return zipped({{"index.html", DeliverableTexts::viewerPage(transcript)},
                   {"transcript.json", DeliverableTexts::json(transcript)},
                   {"data/sync.txt", DeliverableTexts::syncTable(transcript)},
                   {"ReadMe.txt", "Open index.html in a browser to read the transcript with its times.\r\n"}});
}

struct ResultFile
{
    std::string_view prefix;
    std::string_view suffix;
    std::vector<std::string_view> formats; // beside "all"
    std::function<std::string(const TimedTranscript&)> contents;
};

const std::vector<ResultFile>& resultFiles()
{
    using namespace DeliverableTexts;
    static const std::vector<ResultFile> files{
        {"", ".txt", {"ASCII", "custom"}, ascii},
        {"C:\\out\\",
         "_rl.xml",
         {"RealLegal XML"},
         [](const auto& transcript) { return xml(transcript, "reallegal"); }},
        {"", ".xml", {"Ostrova XML"}, [](const auto& transcript) { return xml(transcript, "transcript"); }},
        {"", ".sync", {"Ostrova XML"}, syncTable},
        {"", ".cms", {"CMS"}, tabTable},
        {"", ".ptf", {"PTF/VID"}, pagedText},
        {"", ".vid", {"PTF/VID"}, videoIndex},
        {"", ".xmef", {}, [](const auto& transcript) { return xml(transcript, "exchange"); }},
        {"", ".clt", {}, tabTable},
        {"", "_id.mdb", {"MDB"}, tabTable},
        {"", ".mdb", {"MDB"}, commaTable},
        {"", "_ds.xml", {"DepoSmart XML"}, [](const auto& transcript) { return xml(transcript, "deposmart"); }},
        {"", "_caption.xml", {"Flash CS3 Caption XML"}, captions},
        {"", ".log", {"LOG"}, log},
        {"", ".zip", {"custom"}, viewerPackage},
    };
    return files;
}

} // namespace

const std::vector<std::string>& deliveryFormats()
{
    static const std::vector<std::string> formats{"all",   "ASCII", "Ostrova XML",   "RealLegal XML",         "PTF/VID",
                                                  "MDB",   "CMS",   "DepoSmart XML", "Flash CS3 Caption XML", "LOG",
                                                  "custom"};
    return formats;
}

std::vector<std::pair<std::string, std::string>> deliverablesOf(const Job& job, const std::string& format)
{
    const TimedTranscript transcript = timedTranscript(job);
    std::vector<std::pair<std::string, std::string>> files;
    for (const ResultFile& file : resultFiles()) {
        if (format != "all" && std::ranges::find(file.formats, format) == file.formats.end())
            continue;
        // A log is made on demand only.
        if (format == "all" && file.suffix == ".log")
            continue;
        files.emplace_back(std::string(file.prefix) + transcript.baseName + std::string(file.suffix),
                           file.contents(transcript));
    }
    return files;
}

} // namespace DemoService
