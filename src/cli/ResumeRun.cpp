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
    if (!application().prepareForService() || !application().prepareFolders() || !application().takeSavedJobs()) {
        application().end(ExitCode::Usage);
        return;
    }
    application().login([this](const QString&) {
        startEngine();
        if (application().jobModel().jobs().empty())
            application().reporter().note(QStringLiteral("No saved jobs."));
        endIfAllEnded();
    });
}

void ResumeRun::jobWasAdded(const std::shared_ptr<Job>& job)
{
    if (job->serverJob())
        return;
    waitFor(job);
    noteLevel(*job);
}
