#pragma once

#include "commands/FileUploadCommand.h"
#include "model/Job.h"

// Sends one converted media segment, or the transcript, of a job. The service relates the upload to its job only
// through the destination file name.
class UploadCommand : public FileUploadCommand
{
public:
    // Null when the file cannot be read, after an error line.
    [[nodiscard]] static std::shared_ptr<UploadCommand>
    uploadCommandWithUser(const ServiceHosts& hosts, const QString& user, const QString& password,
                          const std::shared_ptr<Job>& job, const QString& file, const QString& destFile);

    [[nodiscard]] const std::shared_ptr<Job>& job() const { return m_job; }
    // The MediaFile or Job that this upload belongs to, set by the sender so that the reply can be routed. Not kept
    // alive by the command.
    [[nodiscard]] std::shared_ptr<MediaObject> uploadedObject() const;
    void setUploadedObject(const std::shared_ptr<MediaObject>& object);

private:
    UploadCommand(const ServiceHosts& hosts, const QString& user, const QString& password, std::shared_ptr<Job> job,
                  File file, const QString& destFile);

    std::shared_ptr<Job> m_job;
    mutable std::mutex m_uploadedObjectMutex;
    std::weak_ptr<MediaObject> m_uploadedObject; // guarded by m_uploadedObjectMutex
};
