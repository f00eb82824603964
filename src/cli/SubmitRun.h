#pragma once

#include "cli/EngineRun.h"

// Makes a job out of the user's files, asks the service for its prices, hands the job to the engine and follows it to
// Completed. Saved jobs are loaded and worked on too, so that none is lost when the jobs are saved again.
class SubmitRun : public EngineRun
{
    Q_OBJECT
public:
    using EngineRun::EngineRun;
    void start() override;

private:
    void askRates();
    void askLogAvailability();
    void submit();

    std::shared_ptr<Job> m_job;
};
