#pragma once

#include "commands/CUrlCommand.h"
#include "model/Job.h"
#include "settings/ServiceHosts.h"

// Tells the service the stream layout of one media file of a job. Nothing waits for the reply. The media file must
// be in the list of the job.
class SetMediaFormatCommand : public CUrlCommand
{
public:
    SetMediaFormatCommand(const ServiceHosts& hosts, const QString& user, const QString& password,
                          std::shared_ptr<Job> job, std::shared_ptr<MediaFile> mediaFile);
    [[nodiscard]] static std::shared_ptr<SetMediaFormatCommand>
    setMediaFormatCommandWithUser(const ServiceHosts& hosts, const QString& user, const QString& password,
                                  const std::shared_ptr<Job>& job, const std::shared_ptr<MediaFile>& mediaFile);

    [[nodiscard]] const std::shared_ptr<Job>& job() const { return m_job; }
    [[nodiscard]] const std::shared_ptr<MediaFile>& mediaFile() const { return m_mediaFile; }

private:
    std::shared_ptr<Job> m_job;
    std::shared_ptr<MediaFile> m_mediaFile;
};
