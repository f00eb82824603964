#pragma once

#include <QString>

// A disk of two megabytes at a folder, which a test fills and empties. Where mounting is not permitted, a full disk is
// a process that may not write files any more, which ffmpeg inherits.
class SmallDisk
{
public:
    explicit SmallDisk(const QString& folder);
    ~SmallDisk();
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    void fill();
    void free();
    // The volume is gone, with what is on it, while files on it may still be open. False where it is no volume.
    bool takeAway();

private:
    [[nodiscard]] QString filler() const;

    const QString m_folder;
    bool m_isMounted = false;
};
