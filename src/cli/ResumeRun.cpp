#include "cli/ResumeRun.h"

#include "cli/CliApplication.h"
#include "foundation/Text.h"
#include "model/ProcessingLevel.h"

void ResumeRun::noteLevel(const Job& job)
{
    // Saved jobs do not keep their level. One that the service has not accepted is ordered at the level that it has
    // now.
    if (job.status() <= JobStatusSubmittingDetails)
        application().reporter().note(Text::format("{} was not accepted yet; it is ordered at the level {}.",
                                                   job.name(), processingLevelName(job.processingLevel())));
}

void ResumeRun::start()
{
    if (prepare())
        loginAndWork();
}

bool ResumeRun::prepare()
{
    if (application().prepareForService() && application().prepareFolders() && application().takeSavedJobs())
        return true;
    application().end(ExitCode::Usage);
    return false;
}

void ResumeRun::loginAndWork()
{
    application().login([this](const QString&) {
        startEngine();
        if (application().jobModel().jobs().empty())
            application().reporter().note(QStringLiteral("No saved jobs."));
        endIfAllEnded();
    });
}

void ResumeRun::jobWasAdded(const std::shared_ptr<Job>& job)
{
    if (job->serverJob() || !isWanted(*job))
        return;
    waitFor(job);
    noteLevel(*job);
}
