#include "engine/RatesReply.h"

#include "foundation/NumberReading.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace {

QVariant innerValue(const QJsonObject& reply, const char* key, const char* innerKey)
{
    const QJsonValue value = reply.value(QLatin1String(key)).toObject().value(QLatin1String(innerKey));
    return value.isDouble() || value.isString() ? value.toVariant() : QVariant();
}

} // namespace

bool RatesReply::apply(const QString& reply, Job& job)
{
    const QJsonDocument document = QJsonDocument::fromJson(reply.toUtf8());
    if (!document.isObject())
        return false;
    const QJsonObject rates = document.object();
    job.setMan24Rate(innerValue(rates, "Man24", "Rate"));
    job.setMan24ProdID(innerValue(rates, "Man24", "ProdCode"));
    job.setMan48Rate(innerValue(rates, "Man48", "Rate"));
    job.setMan48ProdID(innerValue(rates, "Man48", "ProdCode"));
    job.setMan72Rate(innerValue(rates, "Man72", "Rate"));
    job.setMan72ProdID(innerValue(rates, "Man72", "ProdCode"));
    job.setUnattendedRate(innerValue(rates, "Unattended", "Rate"));
    job.setUnattendedProdID(innerValue(rates, "Unattended", "ProdCode"));
    job.setAutoSyncRate(innerValue(rates, "AutoSync", "Rate"));
    job.setAutoSyncProdID(innerValue(rates, "AutoSync", "ProdCode"));
    job.setRushRateMultiplier(innerValue(rates, "RUSH", "Multiplier"));
    return true;
}

bool RatesReply::isLogFormatAvailable(const QString& reply)
{
    return reply.contains(QStringLiteral("yes"));
}

bool RatesReply::isUnattendedOffered(const Job& job)
{
    return NumberReading::floatValue(job.unattendedRate()) > 0;
}
