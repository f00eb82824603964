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
    [[nodiscard]] std::optional<Override> take(const Request& request);
    // Whether this request, of which more may be to come, ends here; counted too when it does.
    [[nodiscard]] bool breaksOff(const Request& soFar);

private:
    // The first that is meant for the request and not used up; null when there is none.
    [[nodiscard]] Override* find(const Request& request);

    std::map<std::string, std::deque<Override>> m_waiting;
};

} // namespace DemoService
