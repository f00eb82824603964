#include "engine/SavedState.h"

#include "foundation/AtomicFile.h"
#include "foundation/Log.h"
#include "foundation/PathText.h"
#include "foundation/Text.h"

#include <QDateTime>
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

SavedState::Contents SavedState::read(const QString& path)
{
    QFile file(path);
    if (!file.exists())
        return {};
    if (!file.open(QIODevice::ReadOnly))
        return {{}, file.errorString()};
    QJsonParseError parseError;
    const QJsonObject state = QJsonDocument::fromJson(file.readAll(), &parseError).object();
    if (parseError.error != QJsonParseError::NoError)
        return {{}, parseError.errorString()};
    if (state.value(QStringLiteral("version")).toInt() != stateFileVersion ||
        !state.value(QStringLiteral("jobs")).isArray())
        return {{}, QStringLiteral("it is of another version of this program")};
    Contents contents;
    for (const QJsonValue& archive : state.value(QStringLiteral("jobs")).toArray()) {
        if (auto job = Job::decode(archive.toObject()))
            contents.jobs.push_back(std::move(job));
        else
            contents.problem = QStringLiteral("a job in it is damaged");
    }
    return contents;
}

Error SavedState::keepAside(const QString& path, const QString& problem)
{
    const QString time = QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH-mm-ss.zzz"));
    const QString aside = path + QStringLiteral(".unreadable ") + time;
    const bool isKept = QFile::rename(path, aside);
    const QString words =
        Text::format("The saved jobs in {} cannot be read ({}). {} {}.", path, problem,
                     isKept ? QStringLiteral("The file is kept as") : QStringLiteral("It cannot be renamed to"), aside);
    Log::error("{}", words);
    return {ErrorDomain::Platform, 0, words};
}
