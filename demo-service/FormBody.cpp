#include "demo-service/FormBody.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

namespace DemoService {
namespace {

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

bool isAlphanumeric(char character)
{
    return isDigit(character) || (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

bool isNumber(std::string_view value)
{
    return !value.empty() && value.size() <= 20 && std::ranges::all_of(value, isDigit);
}

bool isInteger(std::string_view value)
{
    if (value.starts_with('-'))
        value.remove_prefix(1);
    return isNumber(value);
}

// Digits where the pattern has a 0, the pattern's own character elsewhere.
bool hasShape(std::string_view value, std::string_view pattern)
{
    return value.size() == pattern.size() && std::ranges::equal(value, pattern, [](char character, char expected) {
               return expected == '0' ? isDigit(character) : character == expected;
           });
}

bool isEncoded(std::string_view value, std::string_view leftAsTheyAre)
{
    return std::ranges::all_of(value,
                               [&](char character) {
                                   return isAlphanumeric(character) || character == '%' ||
                                          leftAsTheyAre.find(character) != std::string_view::npos;
                               }) &&
           percentDecoded(value).has_value();
}

std::string_view faultOf(const FieldRule& rule, std::string_view value)
{
    if (rule.constant.ends_with('*')) {
        if (!value.starts_with(rule.constant.substr(0, rule.constant.size() - 1)))
            return "does not begin as it must";
    } else if (!rule.constant.empty() && value != rule.constant) {
        return "is not the constant that it must be";
    }
    switch (rule.kind) {
    case FieldKind::Raw:
        return {};
    case FieldKind::Number:
        return isNumber(value) ? "" : "is not a number";
    case FieldKind::Integer:
        return isInteger(value) ? "" : "is not an integer";
    case FieldKind::Flag:
        return value == "0" || value == "1" ? "" : "is neither 0 nor 1";
    case FieldKind::QueryEncoded:
        return isEncoded(value, "-._~!$&'()*+,;=:@/?") ? "" : "is not percent-encoded";
    case FieldKind::FullyEncoded:
        return isEncoded(value, "-._~") ? "" : "is not fully percent-encoded";
    case FieldKind::Date:
        return hasShape(value, "0000-00-00") ? "" : "is not a date";
    case FieldKind::DateTime:
        return hasShape(value, "0000-00-00 00:00:00") ? "" : "is not a date with its time";
    case FieldKind::Word:
        return value.find_first_of("&=") == std::string_view::npos ? "" : "is followed by something else";
    }
    return {};
}

std::string absence(std::string_view body, std::string_view name)
{
    const bool elsewhere =
        body.starts_with(fmt::format("{}=", name)) || body.find(fmt::format("&{}=", name)) != std::string_view::npos;
    return fmt::format("field {} is {}", name, elsewhere ? "out of order" : "missing");
}

struct Walk
{
    std::vector<std::string_view> values;
    std::string fault;
};

// The first two fields are found from the front, the others from the back: a password may then hold "&depo=" without
// doing harm, because the fields after it are found first.
Walk walk(std::string_view body, const std::vector<FieldRule>& rules)
{
    Walk result;
    result.values.resize(rules.size());
    const std::string first = fmt::format("{}=", rules.front().name);
    if (!body.starts_with(first))
        return {{}, absence(body, rules.front().name)};
    std::size_t front = first.size();
    std::size_t done = 0;
    if (rules.size() > 1) {
        const std::string second = fmt::format("&{}=", rules[1].name);
        const std::size_t place = body.find(second, front);
        if (place == std::string_view::npos)
            return {{}, absence(body, rules[1].name)};
        result.values[0] = body.substr(front, place - front);
        front = place + second.size();
        done = 1;
    }
    std::size_t end = body.size();
    for (std::size_t index = rules.size() - 1; index > done; --index) {
        const std::string opening = fmt::format("&{}=", rules[index].name);
        const std::size_t place = body.substr(0, end).rfind(opening);
        if (place == std::string_view::npos || place < front)
            return {{}, absence(body, rules[index].name)};
        result.values[index] = body.substr(place + opening.size(), end - place - opening.size());
        end = place;
    }
    result.values[done] = body.substr(front, end - front);
    return result;
}

} // namespace

std::optional<std::string> percentDecoded(std::string_view text)
{
    std::string decoded;
    for (std::size_t index = 0; index < text.size(); ++index) {
        if (text[index] != '%') {
            decoded += text[index];
            continue;
        }
        const std::string_view digits = text.substr(index + 1, 2);
        unsigned value = 0;
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
        if (digits.size() != 2 || error != std::errc() || end != digits.data() + 2)
            return std::nullopt;
        decoded += static_cast<char>(value);
        index += 2;
    }
    return decoded;
}

FormReading readForm(const std::string& body, const std::vector<FieldRule>& rules)
{
    std::vector<FieldRule> required = rules;
    std::optional<FieldRule> last;
    if (required.back().optional) {
        last = required.back();
        required.pop_back();
    }
    Walk found = walk(body, required);
    if (!found.fault.empty())
        return {{}, found.fault};
    if (last) {
        const std::string opening = fmt::format("&{}=", last->name);
        const std::string_view value = found.values.back();
        if (const std::size_t place = value.find(opening); place != std::string_view::npos) {
            found.values.back() = value.substr(0, place);
            found.values.push_back(value.substr(place + opening.size()));
            required.push_back(*last);
        }
    }
    FormReading reading;
    for (std::size_t index = 0; index < required.size(); ++index) {
        const FieldRule& rule = required[index];
        const std::string_view value = found.values[index];
        if (const std::string_view fault = faultOf(rule, value); !fault.empty())
            return {{}, fmt::format("field {} {}", rule.name, fault)};
        const bool encoded = rule.kind == FieldKind::QueryEncoded || rule.kind == FieldKind::FullyEncoded;
        reading.fields.emplace_back(rule.name, encoded ? *percentDecoded(value) : std::string(value));
    }
    return reading;
}

} // namespace DemoService
