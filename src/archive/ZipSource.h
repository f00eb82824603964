#pragma once

#include "archive/ContainedFolder.h"
#include "archive/ZipHandles.h"

#include <QString>

#include <cstdint>
#include <memory>

// The file of an archive, open for reading. Every handle on it reads the very file that was opened, whatever bears its
// name by then. Handles may be made and used on several threads, each on one at a time, and may outlive this object.
class ZipSource
{
public:
    // Nothing is open where there is no regular file at `path`, or it cannot be read.
    explicit ZipSource(const QString& path);

    [[nodiscard]] bool isOpen() const { return m_file != nullptr; }
    // In bytes; 0 where nothing is open.
    [[nodiscard]] std::uint64_t size() const { return m_size; }
    // Null where nothing is open, or what is open is no archive.
    [[nodiscard]] UnzHandle newHandle() const;

private:
    std::shared_ptr<const FileDescriptor> m_file;
    std::uint64_t m_size = 0;
};
