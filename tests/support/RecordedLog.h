#pragma once

#include "foundation/FileLogger.h"
#include "foundation/Log.h"

#include <QString>
#include <QTemporaryDir>

#include <memory>

// The log of one test, kept in a file of its own and readable as text. Every level is recorded.
class RecordedLog
{
public:
    RecordedLog();
    ~RecordedLog();
    RecordedLog(const RecordedLog&) = delete;
    RecordedLog& operator=(const RecordedLog&) = delete;

    [[nodiscard]] QString text() const;
    [[nodiscard]] bool contains(const QString& line) const { return text().contains(line); }
    // How often `part` occurs.
    [[nodiscard]] qsizetype count(const QString& part) const { return text().count(part); }
    [[nodiscard]] const std::shared_ptr<FileLogger>& fileLogger() const { return m_fileLogger; }

private:
    QTemporaryDir m_folder;
    std::shared_ptr<FileLogger> m_fileLogger;
};
