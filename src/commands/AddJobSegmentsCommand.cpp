#include "commands/AddJobSegmentsCommand.h"

#include "commands/SegmentPosition.h"
#include "foundation/DateText.h"
#include "foundation/NumberReading.h"
#include "foundation/PathText.h"
#include "foundation/Text.h"

#include <curl/curl.h>

namespace {

// Single precision, cut off rather than rounded, as the service expects it.
int wholeMilliseconds(const std::optional<float>& seconds)
{
    return NumberReading::intValue(QVariant(seconds.value_or(0.0F) * 1000.0F));
}

// "YYYY" is the year of the week, which near New Year is not the calendar's. The service receives exactly that.
QString modificationDate(const QDateTime& date)
{
    return date.isValid() ? DateText::format(date, QStringLiteral("YYYY-MM-dd HH:mm:ss")) : QString();
}

} // namespace

AddJobSegmentsCommand::AddJobSegmentsCommand(const ServiceHosts& hosts, const QString& user, const QString& password,
                                             std::shared_ptr<Job> job, std::shared_ptr<MediaFile> mediaFile)
    : CUrlCommand(hosts.secureUrl(QStringLiteral("/saltine/add_segment.php"))), m_job(std::move(job)),
      m_mediaFile(std::move(mediaFile))
{
    QString body = Text::format("user={}&pass={}", user, password);
    body += Text::format("&depo={}", NumberReading::valueOrZero(m_job->depoNum()));
    body += Text::format("&segment={}", SegmentPosition::ofMediaFile(*m_job, m_mediaFile));
    body += Text::format("&src_name={}", PathText::lastPathComponent(m_mediaFile->sourceFilePath()));
    body += Text::format("&duration={}", wholeMilliseconds(m_mediaFile->sourceDuration()));
    body +=
        Text::format("&prod={}", NumberReading::intValue(m_job->prodIDForProcessingLevel(m_job->processingLevel())));
    body += Text::format("&size={}",
                         static_cast<quint64>(NumberReading::valueOrZero(m_mediaFile->sourceFileSizeInBytes())));
    body += Text::format("&mod={}", modificationDate(m_mediaFile->sourceFileLastModifiedDate()));
    setString(body, CURLOPT_POSTFIELDS);
}

std::shared_ptr<AddJobSegmentsCommand>
AddJobSegmentsCommand::addJobSegmentsCommandWithUser(const ServiceHosts& hosts, const QString& user,
                                                     const QString& password, const std::shared_ptr<Job>& job,
                                                     const std::shared_ptr<MediaFile>& mediaFile)
{
    return std::make_shared<AddJobSegmentsCommand>(hosts, user, password, job, mediaFile);
}
