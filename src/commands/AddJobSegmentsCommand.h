#pragma once

#include "commands/CUrlCommand.h"
#include "model/Job.h"
#include "settings/ServiceHosts.h"

// Announces one media file of a job to the service as a segment. An empty reply is an acceptance. The media file must
// be in the job's list.
class AddJobSegmentsCommand : public CUrlCommand
{
public:
    AddJobSegmentsCommand(const ServiceHosts& hosts, const QString& user, const QString& password,
                          std::shared_ptr<Job> job, std::shared_ptr<MediaFile> mediaFile);
    [[nodiscard]] static std::shared_ptr<AddJobSegmentsCommand>
    addJobSegmentsCommandWithUser(const ServiceHosts& hosts, const QString& user, const QString& password,
                                  const std::shared_ptr<Job>& job, const std::shared_ptr<MediaFile>& mediaFile);

    [[nodiscard]] const std::shared_ptr<Job>& job() const { return m_job; }
    [[nodiscard]] const std::shared_ptr<MediaFile>& mediaFile() const { return m_mediaFile; }

private:
    std::shared_ptr<Job> m_job;
    std::shared_ptr<MediaFile> m_mediaFile;
};
