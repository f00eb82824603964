#include "SavedJobs.h"

#include "model/JobStatus.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <fmt/format.h>

#include <algorithm>

SavedJobs::SavedJobs(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return;
    const QJsonValue jobs = QJsonDocument::fromJson(file.readAll()).object().value(QStringLiteral("jobs"));
    m_isWhole = jobs.isArray();
    m_jobs = jobs.toArray();
}

bool SavedJobs::holds(const QString& transcript) const
{
    return std::any_of(m_jobs.begin(), m_jobs.end(), [&](const QJsonValue& job) {
        return job.toObject().value(QStringLiteral("transcriptFile")).toString() == transcript;
    });
}

std::string SavedJobs::furthest() const
{
    int status = -1;
    for (const QJsonValue& job : m_jobs) {
        const QJsonObject object = job.toObject();
        status = std::max(status, object.value(QStringLiteral("status")).toInt());
    }
    return status < 0 ? "nothing saved" : fmt::format("at status {:2}", status);
}
