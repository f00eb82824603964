#pragma once

#include "foundation/Error.h"

#include <QDateTime>
#include <QString>

#include <cstdint>
#include <optional>

namespace FileAttributes {

struct Attributes
{
    QDateTime modificationDate;
    std::uint64_t size = 0;
    bool isSymbolicLink = false;
};

// The attributes of what is at `path`; of what a link leads to, over any number of links, when they are followed.
// Nothing, with `error` set where one is given, when there is no such item, a link cannot be read, or links go in
// circles. Callable from every thread.
[[nodiscard]] std::optional<Attributes> attributesOfItemAtPath(const QString& path, bool followingSymLinks,
                                                               Error* error = nullptr);

} // namespace FileAttributes
