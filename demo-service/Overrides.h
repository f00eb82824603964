#pragma once

#include "demo-service/Records.h"

#include <deque>
#include <map>
#include <optional>
#include <string>

namespace DemoService {

// The overrides that wait, by endpoint. Not locked: its owner does that.
class Overrides
{
public:
    void add(const std::string& endpoint, Override replacement)
    {
        m_waiting[endpoint].push_back(std::move(replacement));
    }
    void clear() { m_waiting.clear(); }
    // What answers this request, counted against its `times`.
    [[nodiscard]] std::optional<Override> take(const std::string& endpoint);

private:
    std::map<std::string, std::deque<Override>> m_waiting;
};

} // namespace DemoService
