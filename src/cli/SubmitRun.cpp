#include "cli/SubmitRun.h"

#include "cli/CliApplication.h"
#include "cli/Order.h"
#include "commands/GetRates2Command.h"
#include "commands/LogAvailabilityCommand.h"
#include "engine/RatesReply.h"
#include "foundation/Log.h"
#include "model/DeliveryFormat.h"
#include "model/ProcessingLevel.h"

void SubmitRun::start()
{
    auto order = Order::prepare(line().submit);
    if (const auto* const problem = std::get_if<QString>(&order)) {
        application().reporter().error(*problem);
        application().end(ExitCode::Usage);
        return;
    }
    if (!application().prepareForService() || !application().prepareFolders() || !application().takeSavedJobs()) {
        application().end(ExitCode::Usage);
        return;
    }
    auto& prepared = std::get<Order::Prepared>(order);
    for (const QString& remark : prepared.remarks)
        application().reporter().note(remark);
    m_job = std::move(prepared.job);
    application().login([this](const QString&) { askRates(); });
}

void SubmitRun::askRates()
{
    CliApplication& app = application();
    app.request(GetRates2Command::getRates2CommandWithUser(app.hosts(), app.user(), app.password()),
                [this, &app](CUrlCommand& command, bool succeeded) {
                    if (!succeeded) {
                        // An order without product codes would be another order than the user's.
                        app.presentFailure(command, QStringLiteral("The prices cannot be asked for"));
                        app.endAfterLogUpload(ExitCode::ServiceError);
                        return;
                    }
                    Log::info("GetRatesProductsCodes command response = {}", command.dataAsString());
                    if (!RatesReply::apply(command.dataAsString(), *m_job))
                        app.reporter().note(QStringLiteral("The service told no prices; the order goes out without."));
                    if (line().submit.deliveryFormat == DeliveryFormatLOG)
                        askLogAvailability();
                    else
                        submit();
                });
}

void SubmitRun::askLogAvailability()
{
    CliApplication& app = application();
    app.request(LogAvailabilityCommand::logAvailabilityCommandWithUser(app.hosts(), app.user(), app.password(),
                                                                       app.jobModel().contactID()),
                [this, &app](CUrlCommand& command, bool succeeded) {
                    if (!succeeded) {
                        app.presentFailure(command, QStringLiteral("The LOG format cannot be asked for"));
                        app.endAfterLogUpload(ExitCode::ServiceError);
                        return;
                    }
                    Log::info("Log Availability command response = {}", command.dataAsString());
                    if (RatesReply::isLogFormatAvailable(command.dataAsString())) {
                        submit();
                        return;
                    }
                    app.reporter().error(QStringLiteral("The service does not offer this account the LOG format."));
                    app.end(ExitCode::Usage);
                });
}

void SubmitRun::submit()
{
    const QStringList remarks = Order::applyServiceOptions(line().submit, *m_job);
    if (m_job->processingLevel() == ProcessingLevelUnattended && !RatesReply::isUnattendedOffered(*m_job)) {
        application().reporter().error(QStringLiteral("The service does not offer this account the Unattended level."));
        application().end(ExitCode::Usage);
        return;
    }
    for (const QString& remark : remarks)
        application().reporter().note(remark);
    startEngine();
    application().jobModel().addJobsObject(m_job);
    waitFor(m_job);
}
