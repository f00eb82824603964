#include "demo-service/Overrides.h"

namespace DemoService {

std::optional<Override> Overrides::take(const std::string& endpoint)
{
    const auto found = m_waiting.find(endpoint);
    if (found == m_waiting.end())
        return std::nullopt;
    std::deque<Override>& waiting = found->second;
    while (!waiting.empty()) {
        Override& first = waiting.front();
        if (!first.times)
            return first;
        if (*first.times > 0) {
            --*first.times;
            return first;
        }
        waiting.pop_front();
    }
    return std::nullopt;
}

} // namespace DemoService
