#pragma once

#include "commands/FileUploadCommand.h"
#include "foundation/FileLogger.h"

// Sends the program's log file when the service asks for it.
class DebugUploadCommand : public FileUploadCommand
{
public:
    // Null when the file cannot be read, after an error line.
    [[nodiscard]] static std::shared_ptr<DebugUploadCommand>
    uploadCommandWithUser(const ServiceHosts& hosts, const QString& user, const QString& password, const QString& file,
                          const QString& destFile);

    // The logger whose file is sent. Not kept alive by the command.
    [[nodiscard]] std::shared_ptr<FileLogger> uploadedObject() const;
    void setUploadedObject(const std::shared_ptr<FileLogger>& object);

private:
    DebugUploadCommand(const ServiceHosts& hosts, const QString& user, const QString& password, File file,
                       const QString& destFile);

    mutable std::mutex m_uploadedObjectMutex;
    std::weak_ptr<FileLogger> m_uploadedObject; // guarded by m_uploadedObjectMutex
};
