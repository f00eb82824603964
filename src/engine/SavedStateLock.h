#pragma once

#include <QString>

// Keeps a user's saved jobs to one program at a time: two that read and write them side by side would send each other's
// jobs twice and lose each other's at the end. The kernel lets go of the lock however its program ends.
class SavedStateLock
{
public:
    SavedStateLock() = default;
    ~SavedStateLock();
    SavedStateLock(const SavedStateLock&) = delete;
    SavedStateLock& operator=(const SavedStateLock&) = delete;

    // Takes the lock that belongs to a state file, and writes down who holds it. False when another program has it.
    [[nodiscard]] bool take(const QString& stateFilePath);
    // "quillpost-cli (process 4711)", as the holder wrote it.
    [[nodiscard]] static QString holder(const QString& stateFilePath);

private:
    int m_descriptor = -1;
};
