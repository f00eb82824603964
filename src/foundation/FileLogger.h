#pragma once

#include <QString>
#include <QStringList>

#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>

// The log file of one run of a program. Each run starts a fresh file in the folder; at 256000 bytes the file starts
// over. Files of ended runs are deleted when a run starts; the file of a program that still runs is left to it.
// Files are readable by the user alone. Callable from every thread.
class FileLogger
{
public:
    static constexpr std::int64_t defaultMaximumFileSize = 256000;

    explicit FileLogger(QString folder, std::int64_t maximumFileSize = defaultMaximumFileSize);
    ~FileLogger();
    FileLogger(const FileLogger&) = delete;
    FileLogger& operator=(const FileLogger&) = delete;

    // False when the folder or file could not be made; lines are then dropped.
    [[nodiscard]] bool isOpen() const;
    // Newest first; the first is the file that this run writes.
    [[nodiscard]] QStringList sortedLogFilePaths() const;

    // `line` ends in a line feed. Buffered until flush().
    void append(std::string_view line);
    void flush();

private:
    void roll();
    void deleteFilesOfEndedRuns();
    void writeOut();

    const QString m_folder;
    const std::int64_t m_maximumFileSize;
    mutable std::mutex m_mutex; // guards all below
    QString m_path;
    int m_descriptor = -1;
    std::int64_t m_size = 0;
    std::string m_buffer;
};
