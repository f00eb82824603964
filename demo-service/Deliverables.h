#pragma once

#include "demo-service/Records.h"

#include <string>
#include <utility>
#include <vector>

namespace DemoService {

// The delivery formats as the registration names them.
[[nodiscard]] const std::vector<std::string>& deliveryFormats();

// The result files of a job in the order in which they are listed. One name of the full set is a path written with
// backslashes, as the real service lists them too.
[[nodiscard]] std::vector<std::pair<std::string, std::string>> deliverablesOf(const Job& job,
                                                                              const std::string& format);

} // namespace DemoService
