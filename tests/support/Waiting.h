#pragma once

#include <chrono>
#include <functional>

namespace Waiting {

// Turns the main loop until `condition` holds; false when it did not in time. The limit only bounds a failing test.
[[nodiscard]] bool until(const std::function<bool()>& condition,
                         std::chrono::milliseconds limit = std::chrono::seconds(30));

// Turns the main loop for so long: for tests that something does not happen.
void turnMainLoopFor(std::chrono::milliseconds time);

} // namespace Waiting
