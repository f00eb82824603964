// What the service answers to the submit window, and what goes wrong.

#include "commands/CUrlCommandProcessor.h"
#include "commands/GetRates2Command.h"
#include "commands/LogAvailabilityCommand.h"
#include "engine/RatesReply.h"
#include "foundation/Log.h"
#include "ui/ApplicationController.h"
#include "ui/submit/SubmitJobWindowController.h"

#include <algorithm>

void SubmitJobWindowController::askService()
{
    const ServiceHosts& hosts = m_application.serviceHosts();
    const QString user = m_application.userName();
    const QString password = m_application.userPassword();
    post(LogAvailabilityCommand::logAvailabilityCommandWithUser(hosts, user, password, m_application.userContactID()));
    post(GetRates2Command::getRates2CommandWithUser(hosts, user, password));
    m_hasRatesFailure = false;
    setFlag(m_isGettingRatesInProgress, true, &SubmitJobWindowController::isGettingRatesInProgressChanged);
}

void SubmitJobWindowController::post(const std::shared_ptr<CUrlCommand>& command)
{
    m_commands.erase(std::remove_if(m_commands.begin(), m_commands.end(),
                                    [](const std::weak_ptr<CUrlCommand>& old) { return old.expired(); }),
                     m_commands.end());
    m_commands.push_back(command);
    command->setObserver(this);
    m_application.curlCommandProcessor().postCommand(command);
}

void SubmitJobWindowController::curlCommandDone(CUrlCommand& command)
{
    if (dynamic_cast<LogAvailabilityCommand*>(&command))
        processLogAvailabilityResponse(command.dataAsString());
    else if (dynamic_cast<GetRates2Command*>(&command))
        processGetRates2Response(command.dataAsString());
}

void SubmitJobWindowController::curlCommandFailed(CUrlCommand& command)
{
    const Error error = command.error();
    Log::error("curlCommandFailed, error = {}, data = {}", error.localizedDescription, command.dataAsString());
    if (dynamic_cast<GetRates2Command*>(&command)) {
        m_hasRatesFailure = true;
        setFlag(m_isGettingRatesInProgress, false, &SubmitJobWindowController::isGettingRatesInProgressChanged);
        Q_EMIT jobValuesChanged();
    }
    m_application.presentError(willPresentError(error));
}

void SubmitJobWindowController::processLogAvailabilityResponse(const QString& reply)
{
    Log::info("Log Availability command response = {}", reply);
    const bool isAvailable = RatesReply::isLogFormatAvailable(reply);
    setFlag(m_isLOGDeliveryFormatAvailable, isAvailable,
            &SubmitJobWindowController::isLOGDeliveryFormatAvailableChanged);
    if (!isAvailable && m_job && m_job->deliveryFormat() == DeliveryFormatLOG)
        m_job->setDeliveryFormat(DeliveryFormatAll);
}

void SubmitJobWindowController::processGetRates2Response(const QString& reply)
{
    Log::info("GetRatesProductsCodes command response = {}", reply);
    changeJob([&](Job& job) { RatesReply::apply(reply, job); });
    m_hasRatesFailure = false;
    setFlag(m_isGettingRatesInProgress, false, &SubmitJobWindowController::isGettingRatesInProgressChanged);
    // A choice that was taken away stays away while the window lives.
    if (m_job && !RatesReply::isUnattendedOffered(*m_job))
        setFlag(m_isUnattendedRemoved, true, &SubmitJobWindowController::levelRowsChanged);
    Q_EMIT jobValuesChanged();
}

Error SubmitJobWindowController::willPresentError(const Error& error) const
{
    return ErrorPresentation::described(error, tr("Submit job window: %@"));
}
