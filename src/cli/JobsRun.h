#pragma once

#include "cli/Runs.h"

// Lists the jobs that the service holds and those that are saved here, without working on any.
class JobsRun : public Run
{
    Q_OBJECT
public:
    using Run::Run;
    void start() override;

private:
    void askStatus(const QString& contactID);
    void print(const QString& statusReply);
};
