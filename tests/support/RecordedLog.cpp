#include "support/RecordedLog.h"

#include <QFile>

RecordedLog::RecordedLog() : m_fileLogger(std::make_shared<FileLogger>(m_folder.path(), 64 * 1024 * 1024))
{
    Log::configure({.fileLogger = m_fileLogger, .lowest = Log::Level::Verbose});
}

RecordedLog::~RecordedLog()
{
    Log::shutDown();
}

QString RecordedLog::text() const
{
    Log::flush();
    QFile file(m_fileLogger->sortedLogFilePaths().value(0));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}
