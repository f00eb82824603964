#pragma once

#include "cli/ResumeRun.h"

// Tries again the saved jobs that the user names, all of them where none is named. Like every run it goes on with the
// other saved jobs too, but it ends when those that were named are completed, or cannot go on.
class RetryRun : public ResumeRun
{
    Q_OBJECT
public:
    using ResumeRun::ResumeRun;
    void start() override;

private:
    [[nodiscard]] bool isWanted(const Job& job) const override;
};
