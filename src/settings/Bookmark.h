#pragma once

#include "foundation/Error.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <variant>

// A file or folder remembered across launches: its path, and which file it was when it was remembered (device and
// inode). Callable from every thread.
namespace Bookmark {

struct Resolution
{
    // Known as soon as the bookmark is readable, even where `error` says that nothing is there any more.
    QString path = {};
    // Another file or folder is at the path now.
    bool isStale = false;
    std::optional<Error> error = std::nullopt;
};

[[nodiscard]] std::variant<QByteArray, Error> create(const QString& path);
[[nodiscard]] Resolution resolve(const QByteArray& bookmark);

} // namespace Bookmark
