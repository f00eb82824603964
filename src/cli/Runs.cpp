#include "cli/Runs.h"

#include "cli/ChangePasswordRun.h"
#include "cli/InspectRun.h"
#include "cli/JobsRun.h"
#include "cli/LoginRun.h"
#include "cli/ResumeRun.h"
#include "cli/RetryRun.h"
#include "cli/SubmitRun.h"

std::unique_ptr<Run> Run::make(CliApplication& application, const CommandLine& line)
{
    switch (line.command) {
    case CommandLine::Command::Login:
        return std::make_unique<LoginRun>(application, line);
    case CommandLine::Command::Submit:
        return std::make_unique<SubmitRun>(application, line);
    case CommandLine::Command::Resume:
        return std::make_unique<ResumeRun>(application, line);
    case CommandLine::Command::Retry:
        return std::make_unique<RetryRun>(application, line);
    case CommandLine::Command::Jobs:
        return std::make_unique<JobsRun>(application, line);
    case CommandLine::Command::ChangePassword:
        return std::make_unique<ChangePasswordRun>(application, line);
    case CommandLine::Command::Inspect:
        return std::make_unique<InspectRun>(application, line);
    }
    return nullptr;
}
