#include "cli/ResumeRun.h"

#include "cli/CliApplication.h"

void ResumeRun::start()
{
    if (!application().prepareForService() || !application().prepareFolders()) {
        application().end(ExitCode::Usage);
        return;
    }
    application().login([this](const QString&) {
        // Before the engine starts: a job may stop, or be withdrawn, while it is loaded.
        connect(&application().jobModel(), &JobModel::jobAdded, this, [this](const std::shared_ptr<Job>& job) {
            if (!job->serverJob())
                waitFor(job);
        });
        startEngine();
        if (application().jobModel().jobs().empty())
            application().reporter().note(QStringLiteral("No saved jobs."));
        endIfAllEnded();
    });
}
