#pragma once

#include <QString>

#include <optional>

// Where a delivered file lies: delivery folder / job folder / type subfolder / name. All of it comes from the service,
// and none of it can leave the delivery folder.
namespace DeliveryPath {

// The name of a listed file, which may be a path with backslashes; its last component. Cut to what a file system
// takes, keeping the extension, and marked so that two long names stay two. "" when nothing usable is left.
[[nodiscard]] QString fileName(const QString& listedName);

// Where what came of a file that did not come whole is put aside, so that no delivered name stands on a part of a file.
[[nodiscard]] QString incomplete(const QString& path);

// By extension, without regard to letter case; the suffixes "_id.mdb" and "_rl.xml" count as written. Nothing for an
// extension without a folder of its own: such a file lies in the job folder.
[[nodiscard]] std::optional<QString> fileTypeSubFolder(const QString& fileName);

// The job folder as the service names it. A name that would lead out of the delivery folder is made one component of
// it instead, as is a path of more than 1024 bytes. "" is the delivery folder itself.
[[nodiscard]] QString jobFolder(const QString& serviceName);

} // namespace DeliveryPath
