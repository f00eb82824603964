#include "engine/SavedState.h"

#include "foundation/AtomicFile.h"
#include "foundation/Log.h"
#include "foundation/PathText.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>

namespace {

constexpr int stateFileVersion = 1;

// A user name is the user's choice and may hold what a file name cannot.
QString asFileNamePart(const QString& username)
{
    QString part = username;
    return part.replace(u'%', QStringLiteral("%25")).replace(u'/', QStringLiteral("%2F")).remove(QChar(u'\0'));
}

} // namespace

QString SavedState::filePath(const QString& folder, const QString& username)
{
    return PathText::appendingPathComponent(folder, QStringLiteral("State_") + asFileNamePart(username) +
                                                        QStringLiteral(".archive"));
}

std::optional<Error> SavedState::write(const QString& path, const std::vector<std::shared_ptr<Job>>& jobs)
{
    QJsonArray archives;
    for (const auto& job : jobs) {
        if (job->serverJob() || job->status() >= JobStatusDownloaded)
            continue;
        if (const auto archive = job->encode())
            archives.append(*archive);
    }
    const QJsonObject state{{QStringLiteral("version"), stateFileVersion}, {QStringLiteral("jobs"), archives}};
    QDir().mkpath(QFileInfo(path).path());
    return AtomicFile::write(path, QJsonDocument(state).toJson());
}

std::vector<std::shared_ptr<Job>> SavedState::read(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (file.exists())
            Log::error("Unable to read the saved jobs: {}: {}", path, file.errorString());
        return {};
    }
    const QJsonValue archives = QJsonDocument::fromJson(file.readAll()).object().value(QStringLiteral("jobs"));
    if (!archives.isArray())
        Log::error("Unable to read the saved jobs: {} holds none", path);
    std::vector<std::shared_ptr<Job>> jobs;
    for (const QJsonValue& archive : archives.toArray()) {
        if (auto job = Job::decode(archive.toObject()))
            jobs.push_back(std::move(job));
        else
            Log::error("Unable to read a saved job of {}", path);
    }
    return jobs;
}
