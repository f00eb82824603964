#pragma once

#include <QString>

// Paths as texts, read the way the platform reads them. Nothing here touches the disk but `~`.
namespace PathText {

// "/a/b.mov" gives "b.mov", "/a/b/" gives "b", "/" gives "/", "" gives "".
[[nodiscard]] QString lastPathComponent(const QString& path);
// What follows the last point of the last component, without the point: "mov". "" where there is no point, where the
// name begins with its only point (".profile"), and where nothing follows it.
[[nodiscard]] QString pathExtension(const QString& path);
// `path` and `component` with one slash between them; an empty component leaves the path as it is.
[[nodiscard]] QString appendingPathComponent(const QString& path, const QString& component);
// Resolves ".", ".." and doubled slashes, expands a leading "~". Links are not followed.
[[nodiscard]] QString standardizedPath(const QString& path);

} // namespace PathText
