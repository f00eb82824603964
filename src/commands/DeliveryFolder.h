#pragma once

#include "archive/ContainedFolder.h"

#include <QString>

#include <utility>

// The folder that a delivery goes into, from its first file on: should the folder be moved or its volume be taken away,
// a later file makes a new one at the same path, which lacks the files before. While this lives, its volume is in use.
// Used on one thread.
class DeliveryFolder
{
public:
    explicit DeliveryFolder(QString path) : m_path(std::move(path)) {}

    // Once there is a file in it. Does nothing the next times.
    void keepInSight();
    // False when it is no longer the folder that is at its path.
    [[nodiscard]] bool isInPlace() const;

private:
    const QString m_path;
    FileDescriptor m_folder;
};
