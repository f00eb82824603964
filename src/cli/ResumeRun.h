#pragma once

#include "cli/EngineRun.h"

// Loads the user's saved jobs and works until all are completed, or cannot go on.
class ResumeRun : public EngineRun
{
    Q_OBJECT
public:
    using EngineRun::EngineRun;
    void start() override;

private:
    void jobWasAdded(const std::shared_ptr<Job>& job) override;
    void noteLevel(const Job& job);
};
