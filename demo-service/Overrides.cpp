#include "demo-service/Overrides.h"

#include <algorithm>

namespace DemoService {
namespace {

bool isMeantFor(const Override& replacement, const Request& request)
{
    const auto holds = [&](const std::string& text) { return text.find(replacement.where) != std::string::npos; };
    return replacement.where.empty() || holds(request.body) ||
           std::ranges::any_of(request.parts, [&](const Part& part) { return holds(part.fileName); });
}

bool isUsedUp(const Override& replacement)
{
    return replacement.times && *replacement.times <= 0;
}

std::size_t sizeOfBody(const Request& request)
{
    std::size_t size = request.body.size();
    for (const Part& part : request.parts)
        size += part.content.size();
    return size;
}

} // namespace

Override* Overrides::find(const Request& request)
{
    const auto found = m_waiting.find(request.endpoint);
    if (found == m_waiting.end())
        return nullptr;
    std::erase_if(found->second, isUsedUp);
    const auto first =
        std::ranges::find_if(found->second, [&](const Override& one) { return isMeantFor(one, request); });
    return first == found->second.end() ? nullptr : &*first;
}

std::optional<Override> Overrides::take(const Request& request)
{
    Override* const found = find(request);
    if (found == nullptr)
        return std::nullopt;
    if (found->times)
        --*found->times;
    return *found;
}

bool Overrides::breaksOff(const Request& soFar)
{
    Override* const found = find(soFar);
    if (found == nullptr || !found->resetRequestAt || sizeOfBody(soFar) < *found->resetRequestAt)
        return false;
    if (found->times)
        --*found->times;
    return true;
}

} // namespace DemoService
