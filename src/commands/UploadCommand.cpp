#include "commands/UploadCommand.h"

UploadCommand::UploadCommand(const ServiceHosts& hosts, const QString& user, const QString& password,
                             std::shared_ptr<Job> job, File file, const QString& destFile)
    : FileUploadCommand(hosts.secureUrl(QStringLiteral("/saltine/test_custupload2.php")), user, password,
                        std::move(file), destFile),
      m_job(std::move(job))
{}

std::shared_ptr<UploadCommand> UploadCommand::uploadCommandWithUser(const ServiceHosts& hosts, const QString& user,
                                                                    const QString& password,
                                                                    const std::shared_ptr<Job>& job,
                                                                    const QString& file, const QString& destFile)
{
    auto contents = readFile(file);
    if (!contents)
        return nullptr;
    return std::shared_ptr<UploadCommand>(
        new UploadCommand(hosts, user, password, job, std::move(*contents), destFile));
}

std::shared_ptr<MediaObject> UploadCommand::uploadedObject() const
{
    const std::scoped_lock lock(m_uploadedObjectMutex);
    return m_uploadedObject.lock();
}

void UploadCommand::setUploadedObject(const std::shared_ptr<MediaObject>& object)
{
    const std::scoped_lock lock(m_uploadedObjectMutex);
    m_uploadedObject = object;
}
