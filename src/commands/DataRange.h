#pragma once

#include <QByteArray>

#include <cstdint>
#include <limits>

// Searching data for a byte pattern.
namespace DataRange {

struct Range
{
    std::int64_t location = 0;
    std::int64_t length = 0;
};

inline constexpr std::int64_t notFound = std::numeric_limits<std::int64_t>::max();

// The first place of `pattern` in `data`; its location is notFound when there is none. The length is the pattern's.
[[nodiscard]] inline Range dataRange(const QByteArray& data, const QByteArray& pattern)
{
    const qsizetype at = data.indexOf(pattern);
    return {at < 0 ? notFound : std::int64_t{at}, pattern.size()};
}

} // namespace DataRange
