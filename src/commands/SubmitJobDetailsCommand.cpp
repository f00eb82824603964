#include "commands/SubmitJobDetailsCommand.h"

#include "commands/MachineUID.h"
#include "commands/UrlEncoding.h"
#include "foundation/Assertion.h"
#include "foundation/DateText.h"
#include "foundation/NumberReading.h"
#include "foundation/PathText.h"
#include "foundation/Text.h"
#include "foundation/Version.h"
#include "model/DeliveryFormat.h"
#include "model/ProcessingLevel.h"

#include <curl/curl.h>

namespace {

QString orderFields(const Job& job)
{
    const int productID = NumberReading::intValue(job.prodIDForProcessingLevel(job.processingLevel()));
    return Text::format("&autoSyncOnly={}&serviceLevel={}&rush={}&translation={}",
                        job.processingLevel() == ProcessingLevelAutoSync ? 1 : 0, productID, job.rush() ? 1 : 0,
                        job.viaInterpreter() ? 1 : 0);
}

QString depositionFields(const Job& job)
{
    QString firstName = job.deponentFirstName();
    firstName.remove(u'.');
    const QDateTime date = job.depositionDate();
    return Text::format("&deponentLast={}&deponentFirst={}&depoDate={}",
                        UrlEncoding::urlQueryString(job.deponentLastName()), UrlEncoding::urlQueryString(firstName),
                        date.isValid() ? DateText::format(date, QStringLiteral("yyyy-MM-dd")) : QString());
}

} // namespace

SubmitJobDetailsCommand::SubmitJobDetailsCommand(const ServiceHosts& hosts, const QString& user,
                                                 const QString& password, std::shared_ptr<Job> job)
    : CUrlCommand(hosts.secureUrl(QStringLiteral("/saltine/jobdetails.php"))), m_job(std::move(job))
{
    const QString transcript = m_job->transcriptFile();
    QString body = Text::format("user={}&pass={}", user, password);
    body += Text::format("&enteredBy=MacQPT{}", applicationVersion());
    body += Text::format("&totalSegmentCount={}", m_job->mediaFiles().size());
    body += depositionFields(*m_job);
    body += Text::format("&transcriptSourceFormat={}", PathText::pathExtension(transcript));
    body += Text::format("&transcriptDestinationFormat={}", deliveryFormatString(m_job->deliveryFormat()));
    body += Text::format("&shortCaption={}", UrlEncoding::urlQueryString(m_job->shortCaption()));
    body += Text::format("&originalTranscriptName={}",
                         UrlEncoding::urlQueryString(PathText::lastPathComponent(transcript)));
    body += orderFields(*m_job);
    body += QStringLiteral("&groupBy=Deposition");
    body += Text::format("&comp={}", MachineUID::machineUniqueID());
    setString(body, CURLOPT_POSTFIELDS);
}

std::shared_ptr<SubmitJobDetailsCommand>
SubmitJobDetailsCommand::submitJobDetailsCommandWithUser(const ServiceHosts& hosts, const QString& user,
                                                         const QString& password, const std::shared_ptr<Job>& job)
{
    return std::make_shared<SubmitJobDetailsCommand>(hosts, user, password, job);
}

QString SubmitJobDetailsCommand::deliveryFormatString(int deliveryFormat)
{
    const QString name = deliveryFormatName(deliveryFormat);
    if (name.isEmpty())
        Assertion::failed("unknown delivery format");
    return name;
}
