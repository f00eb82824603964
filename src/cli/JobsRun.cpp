#include "cli/JobsRun.h"

#include "cli/CliApplication.h"
#include "cli/JobTable.h"
#include "commands/CheckStatusCommand.h"
#include "engine/SavedState.h"
#include "foundation/Text.h"

void JobsRun::start()
{
    if (!application().prepareForService() || !application().prepareFolders()) {
        application().end(ExitCode::Usage);
        return;
    }
    application().login([this](const QString& contactID) { askStatus(contactID); });
}

void JobsRun::askStatus(const QString& contactID)
{
    CliApplication& app = application();
    app.request(CheckStatusCommand::checkStatusCommandWithUser(app.hosts(), app.user(), app.password(), contactID,
                                                               std::nullopt),
                [this, &app](CUrlCommand& command, bool succeeded) {
                    if (succeeded) {
                        print(command.dataAsString());
                        app.end(ExitCode::Done);
                    } else {
                        app.presentFailure(command, QStringLiteral("The status cannot be asked for"));
                        print(QString()); // The saved jobs are known all the same.
                        app.endAfterLogUpload(ExitCode::ServiceError);
                    }
                });
}

void JobsRun::print(const QString& statusReply)
{
    const auto saved = SavedState::read(SavedState::filePath(application().tempFolder(), application().user()));
    if (saved.problem)
        application().reporter().error(Text::format("The saved jobs cannot be read: {}", *saved.problem));
    const auto rows = JobTable::rows(statusReply, saved.jobs);
    if (rows.empty())
        application().reporter().note(QStringLiteral("No jobs."));
    else if (!line().json)
        application().reporter().result(JobTable::header(), {});
    for (const JobTable::Row& row : rows)
        application().reporter().result(JobTable::line(row), JobTable::object(row));
}
