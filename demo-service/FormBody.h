#pragma once

#include "demo-service/Records.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Reading of the service's forms. Their values are partly raw: a user name, a password or a file name may hold "&" and
// "=", so a body is never split at "&"; it is walked by the names that it must hold, in their order.
namespace DemoService {

enum class FieldKind {
    Raw,          // any text
    Number,       // decimal digits
    Integer,      // the same, with a sign allowed
    Flag,         // "0" or "1"
    QueryEncoded, // percent-encoded, with the characters of a URL's query left as they are; decoded when read
    FullyEncoded, // percent-encoded, reserved characters too; decoded when read
    Date,         // yyyy-MM-dd
    DateTime,     // yyyy-MM-dd HH:mm:ss
    Word,         // text without "&" and "="
};

struct FieldRule
{
    std::string_view name;
    FieldKind kind = FieldKind::Raw;
    // The only value allowed, or what the value must begin with when it ends in "*".
    std::string_view constant = {};
    // Only the last field of a form may be optional.
    bool optional = false;
};

struct FormReading
{
    Fields fields;
    std::string fault; // empty when the body is as it must be; it never quotes a value
};

[[nodiscard]] FormReading readForm(const std::string& body, const std::vector<FieldRule>& rules);

// Nothing when a "%" is not followed by two hexadecimal digits.
[[nodiscard]] std::optional<std::string> percentDecoded(std::string_view text);

} // namespace DemoService
