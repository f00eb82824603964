#include "engine/SavedState.h"

#include "foundation/AtomicFile.h"
#include "foundation/Log.h"
#include "foundation/NumberReading.h"
#include "foundation/PathText.h"
#include "foundation/PrivateFolder.h"
#include "foundation/Text.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int stateFileVersion = 1;
constexpr int mostKeptAtOneTime = 1000;

// A user name is the user's choice and may hold what a file name cannot.
QString asFileNamePart(const QString& username)
{
    QString part = username;
    return part.replace(u'%', QStringLiteral("%25")).replace(u'/', QStringLiteral("%2F")).remove(QChar(u'\0'));
}

// A second name for the file of now, put in the place of the one before in one step: at every moment both names are of
// whole files. Where links cannot be made there is none before.
void keepPrevious(const QString& path)
{
    const QByteArray file = QFile::encodeName(path);
    const QByteArray previous = QFile::encodeName(SavedState::previousPath(path));
    const QByteArray beside = previous + ".new";
    ::unlink(beside.constData());
    if (::linkat(AT_FDCWD, file.constData(), AT_FDCWD, beside.constData(), AT_SYMLINK_FOLLOW) == 0)
        ::rename(beside.constData(), previous.constData());
}

// Sent, and no number known that came back.
bool isSubmittedPerhaps(const QJsonObject& archive)
{
    return archive.value(QStringLiteral("status")).toInt() == JobStatusSubmittingDetails &&
           (archive.value(QStringLiteral("orderNum")).toInt() == 0 ||
            archive.value(QStringLiteral("depoNum")).toInt() == 0);
}

// Nothing for one that lacks a recording too: it would be ordered without.
std::shared_ptr<Job> jobOf(const QJsonObject& archive)
{
    auto job = Job::decode(archive);
    const QJsonValue files = archive.value(QStringLiteral("mediaFiles"));
    return job && files.isArray() && files.toArray().size() == job->mediaFiles().size() ? job : nullptr;
}

// Two files' archives of one job; it may have been numbered between them.
bool areOfOneJob(const Job& one, const Job& other)
{
    const int number = NumberReading::valueOrZero(one.depoNum());
    const int otherNumber = NumberReading::valueOrZero(other.depoNum());
    return one.transcriptFile() == other.transcriptFile() && (number == otherNumber || number == 0 || otherNumber == 0);
}

} // namespace

QString SavedState::filePath(const QString& folder, const QString& username)
{
    return PathText::appendingPathComponent(folder, QStringLiteral("State_") + asFileNamePart(username) +
                                                        QStringLiteral(".archive"));
}

QString SavedState::previousPath(const QString& path)
{
    return path + QStringLiteral(".previous");
}

bool SavedState::isKept(const Job& job)
{
    return !job.serverJob() && job.status() < JobStatusDownloaded;
}

std::optional<Error> SavedState::write(const QString& path, const std::vector<std::shared_ptr<Job>>& jobs)
{
    QJsonArray archives;
    for (const auto& job : jobs) {
        if (!isKept(*job))
            continue;
        if (const auto archive = job->encode())
            archives.append(*archive);
    }
    return writeArchives(path, archives);
}

std::optional<Error> SavedState::writeArchives(const QString& path, const QJsonArray& archives)
{
    const QJsonObject state{{QStringLiteral("version"), stateFileVersion}, {QStringLiteral("jobs"), archives}};
    PrivateFolder::make(QFileInfo(path).path());
    keepPrevious(path);
    return AtomicFile::write(path, QJsonDocument(state).toJson());
}

SavedState::Contents SavedState::read(const QString& path)
{
    QFile file(path);
    if (!file.exists())
        return {};
    if (!file.open(QIODevice::ReadOnly))
        return {.problem = file.errorString()};
    QJsonParseError parseError;
    const QJsonObject state = QJsonDocument::fromJson(file.readAll(), &parseError).object();
    if (parseError.error != QJsonParseError::NoError)
        return {.problem = parseError.errorString()};
    if (state.value(QStringLiteral("version")).toInt() != stateFileVersion ||
        !state.value(QStringLiteral("jobs")).isArray())
        return {.problem = QStringLiteral("it is of another version of this program")};
    Contents contents;
    for (const QJsonValue& archive : state.value(QStringLiteral("jobs")).toArray()) {
        const auto job = jobOf(archive.toObject());
        if (!job) {
            contents.problem = QStringLiteral("a job in it is damaged");
            continue;
        }
        contents.jobs.push_back(job);
        if (isSubmittedPerhaps(archive.toObject()))
            contents.submittedPerhaps.push_back(job);
    }
    return contents;
}

SavedState::Contents SavedState::readLastGood(const QString& path)
{
    Contents contents = read(path);
    // A file is missing too where a run ended just after it had put a damaged one aside.
    if (!contents.problem && QFileInfo::exists(path))
        return contents;
    const Contents previous = read(previousPath(path));
    contents.problemOfPrevious = previous.problem;
    const auto known = contents.jobs;
    for (const auto& job : previous.jobs) {
        if (std::any_of(known.begin(), known.end(), [&](const auto& one) { return areOfOneJob(*one, *job); }))
            continue;
        contents.jobs.push_back(job);
        contents.fromPrevious.push_back(job);
        // What was submitted since then is not known.
        if (job->status() <= JobStatusSubmittingDetails)
            contents.submittedPerhaps.push_back(job);
    }
    if (!contents.fromPrevious.empty())
        Log::warning("{} jobs are taken from the file saved before, {}", contents.fromPrevious.size(),
                     previousPath(path));
    return contents;
}

Error SavedState::keepAside(const QString& path, const QString& problem, const QDateTime& now)
{
    const QString atThatTime = path + QStringLiteral(".unreadable ") + now.toString(u"yyyy-MM-dd HH-mm-ss.zzz");
    QString aside = atThatTime;
    // A rename never replaces. The clock may stand still or be set back, so that the name is taken.
    bool isKept = QFile::rename(path, aside);
    for (int number = 2; !isKept && QFileInfo::exists(aside) && number <= mostKeptAtOneTime; ++number) {
        aside = Text::format("{} ({})", atThatTime, number);
        isKept = QFile::rename(path, aside);
    }
    // A long user name leaves no room for the time.
    for (int number = 1; !isKept && QFileInfo::exists(path) && number <= mostKeptAtOneTime; ++number) {
        aside = PathText::appendingPathComponent(QFileInfo(path).path(), Text::format("State.unreadable {}", number));
        isKept = QFile::rename(path, aside);
    }
    const QString words =
        Text::format("The saved jobs in {} cannot be read ({}). {} {}.", path, problem,
                     isKept ? QStringLiteral("The file is kept as") : QStringLiteral("It cannot be renamed to"), aside);
    Log::error("{}", words);
    return {ErrorDomain::Platform, 0, words};
}
