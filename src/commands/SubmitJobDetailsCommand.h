#pragma once

#include "commands/CUrlCommand.h"
#include "model/Job.h"
#include "settings/ServiceHosts.h"

// Creates the deposition job and its order options on the service. The reply is "<order number> <deposition number>".
// The body is composed here, from the job as it now is; which field is encoded how is fixed by the service.
class SubmitJobDetailsCommand : public CUrlCommand
{
public:
    SubmitJobDetailsCommand(const ServiceHosts& hosts, const QString& user, const QString& password,
                            std::shared_ptr<Job> job);
    [[nodiscard]] static std::shared_ptr<SubmitJobDetailsCommand>
    submitJobDetailsCommandWithUser(const ServiceHosts& hosts, const QString& user, const QString& password,
                                    const std::shared_ptr<Job>& job);

    [[nodiscard]] const std::shared_ptr<Job>& job() const { return m_job; }
    // The service's word for a DeliveryFormat; "" for an unknown one, which is a programming error.
    [[nodiscard]] static QString deliveryFormatString(int deliveryFormat);

private:
    std::shared_ptr<Job> m_job;
};
