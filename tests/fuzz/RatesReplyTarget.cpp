// The service's prices and product codes.
#include "FuzzTarget.h"

#include "engine/RatesReply.h"

#include <QRegularExpression>

using FuzzTarget::require;

FUZZ_TARGET(RatesReply)
{
    const QString reply = QString::fromUtf8(input);
    const auto job = Job::job();
    job->setTranscriptFile(QStringLiteral("a.txt"));
    const auto before = job->encode();
    const bool isRead = RatesReply::apply(reply, *job);
    const auto after = job->encode();
    require(before && after && (isRead || *before == *after), "a reply that is not read sets nothing");

    static const QRegularExpression price(QStringLiteral("^(-?[0-9]+\\.[0-9][0-9])?$"));
    job->setTotalMediaDuration(5400.0F);
    for (const bool rush : {false, true}) {
        job->setRush(rush);
        for (int level = ProcessingLevelAutoSync; level <= ProcessingLevelUnattended; ++level) {
            job->setProcessingLevel(level);
            require(price.match(job->jobTotal()).hasMatch(), "a price is a number with two decimals, or none");
            (void)job->prodIDForProcessingLevel(level);
        }
    }
    (void)RatesReply::isUnattendedOffered(*job);
    (void)RatesReply::isLogFormatAvailable(reply);

    job->setRush(false);
    RatesReply::apply(reply, *job);
    require(job->encode() == after, "reading twice gives the same");
    const auto again = Job::decode(*after);
    require(again && again->encode() == after, "what is saved is read as it was");
}
