#pragma once

#include "demo-service/TimedTranscript.h"

#include <string>

// One result file each. The forms are plain stand-ins of the viewers' formats: right in name and in what they tell,
// not in their inner layout.
namespace DemoService::DeliverableTexts {

[[nodiscard]] std::string ascii(const TimedTranscript& transcript);
// `root` names the document's element.
[[nodiscard]] std::string xml(const TimedTranscript& transcript, const std::string& root);
[[nodiscard]] std::string captions(const TimedTranscript& transcript);
[[nodiscard]] std::string tabTable(const TimedTranscript& transcript);
[[nodiscard]] std::string commaTable(const TimedTranscript& transcript);
[[nodiscard]] std::string pagedText(const TimedTranscript& transcript);  // ptf
[[nodiscard]] std::string videoIndex(const TimedTranscript& transcript); // vid
[[nodiscard]] std::string syncTable(const TimedTranscript& transcript);
[[nodiscard]] std::string log(const TimedTranscript& transcript);
[[nodiscard]] std::string json(const TimedTranscript& transcript);
[[nodiscard]] std::string viewerPage(const TimedTranscript& transcript);

} // namespace DemoService::DeliverableTexts
