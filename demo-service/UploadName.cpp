#include "demo-service/UploadName.h"

#include <charconv>
#include <string_view>

namespace DemoService {
namespace {

// Takes a decimal number off the front.
template <typename Number>
std::optional<Number> takeNumber(std::string_view& text)
{
    Number value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || value < 0 || text.starts_with('-'))
        return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return value;
}

bool take(std::string_view& text, char character)
{
    if (!text.starts_with(character))
        return false;
    text.remove_prefix(1);
    return true;
}

// What stands in the brackets: the source's name up to the last comma, then the duration.
bool readSource(std::string_view text, UploadName& name)
{
    const std::size_t comma = text.rfind(',');
    if (comma == std::string_view::npos)
        return false;
    name.sourceName = text.substr(0, comma);
    std::string_view duration = text.substr(comma + 1);
    if (!name.segment)
        return duration == "-1";
    const auto milliseconds = takeNumber<std::int64_t>(duration);
    // The client counts whole seconds.
    if (!milliseconds || !duration.empty() || *milliseconds % 1000 != 0)
        return false;
    name.durationMs = *milliseconds;
    return true;
}

} // namespace

std::optional<UploadName> readUploadName(const std::string& text)
{
    std::string_view rest = text;
    UploadName name;
    const auto order = takeNumber<int>(rest);
    if (!order || !take(rest, '_'))
        return std::nullopt;
    const auto depo = takeNumber<int>(rest);
    if (!depo)
        return std::nullopt;
    name.orderNumber = *order;
    name.depoNumber = *depo;
    if (take(rest, '_')) {
        name.segment = takeNumber<int>(rest);
        if (!name.segment)
            return std::nullopt;
    }
    const std::size_t bracket = rest.find('[');
    if (!take(rest, '.') || bracket == std::string_view::npos || !rest.ends_with(']'))
        return std::nullopt;
    const std::string_view extension = rest.substr(0, bracket - 1);
    name.storedName = text.substr(0, text.find('['));
    if (!readSource(rest.substr(bracket, rest.size() - bracket - 1), name))
        return std::nullopt;
    const std::size_t dot = name.sourceName.rfind('.');
    if (dot == std::string::npos || extension.find('/') != std::string_view::npos)
        return std::nullopt;
    if (name.segment ? extension != "mp3" : extension != std::string_view(name.sourceName).substr(dot + 1))
        return std::nullopt;
    return name;
}

} // namespace DemoService
