#pragma once

#include <string>
#include <utility>
#include <vector>

namespace DemoService {

// A zip archive of the given names and bytes. Throws std::runtime_error when it cannot be made.
[[nodiscard]] std::string zipped(const std::vector<std::pair<std::string, std::string>>& files);

} // namespace DemoService
