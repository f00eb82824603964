#include "cli/RetryRun.h"

#include "cli/CliApplication.h"
#include "engine/SavedState.h"
#include "foundation/NumberReading.h"
#include "foundation/Text.h"

#include <algorithm>

namespace {

// By its job number, or by its transcript's name as the list shows it.
bool isNamed(const Job& job, const QString& name)
{
    const int number = NumberReading::valueOrZero(job.depoNum());
    return job.name() == name || (number != 0 && QString::number(number) == name);
}

QString namesOf(const std::vector<std::shared_ptr<Job>>& jobs)
{
    QStringList names;
    for (const auto& job : jobs) {
        const int number = NumberReading::valueOrZero(job->depoNum());
        names << (number == 0 ? job->name() : Text::format("{} ({})", job->name(), number));
    }
    return names.isEmpty() ? QStringLiteral("none") : names.join(QStringLiteral(", "));
}

} // namespace

void RetryRun::start()
{
    if (!prepare())
        return;
    // Before anything is sent: a slip must not set other jobs to work.
    const QString path = SavedState::filePath(application().tempFolder(), application().user());
    const SavedState::Contents contents = SavedState::readLastGood(path);
    const auto& saved = contents.jobs;
    for (const QString& name : line().retryJobs) {
        if (std::any_of(saved.begin(), saved.end(), [&](const auto& job) { return isNamed(*job, name); }))
            continue;
        if (contents.problem)
            application().reporter().error(
                Text::format("The saved jobs in {} cannot all be read ({})", path, *contents.problem));
        application().reporter().error(Text::format(
            "No saved job has the number or transcript name \"{}\"; saved jobs: {}", name, namesOf(saved)));
        application().end(ExitCode::Usage);
        return;
    }
    loginAndWork();
}

bool RetryRun::isWanted(const Job& job) const
{
    const QStringList& names = line().retryJobs;
    return names.isEmpty() ||
           std::any_of(names.begin(), names.end(), [&](const QString& name) { return isNamed(job, name); });
}
