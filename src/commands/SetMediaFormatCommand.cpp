#include "commands/SetMediaFormatCommand.h"

#include "commands/SegmentPosition.h"
#include "commands/UrlEncoding.h"
#include "foundation/NumberReading.h"
#include "foundation/Text.h"

#include <curl/curl.h>

SetMediaFormatCommand::SetMediaFormatCommand(const ServiceHosts& hosts, const QString& user, const QString& password,
                                             std::shared_ptr<Job> job, std::shared_ptr<MediaFile> mediaFile)
    : CUrlCommand(hosts.secureUrl(QStringLiteral("/saltine/set_media_format.php"))), m_job(std::move(job)),
      m_mediaFile(std::move(mediaFile))
{
    QString body = Text::format("user={}&pass={}", user, password);
    body += Text::format("&depo={}", NumberReading::valueOrZero(m_job->depoNum()));
    body += Text::format("&segment={}", SegmentPosition::ofMediaFile(*m_job, m_mediaFile));
    body += Text::format("&format={}", UrlEncoding::urlEncodeUsingEncoding(m_mediaFile->streamsInfo()));
    setString(body, CURLOPT_POSTFIELDS);
}

std::shared_ptr<SetMediaFormatCommand>
SetMediaFormatCommand::setMediaFormatCommandWithUser(const ServiceHosts& hosts, const QString& user,
                                                     const QString& password, const std::shared_ptr<Job>& job,
                                                     const std::shared_ptr<MediaFile>& mediaFile)
{
    return std::make_shared<SetMediaFormatCommand>(hosts, user, password, job, mediaFile);
}
