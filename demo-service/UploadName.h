#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace DemoService {

// The destination name of an upload, the only thing that relates it to its job:
// "order_depo.ext[base.ext,-1]" for a transcript, "order_depo_n.mp3[base.ext,milliseconds]" for a segment's audio.
struct UploadName
{
    int orderNumber = 0;
    int depoNumber = 0;
    std::optional<int> segment; // none for the transcript
    std::string storedName;     // what stands before the bracket
    std::string sourceName;     // "base.ext"
    std::int64_t durationMs = -1;
};

// Nothing when the text is not of either form.
[[nodiscard]] std::optional<UploadName> readUploadName(const std::string& text);

} // namespace DemoService
