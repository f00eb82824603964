#include "demo-service/Records.h"

namespace DemoService {

std::string valueOf(const Fields& fields, const std::string& name)
{
    for (const auto& [fieldName, value] : fields)
        if (fieldName == name)
            return value;
    return {};
}

} // namespace DemoService
