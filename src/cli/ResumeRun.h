#pragma once

#include "cli/EngineRun.h"

// Loads the user's saved jobs and works until all are completed, or cannot go on.
class ResumeRun : public EngineRun
{
    Q_OBJECT
public:
    using EngineRun::EngineRun;
    void start() override;

protected:
    // What has to hold before anything is sent. Where it does not, the run has ended.
    [[nodiscard]] bool prepare();
    void loginAndWork();
    // Whether the run waits for this saved job.
    [[nodiscard]] virtual bool isWanted(const Job& /*job*/) const { return true; }

private:
    void jobWasAdded(const std::shared_ptr<Job>& job) override;
    void noteLevel(const Job& job);
};
