#pragma once

#include <QString>

#include <chrono>

// What this process holds of the system.
struct Figures
{
    int threads = 0;
    int descriptors = 0;
    long residentKiB = 0;
    long ownKiB = 0; // of it, without the pages of programs and libraries

    [[nodiscard]] static Figures now();
    // Turns the main loop for `time` and takes the least of what it sees: the polls' own threads and sockets come and
    // go meanwhile. The allocator gives free memory back to the system first, so that what counts is what is in use.
    [[nodiscard]] static Figures settled(std::chrono::milliseconds time);

    [[nodiscard]] QString text() const;
};
