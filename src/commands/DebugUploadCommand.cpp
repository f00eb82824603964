#include "commands/DebugUploadCommand.h"

DebugUploadCommand::DebugUploadCommand(const ServiceHosts& hosts, const QString& user, const QString& password,
                                       File file, const QString& destFile)
    : FileUploadCommand(hosts.secureUrl(QStringLiteral("/saltine/qpt_debug_upload.php")), user, password,
                        std::move(file), destFile)
{}

std::shared_ptr<DebugUploadCommand>
DebugUploadCommand::uploadCommandWithUser(const ServiceHosts& hosts, const QString& user, const QString& password,
                                          const QString& file, const QString& destFile)
{
    auto contents = readFile(file);
    if (!contents)
        return nullptr;
    return std::shared_ptr<DebugUploadCommand>(
        new DebugUploadCommand(hosts, user, password, std::move(*contents), destFile));
}

std::shared_ptr<FileLogger> DebugUploadCommand::uploadedObject() const
{
    const std::scoped_lock lock(m_uploadedObjectMutex);
    return m_uploadedObject.lock();
}

void DebugUploadCommand::setUploadedObject(const std::shared_ptr<FileLogger>& object)
{
    const std::scoped_lock lock(m_uploadedObjectMutex);
    m_uploadedObject = object;
}
